#include "scene/AnimCurve.h"

#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <algorithm>
#include <cmath>

namespace host::scene {
namespace {

struct Key {
    double time, value;
    Tangent in, out;
};

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

Tangent tangentAt(Node& curve, std::string_view list, int index) {
    Cell& array = curve.cell(list);
    const auto it = array.elements.find(index);
    const double kind = it != array.elements.end() ? it->second->number() : curve.cell("tangentType").number();
    return kind == 0 ? Tangent::Linear : static_cast<Tangent>(static_cast<int>(kind));
}

std::vector<Key> readKeys(Node& curve) {
    std::vector<Key> keys;
    for (auto& [index, element] : curve.cell("keyTimeValue").elements)
        keys.push_back({element->child(0).number(), element->child(1).number(), tangentAt(curve, "keyTanInType", index),
                        tangentAt(curve, "keyTanOutType", index)});
    std::stable_sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) { return a.time < b.time; });
    return keys;
}

/// The slope of a smooth tangent at key k; level at ends and extremes.
double smoothSlope(const std::vector<Key>& keys, std::size_t k) {
    if (k == 0 || k + 1 >= keys.size()) return 0;
    const Key &a = keys[k - 1], &b = keys[k], &c = keys[k + 1];
    if ((b.value - a.value) * (c.value - b.value) <= 0) return 0;
    return c.time > a.time ? (c.value - a.value) / (c.time - a.time) : 0;
}

double slope(const std::vector<Key>& keys, std::size_t k, Tangent kind, double chord) {
    if (kind == Tangent::Linear) return chord;
    if (kind == Tangent::Flat) return 0;
    return smoothSlope(keys, k);
}

double inside(const std::vector<Key>& keys, double t) {
    const auto after = std::upper_bound(keys.begin(), keys.end(), t, [](double v, const Key& k) { return v < k.time; });
    if (after == keys.begin()) return keys.front().value;
    const auto k = static_cast<std::size_t>(after - keys.begin()) - 1;
    const Key& a = keys[k];
    if (after == keys.end() || t == a.time) return a.value;
    const Key& b = *after;
    if (a.out == Tangent::Step) return a.value;
    if (a.out == Tangent::StepNext) return b.value;
    const double span = b.time - a.time, u = (t - a.time) / span, chord = (b.value - a.value) / span;
    // Cubic Hermite form; with both slopes equal to the chord it is the straight line.
    if (a.out == Tangent::Linear && b.in == Tangent::Linear) return a.value + (b.value - a.value) * u;
    const double m0 = slope(keys, k, a.out, chord) * span, m1 = slope(keys, k + 1, b.in, chord) * span;
    const double u2 = u * u, u3 = u2 * u;
    return (2 * u3 - 3 * u2 + 1) * a.value + (u3 - 2 * u2 + u) * m0 + (-2 * u3 + 3 * u2) * b.value + (u3 - u2) * m1;
}

double at(const std::vector<Key>& keys, double t, int pre, int post) {
    if (keys.empty()) return 0;
    const double first = keys.front().time, last = keys.back().time, span = last - first;
    const bool before = t < first;
    if (!before && t <= last) return inside(keys, t);
    const int kind = before ? pre : post;
    const Key& end = before ? keys.front() : keys.back();
    if (kind == 0 || span <= 0) return end.value;
    if (kind == 1) {
        const std::size_t k = before ? 0 : keys.size() - 2;
        const double between = keys[k + 1].time - keys[k].time;
        const Tangent tangent = before ? end.out : end.in;
        // Files may have two keys at one time, which give no slope.
        const double m = tangent == Tangent::Linear && between > 0 ? (keys[k + 1].value - keys[k].value) / between : 0;
        return end.value + m * (t - end.time);
    }
    const double turns = std::floor((t - first) / span);
    const double local = t - turns * span;
    if (kind == 5 && std::fmod(std::fabs(turns), 2.0) == 1.0) return inside(keys, first + last - local);
    const double offset = kind == 4 ? turns * (keys.back().value - keys.front().value) : 0;
    return inside(keys, local) + offset;
}

