#include "scene/AnimCurve.h"

#include "base/Units.h"
#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host::scene {
namespace {

class TimeBehavior final : public NodeBehavior {
public:
    explicit TimeBehavior(Node& node) : node_(node) {}
    bool compute(Cell& cell) override {
        if (cell.attribute.longName != "outTime") return false;
        std::get<Numeric>(cell.value).set(0, node_.scene.time());
        setClean(cell);
        return true;
    }

private:
    Node& node_;
};

struct ListName {
    std::string_view longName, shortName;
    CurveKey::List list;
};
constexpr ListName listNames[] = {{"keyTimeValue", "ktv", CurveKey::TimeValue},
                                  {"keyTanInType", "kit", CurveKey::InType},
                                  {"keyTanOutType", "kot", CurveKey::OutType},
                                  {"keyTanInX", "kix", CurveKey::InX},
                                  {"keyTanInY", "kiy", CurveKey::InY},
                                  {"keyTanOutX", "kox", CurveKey::OutX},
                                  {"keyTanOutY", "koy", CurveKey::OutY},
                                  {"keyTanLocked", "ktl", CurveKey::TangentLocked},
                                  {"keyWeightLocked", "kwl", CurveKey::WeightLocked},
                                  {"keyBreakdown", "kbd", CurveKey::Breakdown}};

class CurveBehavior final : public NodeBehavior {
public:
    explicit CurveBehavior(Node& node) : node_(node), overTime_(node.type.name.starts_with("animCurveT")) {}

    bool compute(Cell& cell) override {
        if (cell.attribute.longName != "output") return false;
        Cell& input = node_.cell("input");
        double at = overTime_ ? node_.scene.time() : input.number();
        if (input.source) {
            evaluate(input);
            at = input.number();
        }
        std::get<Numeric>(cell.value).set(0, keys.value(at, shape()));
        setClean(cell);
        return true;
    }

    bool getInternal(Cell& cell) override {
        const auto list = listOf(cell);
        if (!list) return false;
        if (cell.isArray()) {
            const auto all = keys.keys();
            for (std::size_t i = 0; i < all.size(); ++i)
                if (all[i].given & *list) show(cell.element(keys.indexOf(i)), all[i], *list);
            for (auto& [index, element] : cell.elements)
                if (!has(*list, index)) hide(*element);
            cell.dirty = false;
            return true;
        }
        Cell& element = cell.index >= 0 ? cell : *cell.parent;
        const CurveKey* key = keys.find(element.index);
        if (key && (key->given & *list))
            show(element, *key, *list);
        else
            hide(element);
        return true;
    }

    bool setInternal(Cell& cell, const Value& value) override {
        const auto list = listOf(cell);
        const auto* n = std::get_if<Numeric>(&value);
        if (!list || !n || cell.isArray()) return false;
        const int index = cell.index >= 0 ? cell.index : cell.parent->index;
        const CurveKey* there = keys.find(index);
        const std::optional<CurveKey> before = there ? std::optional(*there) : std::nullopt;
        CurveKey after = before.value_or(CurveKey{});
        after.given = static_cast<std::uint16_t>(after.given | *list);
        if (*list == CurveKey::TimeValue)
            (cell.attribute.childIndex == 0 ? after.time : after.value) = n->get();
        else if (!setCurveNumber(after, *list, n->get()))
            throw SceneError("The attribute '" + cell.name() + "' cannot have the value.");
        put(index, after);
        node_.scene.record([this, index, after, keep = node_.shared_from_this()] { put(index, after); },
                           [this, index, before, keep = node_.shared_from_this()] { put(index, before); });
        return true;
    }

    bool hasElement(const Cell& array, int index) override {
        const auto list = curveList(array.attribute.longName);
        return list && has(*list, index);
    }

    void copyFrom(Node& other) override {
        if (const CurveKeys* theirs = curveKeys(other)) keys = *theirs;
    }

    CurveKeys::Shape shape() const {
        // Looked up once: a curve is evaluated far more often than it is shaped.
        if (!settings_[0])
            std::ranges::transform(settingNames, settings_, [this](const char* n) { return node_.type.find(n); });
        const auto number = [&](std::size_t k) {
            Cell* c = node_.existingCell(*settings_[k]);
            return static_cast<int>(c ? c->number() : std::get<Numeric>(settings_[k]->defaultValue).get());
        };
        CurveKeys::Shape s;
        s.weighted = number(0) != 0;
        if (const int tangent = number(1); tangent != 0) s.tangent = static_cast<Tangent>(tangent);
        s.pre = static_cast<Infinity>(number(2));
        s.post = static_cast<Infinity>(number(3));
        s.perSecond = overTime_ ? ticksPerSecond : 1;
        // As the user sees them: in degrees, centimetres, or without a unit.
        constexpr double close = 0.05;
        s.closeValues = node_.type.name.ends_with('A') ? close * std::numbers::pi / 180 : close;
        return s;
    }

    CurveKeys keys;

private:
    static std::optional<CurveKey::List> listOf(const Cell& cell) { return curveList(cell.attribute.root().longName); }

    bool has(CurveKey::List list, int index) const {
        const CurveKey* key = keys.find(index);
        return key && (key->given & list);
    }

    static void setCell(Cell& cell, double value) {
        std::get<Numeric>(cell.value).set(0, value);
        cell.written = true;
        cell.dirty = false;
    }

    static void show(Cell& element, const CurveKey& key, CurveKey::List list) {
        if (list == CurveKey::TimeValue) {
            setCell(element.child(0), key.time);
            setCell(element.child(1), key.value);
        } else {
            setCell(element, curveNumber(key, list));
        }
        element.dirty = false;
    }

    static void hide(Cell& element) {
        element.written = element.dirty = false;
        element.noteFreed();
        element.value = element.attribute.defaultValue;
        for (auto& child : element.children)
            if (child) hide(*child);
    }

    void put(int index, const std::optional<CurveKey>& key) {
        if (key)
            keys.insert(index, *key);
        else
            keys.erase(index);
        curveChanged(node_);
    }

    static constexpr const char* settingNames[] = {"weightedTangents", "tangentType", "preInfinity", "postInfinity"};

    Node& node_;
    mutable const Attribute* settings_[std::size(settingNames)] = {};
    bool overTime_;
};

CurveBehavior* behaviorOf(Node& curve) { return dynamic_cast<CurveBehavior*>(curve.behavior.get()); }

/// Edits of a curve whose keys are numbered in the order of their times. All can be taken back.
class KeyEdit {
public:
    KeyEdit(Scene& scene, Node& curve) : scene_(scene), curve_(curve), keys_(behaviorOf(curve)->keys) {
        if (keys_.numbered()) return;
        const auto timed = keys_.timed();
        assign({timed.begin(), timed.end()});
    }

    std::span<const CurveKey> keys() const { return keys_.keys(); }
    /// Puts others in the place of all; they are in the order of their times.
    void assign(std::vector<CurveKey> after) {
        carryOut([after](CurveKeys& keys) { keys.assign(after); },
                 [before = keys_](CurveKeys& keys) { keys = before; });
    }
    void replace(int index, const CurveKey& key) {
        const CurveKey before = *keys_.find(index);
        carryOut([index, key](CurveKeys& keys) { keys.insert(index, key); },
                 [index, before](CurveKeys& keys) { keys.insert(index, before); });
    }
    void add(int index, const CurveKey& key) {
        carryOut([index, key](CurveKeys& keys) { keys.insertAndShift(index, key); },
                 [index](CurveKeys& keys) { keys.eraseAndShift(index); });
    }
    void remove(int index) {
        const CurveKey before = *keys_.find(index);
        carryOut([index](CurveKeys& keys) { keys.eraseAndShift(index); },
                 [index, before](CurveKeys& keys) { keys.insertAndShift(index, before); });
    }

private:
    template <class Do, class Undo>
    void carryOut(Do change, Undo back) {
        const auto apply = [&keys = keys_, keep = curve_.shared_from_this()](const auto& f) {
            f(keys);
            curveChanged(*keep);
        };
        apply(change);
        scene_.record([apply, change] { apply(change); }, [apply, back] { apply(back); });
    }

    Scene& scene_;
    Node& curve_;
    CurveKeys& keys_;
};

/// Gives a key that is to be fixed the tangent that it has now.
void fixTangent(CurveKey& key, bool out, double slopePerSecond, double seconds) {
    const double x = seconds > 0 ? seconds : 1 / std::hypot(1, slopePerSecond);
    (out ? key.outX : key.inX) = static_cast<float>(x);
    (out ? key.outY : key.inY) = static_cast<float>(x * slopePerSecond);
    key.given =
        static_cast<std::uint16_t>(key.given | (out ? CurveKey::OutX | CurveKey::OutY : CurveKey::InX | CurveKey::InY));
}

} // namespace