class CurveBehavior final : public NodeBehavior {
public:
    explicit CurveBehavior(Node& node) : node_(node) {}
    bool compute(Cell& cell) override {
        if (cell.attribute.longName != "output") return false;
        Cell& input = node_.cell("input");
        double t = node_.scene.time();
        if (input.source) {
            evaluate(input);
            t = input.number();
        }
        const double v = at(readKeys(node_), t, static_cast<int>(node_.cell("preInfinity").number()),
                            static_cast<int>(node_.cell("postInfinity").number()));
        std::get<Numeric>(cell.value).set(0, v);
        setClean(cell);
        return true;
    }

private:
    Node& node_;
};

void writeKeys(Scene& scene, Node& curve, const std::vector<Key>& keys) {
    for (const char* list : {"keyTimeValue", "keyTanInType", "keyTanOutType"}) {
        Cell& array = curve.cell(list);
        while (static_cast<std::size_t>(array.elements.size()) > keys.size() ||
               (!array.elements.empty() && array.elements.rbegin()->first >= static_cast<int>(keys.size())))
            scene.removeElement(*array.elements.rbegin()->second, true);
    }
    for (std::size_t k = 0; k < keys.size(); ++k) {
        const int i = static_cast<int>(k);
        Cell& element = curve.cell("keyTimeValue").element(i);
        scene.setNumber(element.child(0), keys[k].time);
        scene.setNumber(element.child(1), keys[k].value);
        scene.setNumber(curve.cell("keyTanInType").element(i), static_cast<double>(keys[k].in));
        scene.setNumber(curve.cell("keyTanOutType").element(i), static_cast<double>(keys[k].out));
    }
}

} // namespace

std::unique_ptr<NodeBehavior> makeTimeBehavior(Node& node) { return std::make_unique<TimeBehavior>(node); }
std::unique_ptr<NodeBehavior> makeAnimCurve(Node& node) { return std::make_unique<CurveBehavior>(node); }

Node* curveOf(Cell& plug) {
    return plug.source && plug.source->node.type.isA("animCurve") ? &plug.source->node : nullptr;
}

std::vector<std::pair<double, double>> keysOf(Node& curve) {
    std::vector<std::pair<double, double>> list;
    for (const Key& k : readKeys(curve)) list.emplace_back(k.time, k.value);
    return list;
}

void setKey(Scene& scene, Cell& plug, double time, double value, Tangent in, Tangent out) {
    if (!plug.attribute.isNumber() || plug.isArray())
        throw SceneError("The attribute '" + plug.name() + "' cannot be animated.");
    Node* curve = curveOf(plug);
    if (!curve) {
        scene.requireSettable(plug);
        const char* kind = plug.attribute.type == AttributeType::Angle      ? "animCurveTA"
                           : plug.attribute.type == AttributeType::Distance ? "animCurveTL"
                           : plug.attribute.type == AttributeType::Time     ? "animCurveTT"
                                                                            : "animCurveTU";
        std::string name = plug.node.name + "_" + plug.attributePath();
        std::replace_if(
            name.begin(), name.end(), [](char c) { return c == '.' || c == '[' || c == ']'; }, '_');
        curve = scene.createNode(*scene.findType(kind), name).get();
        scene.connect(curve->cell("output"), plug);
    }
    auto keys = readKeys(*curve);
    const auto it = std::find_if(keys.begin(), keys.end(), [&](const Key& k) { return k.time >= time; });
    if (it != keys.end() && it->time == time)
        *it = {time, value, in, out};
    else
        keys.insert(it, {time, value, in, out});
    writeKeys(scene, *curve, keys);
}

int removeKeys(Scene& scene, Cell& plug, double first, double last) {
    Node* curve = curveOf(plug);
    if (!curve) return 0;
    auto keys = readKeys(*curve);
    const auto gone = std::erase_if(keys, [&](const Key& k) { return k.time >= first && k.time <= last; });
    if (gone == 0) return 0;
    if (keys.empty())
        scene.deleteNodes({curve});
    else
        writeKeys(scene, *curve, keys);
    return static_cast<int>(gone);
}

} // namespace host::scene