std::unique_ptr<NodeBehavior> makeTimeBehavior(Node& node) { return std::make_unique<TimeBehavior>(node); }
std::unique_ptr<NodeBehavior> makeAnimCurve(Node& node) { return std::make_unique<CurveBehavior>(node); }

CurveKeys* curveKeys(Node& curve) {
    CurveBehavior* b = behaviorOf(curve);
    return b ? &b->keys : nullptr;
}

void curveChanged(Node& curve) { dirtyWithDependents(curve.cell("output")); }

std::optional<CurveKey::List> curveList(std::string_view name) {
    for (const auto& [longName, shortName, list] : listNames)
        if (name == longName || name == shortName) return list;
    return std::nullopt;
}

double curveNumber(const CurveKey& key, CurveKey::List list) {
    switch (list) {
    case CurveKey::TimeValue: return key.time;
    case CurveKey::InType: return key.in;
    case CurveKey::OutType: return key.out;
    case CurveKey::InX: return key.inX;
    case CurveKey::InY: return key.inY;
    case CurveKey::OutX: return key.outX;
    case CurveKey::OutY: return key.outY;
    case CurveKey::TangentLocked: return key.tangentLocked;
    case CurveKey::WeightLocked: return key.weightLocked;
    case CurveKey::Breakdown: return key.breakdown;
    }
    return 0;
}

bool setCurveNumber(CurveKey& key, CurveKey::List list, double value) {
    const auto type = [&](std::uint8_t& kind) {
        if (!(value >= 0 && value <= 255)) return false;
        kind = static_cast<std::uint8_t>(value);
        return true;
    };
    switch (list) {
    case CurveKey::TimeValue: key.time = value; break;
    case CurveKey::InType: return type(key.in);
    case CurveKey::OutType: return type(key.out);
    case CurveKey::InX: key.inX = static_cast<float>(value); break;
    case CurveKey::InY: key.inY = static_cast<float>(value); break;
    case CurveKey::OutX: key.outX = static_cast<float>(value); break;
    case CurveKey::OutY: key.outY = static_cast<float>(value); break;
    case CurveKey::TangentLocked: key.tangentLocked = value != 0; break;
    case CurveKey::WeightLocked: key.weightLocked = value != 0; break;
    case CurveKey::Breakdown: key.breakdown = value != 0; break;
    }
    return true;
}

CurveKeys::Shape curveShape(Node& curve) { return behaviorOf(curve)->shape(); }

Node* curveOf(const Cell& plug) {
    return plug.source && plug.source->node.type.isA("animCurve") ? &plug.source->node : nullptr;
}

std::vector<std::pair<double, double>> keysOf(Node& curve) {
    std::vector<std::pair<double, double>> list;
    for (const CurveKey& k : curveKeys(curve)->timed()) list.emplace_back(k.time, k.value);
    return list;
}

const char* curveTypeFor(const Attribute& attribute) {
    if (!attribute.isNumber()) return nullptr;
    switch (attribute.type) {
    case AttributeType::Angle: return "animCurveTA";
    case AttributeType::Distance: return "animCurveTL";
    case AttributeType::Time: return "animCurveTT";
    default: return "animCurveTU";
    }
}

namespace {

/// A key that is to be put in: one that has what every key has.
CurveKey whole(CurveKey key) {
    if (std::isnan(key.time)) throw SceneError("The time of a key must be a number.");
    key.given = static_cast<std::uint16_t>(key.given | CurveKey::TimeValue | CurveKey::InType | CurveKey::OutType);
    return key;
}

bool isEarlier(const CurveKey& a, const CurveKey& b) { return a.time < b.time; }

} // namespace

int addKey(Scene& scene, Node& curve, const CurveKey& key) {
    const CurveKey placed = whole(key);
    KeyEdit edit(scene, curve);
    const auto keys = edit.keys();
    const auto place = std::lower_bound(keys.begin(), keys.end(), key, isEarlier);
    const auto index = static_cast<int>(place - keys.begin());
    if (place != keys.end() && place->time == key.time)
        edit.replace(index, placed);
    else
        edit.add(index, placed);
    return index;
}

void addKeys(Scene& scene, Node& curve, std::vector<CurveKey> keys, bool keepOthers) {
    if (keys.empty()) return;
    for (CurveKey& key : keys) key = whole(key);
    std::stable_sort(keys.begin(), keys.end(), isEarlier);
    KeyEdit edit(scene, curve);
    std::vector<CurveKey> after;
    after.reserve(edit.keys().size() + keys.size());
    const auto add = [&](const CurveKey& key) {
        if (!after.empty() && after.back().time == key.time)
            after.back() = key;
        else
            after.push_back(key);
    };
    auto next = keys.begin();
    for (const CurveKey& there : edit.keys()) {
        for (; next != keys.end() && isEarlier(*next, there); ++next) add(*next);
        if (keepOthers || isEarlier(there, keys.front()) || isEarlier(keys.back(), there)) after.push_back(there);
    }
    for (; next != keys.end(); ++next) add(*next);
    edit.assign(std::move(after));
}

void changeKey(Scene& scene, Node& curve, int place, const CurveKey& key) { KeyEdit(scene, curve).replace(place, key); }

void removeKey(Scene& scene, Node& curve, int place) { KeyEdit(scene, curve).remove(place); }

void setKey(Scene& scene, Cell& plug, double time, double value, Tangent in, Tangent out) {
    if (!plug.attribute.isNumber() || plug.isArray())
        throw SceneError("The attribute '" + plug.name() + "' cannot be animated.");
    Node* curve = curveOf(plug);
    if (!curve) {
        scene.requireSettable(plug);
        const char* kind = curveTypeFor(plug.attribute);
        std::string name = plug.node.name + "_" + plug.attributePath();
        std::replace_if(
            name.begin(), name.end(), [](char c) { return c == '.' || c == '[' || c == ']'; }, '_');
        curve = scene.createNode(*scene.findType(kind), name).get();
        scene.setNumber(curve->cell("weightedTangents"), 0);
        scene.connect(curve->cell("output"), plug);
    }
    setCurveKey(scene, *curve, time, value, in, out);
}

void setCurveKey(Scene& scene, Node& curve, double time, double value, Tangent in, Tangent out) {
    if (std::isnan(time)) throw SceneError("The time of a key must be a number.");
    KeyEdit edit(scene, curve);
    const auto keys = edit.keys();
    const auto place =
        std::lower_bound(keys.begin(), keys.end(), time, [](const CurveKey& k, double t) { return k.time < t; });
    const bool there = place != keys.end() && place->time == time;
    CurveKey key = there ? *place : CurveKey{};
    if (there) {
        const CurveKeys::Shape shape = curveShape(curve);
        const auto k = static_cast<std::size_t>(place - keys.begin());
        for (const bool isOut : {false, true}) {
            const auto kind = isOut ? out : in;
            const auto was = isOut ? key.out : key.in;
            if (kind != Tangent::Fixed || was == static_cast<std::uint8_t>(Tangent::Fixed)) continue;
            const std::size_t other = isOut ? std::min(k + 1, keys.size() - 1) : k - std::min<std::size_t>(k, 1);
            const double seconds = std::abs(keys[other].time - time) / shape.perSecond;
            fixTangent(key, isOut, curveKeys(curve)->slope(k, isOut, shape) * shape.perSecond,
                       shape.weighted ? seconds : 0);
        }
    }
    key.time = time;
    key.value = value;
    key.in = static_cast<std::uint8_t>(in);
    key.out = static_cast<std::uint8_t>(out);
    key.given = static_cast<std::uint16_t>(key.given | CurveKey::TimeValue | CurveKey::InType | CurveKey::OutType);
    const auto index = static_cast<int>(place - keys.begin());
    if (there)
        edit.replace(index, key);
    else
        edit.add(index, key);
}

int removeKeys(Scene& scene, Cell& plug, double first, double last) {
    Node* curve = curveOf(plug);
    if (!curve) return 0;
    const auto gone = [&](const CurveKey& k) { return k.time >= first && k.time <= last; };
    const auto timed = curveKeys(*curve)->timed();
    const auto count = std::count_if(timed.begin(), timed.end(), gone);
    if (count == 0) return 0;
    if (count == static_cast<std::ptrdiff_t>(timed.size())) {
        scene.deleteNodes({curve});
    } else {
        KeyEdit edit(scene, *curve);
        for (std::size_t i = edit.keys().size(); i-- > 0;)
            if (gone(edit.keys()[i])) edit.remove(static_cast<int>(i));
    }
    return static_cast<int>(count);
}

} // namespace host::scene
