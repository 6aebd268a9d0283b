#include <maya/MFnAnimCurve.h>

#include "api/fn/FnSupport.h"
#include "scene/AnimCurve.h"
#include "scene/Evaluation.h"
#include "values/Text.h"
#include "values/TimeTicks.h"

#include <maya/MAnimControl.h>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace host;
using host::api::Access;
using scene::Cell;
using scene::CurveKey;
using scene::CurveKeys;
using scene::Tangent;

ORVO_DEFINE_FN(MFnAnimCurve, MFn::kAnimCurve)
ORVO_FN_NAME(MFnAnimCurve)

namespace {

constexpr const char* typeNames[] = {"animCurveTA", "animCurveTL", "animCurveTT", "animCurveTU",
                                     "animCurveUA", "animCurveUL", "animCurveUT", "animCurveUU"};
constexpr std::pair<MFnAnimCurve::TangentType, Tangent> tangents[] = {
    {MFnAnimCurve::kTangentFixed, Tangent::Fixed},     {MFnAnimCurve::kTangentLinear, Tangent::Linear},
    {MFnAnimCurve::kTangentFlat, Tangent::Flat},       {MFnAnimCurve::kTangentSmooth, Tangent::Spline},
    {MFnAnimCurve::kTangentStep, Tangent::Step},       {MFnAnimCurve::kTangentClamped, Tangent::Clamped},
    {MFnAnimCurve::kTangentPlateau, Tangent::Plateau}, {MFnAnimCurve::kTangentStepNext, Tangent::StepNext},
    {MFnAnimCurve::kTangentAuto, Tangent::Auto}};
constexpr double sameTime = 0.01; ///< ticks; times are sums of fractions

std::optional<std::uint8_t> stored(MFnAnimCurve::TangentType type, bool in) {
    if (type == MFnAnimCurve::kTangentGlobal)
        type = in ? MAnimControl::globalInTangentType() : MAnimControl::globalOutTangentType();
    for (const auto& [api, tangent] : tangents)
        if (api == type) return static_cast<std::uint8_t>(tangent);
    return std::nullopt;
}

bool overTime(const scene::Node& curve) { return curve.type.name.starts_with("animCurveT"); }
bool givesTime(const scene::Node& curve) { return curve.type.name.ends_with('T'); }

/// The curve of the function set with its keys, held for the length of a call.
struct Target {
    scene::NodePtr node;
    CurveKeys* keys;
    explicit Target(const MObject& object) : node(Access::node(object)), keys(node ? curveKeys(*node) : nullptr) {}
    explicit operator bool() const { return keys != nullptr; }
    const CurveKey* key(unsigned int index) const {
        return keys && index < keys->timed().size() ? &keys->timed()[index] : nullptr;
    }
    MStatus::MStatusCode status(bool found) const {
        return !keys ? MStatus::kFailure : found ? MStatus::kSuccess : MStatus::kInvalidParameter;
    }
};

/// Something of one key.
template <class Look>
auto ofKey(const MObject& object, unsigned int index, MStatus* status, Look look) {
    const Target curve(object);
    const CurveKey* key = curve.key(index);
    setStatus(status, curve.status(key));
    using Result = decltype(look(*key));
    return key ? look(*key) : Result();
}

/// Changes one key, whose time stays.
template <class Change>
MStatus changeKey(const MObject& object, unsigned int index, const MAnimCurveChange* change, Change alter) {
    const Target curve(object);
    const CurveKey* key = curve.key(index);
    if (!key || change) return curve.status(false);
    CurveKey after = *key;
    if (!alter(after)) return MStatus::kInvalidParameter;
    return api::guarded([&] { scene::changeKey(curve.node->scene, *curve.node, static_cast<int>(index), after); });
}

MStatus put(const MObject& object, bool timed, bool timeValue, double at, double value, MFnAnimCurve::TangentType in,
            MFnAnimCurve::TangentType out, const MAnimCurveChange* change, unsigned int* index) {
    const Target curve(object);
    if (!curve) return MStatus::kFailure;
    const auto inType = stored(in, true), outType = stored(out, false);
    if (overTime(*curve.node) != timed || givesTime(*curve.node) != timeValue || !inType || !outType || change ||
        std::isnan(at))
        return MStatus::kInvalidParameter;
    CurveKey key;
    key.time = at;
    key.value = value;
    key.in = *inType;
    key.out = *outType;
    return api::guarded([&] {
        const int place = scene::addKey(curve.node->scene, *curve.node, key);
        if (index) *index = static_cast<unsigned int>(place);
    });
}

std::optional<unsigned int> keyAt(const Target& curve, double at) {
    const auto keys = curve.keys->timed();
    const auto found = std::lower_bound(keys.begin(), keys.end(), at - sameTime,
                                        [](const CurveKey& k, double t) { return k.time < t; });
    if (found == keys.end() || found->time > at + sameTime) return std::nullopt;
    return static_cast<unsigned int>(found - keys.begin());
}

bool findAt(const MObject& object, bool timed, double at, unsigned int& index, MStatus* status) {
    const Target curve(object);
    const bool fits = curve && overTime(*curve.node) == timed;
    setStatus(status, curve.status(fits));
    const auto found = fits ? keyAt(curve, at) : std::nullopt;
    if (found) index = *found;
    return found.has_value();
}

unsigned int closest(const MObject& object, bool timed, double at, MStatus* status) {
    const Target curve(object);
    const bool fits = curve && overTime(*curve.node) == timed && !curve.keys->timed().empty();
    setStatus(status, curve.status(fits));
    if (!fits) return 0;
    const auto keys = curve.keys->timed();
    auto found = std::lower_bound(keys.begin(), keys.end(), at, [](const CurveKey& k, double t) { return k.time < t; });
    if (found == keys.end() || (found != keys.begin() && at - std::prev(found)->time <= found->time - at)) --found;
    return static_cast<unsigned int>(found - keys.begin());
}

MStatus valueAt(const MObject& object, bool timed, double at, double& value) {
    const Target curve(object);
    if (!curve) return MStatus::kFailure;
    if (overTime(*curve.node) != timed) return MStatus::kInvalidParameter;
    value = curve.keys->value(at, curveShape(*curve.node));
    return MStatus::kSuccess;
}

/// Puts a key at another place in time, between the keys beside it: it keeps its index.
MStatus moveKey(const MObject& object, unsigned int index, bool timed, double to, const MAnimCurveChange* change) {
    const Target curve(object);
    const CurveKey* key = curve.key(index);
    if (!key || change || overTime(*curve.node) != timed || std::isnan(to)) return curve.status(false);
    const CurveKey *before = index > 0 ? curve.key(index - 1) : nullptr, *after = curve.key(index + 1);
    if ((before && to <= before->time + sameTime) || (after && to >= after->time - sameTime)) return MStatus::kFailure;
    CurveKey moved = *key;
    moved.time = to;
    return api::guarded([&] { scene::changeKey(curve.node->scene, *curve.node, static_cast<int>(index), moved); });
}

/// The vector of a key's tangent.
std::pair<double, double> vectorOf(const Target& curve, unsigned int index, bool in) {
    const CurveKey& key = *curve.key(index);
    const CurveKey::List x = in ? CurveKey::InX : CurveKey::OutX;
    if ((in ? key.in : key.out) == static_cast<std::uint8_t>(Tangent::Fixed) && (key.given & x))
        return in ? std::pair<double, double>(key.inX, key.inY) : std::pair<double, double>(key.outX, key.outY);
    const auto shape = curveShape(*curve.node);
    const double slope = curve.keys->slope(index, !in, shape) * shape.perSecond;
    const double length = std::hypot(1, slope);
    return {1 / length, slope / length};
}

void setVector(CurveKey& key, bool in, double x, double y) {
    const auto fixed = static_cast<std::uint8_t>(Tangent::Fixed);
    if (in) {
        key.in = fixed;
        key.inX = static_cast<float>(x);
        key.inY = static_cast<float>(y);
        key.given = static_cast<std::uint16_t>(key.given | CurveKey::InX | CurveKey::InY | CurveKey::InType);
    } else {
        key.out = fixed;
        key.outX = static_cast<float>(x);
        key.outY = static_cast<float>(y);
        key.given = static_cast<std::uint16_t>(key.given | CurveKey::OutX | CurveKey::OutY | CurveKey::OutType);
    }
}

/// The same tangent by an angle or a length of its own; where both sides are locked to one another the other side goes
/// along.
template <class Turn>
MStatus turnTangent(const MObject& object, unsigned int index, bool in, const MAnimCurveChange* change, Turn turn) {
    const Target curve(object);
    if (!curve.key(index)) return curve.status(false);
    const std::pair<double, double> own = vectorOf(curve, index, in), across = vectorOf(curve, index, !in);
    return changeKey(object, index, change, [&](CurveKey& key) {
        auto [newX, newY] = own;
        turn(newX, newY);
        if (!std::isfinite(newX) || !std::isfinite(newY) || newX < 0) return false;
        setVector(key, in, newX, newY);
        const double length = std::hypot(newX, newY), other = std::hypot(across.first, across.second);
        if (key.tangentLocked && length > 0) setVector(key, !in, newX * other / length, newY * other / length);
        return true;
    });
}

Cell& setting(const Target& curve, const char* name) { return curve.node->cell(name); }

MStatus setSetting(const MObject& object, const char* name, double value, const MAnimCurveChange* change) {
    const Target curve(object);
    if (!curve || change) return curve.status(false);
    return api::guarded([&] { curve.node->scene.setNumber(setting(curve, name), value); });
}

} // namespace

MFnAnimCurve::MFnAnimCurve(const MPlug& plug, MStatus* ReturnStatus) {
    std::shared_ptr<scene::Node> keep;
    Cell* cell = Access::cell(plug, keep);
    scene::Node* curve = cell ? scene::curveOf(*cell) : nullptr;
    setStatus(ReturnStatus, attach(curve ? Access::object(curve) : MObject(), MFn::kAnimCurve).statusCode());
}

MObject MFnAnimCurve::create(AnimCurveType animCurveType, MDGModifier* modifier, MStatus* ReturnStatus) {
    const bool known = animCurveType >= kAnimCurveTA && animCurveType < kAnimCurveUnknown;
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!known) return MObject();
    MStatus status;
    if (modifier) {
        object_ = modifier->createNode(typeNames[animCurveType], &status);
        if (status) status = modifier->doIt();
    } else {
        status = api::guarded([&] {
            auto& scene = scene::Scene::current();
            object_ = Access::object(scene.createNode(*scene.findType(typeNames[animCurveType])).get());
        });
    }
    if (status) status = setSetting(object_, "weightedTangents", MAnimControl::weightedTangents(), nullptr);
    if (ReturnStatus) *ReturnStatus = status;
    return status ? object_ : MObject();
}

MObject MFnAnimCurve::create(const MPlug& plug, AnimCurveType animCurveType, MDGModifier* modifier,
                             MStatus* ReturnStatus) {
    std::shared_ptr<scene::Node> keep;
    Cell* cell = Access::cell(plug, keep);
    const bool free = cell && scene::curveTypeFor(cell->attribute) && !cell->source && !cell->lockedHere();
    setStatus(ReturnStatus, free ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!free) return MObject();
    std::string name = cell->node.name + "_" + cell->attributePath();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '.' || c == '[' || c == ']'; }, '_');
    MStatus status;
    create(animCurveType, modifier, &status);
    if (status) setName(api::fromText(name));
    const MPlug output = status ? findPlug("output", &status) : MPlug();
    if (status && modifier) {
        status = modifier->connect(output, plug);
        if (status) status = modifier->doIt();
    } else if (status) {
        std::shared_ptr<scene::Node> held;
        Cell* from = Access::cell(output, held);
        status = api::guarded([&] { cell->node.scene.connect(*from, *cell); });
    }
    if (ReturnStatus) *ReturnStatus = status;
    if (status) return object_;
    // Nothing stays of a curve that may not drive the plug.
    const MObject unused = std::exchange(object_, MObject());
    if (modifier && !unused.isNull()) {
        modifier->deleteNode(unused);
        modifier->doIt();
    } else if (const auto node = Access::node(unused)) {
        api::guarded([&] { node->scene.deleteNodes({node.get()}); });
    }
    return MObject();
}

MObject MFnAnimCurve::create(const MPlug& plug, MDGModifier* modifier, MStatus* ReturnStatus) {
    MPlug asked = plug;
    return create(plug, timedAnimCurveTypeForPlug(asked), modifier, ReturnStatus);
}

MObject MFnAnimCurve::create(const MObject& node, const MObject& attribute, MDGModifier* modifier, MStatus* s) {
    return create(MPlug(node, attribute), modifier, s);
}

MObject MFnAnimCurve::create(const MObject& node, const MObject& attribute, AnimCurveType animCurveType,
                             MDGModifier* modifier, MStatus* s) {
    return create(MPlug(node, attribute), animCurveType, modifier, s);
}

MFnAnimCurve::AnimCurveType MFnAnimCurve::animCurveType(MStatus* ReturnStatus) const {
    const Target curve(object_);
    setStatus(ReturnStatus, curve.status(true));
    for (int t = kAnimCurveTA; curve && t < kAnimCurveUnknown; ++t)
        if (curve.node->type.name == typeNames[t]) return static_cast<AnimCurveType>(t);
    return kAnimCurveUnknown;
}

MFnAnimCurve::AnimCurveType MFnAnimCurve::timedAnimCurveTypeForPlug(MPlug& plug, MStatus* ReturnStatus) const {
    const auto attribute = Access::attribute(plug.attribute());
    const char* name = attribute ? scene::curveTypeFor(*attribute) : nullptr;
    setStatus(ReturnStatus, name ? MStatus::kSuccess : MStatus::kInvalidParameter);
    for (int t = kAnimCurveTA; name && t <= kAnimCurveTU; ++t)
        if (std::string_view(name) == typeNames[t]) return static_cast<AnimCurveType>(t);
    return kAnimCurveUnknown;
}

MFnAnimCurve::AnimCurveType MFnAnimCurve::unitlessAnimCurveTypeForPlug(MPlug& plug, MStatus* s) const {
    const AnimCurveType timed = timedAnimCurveTypeForPlug(plug, s);
    return timed == kAnimCurveUnknown ? timed : static_cast<AnimCurveType>(timed + kAnimCurveUA);
}

double MFnAnimCurve::evaluate(const MTime& atTime, MStatus* ReturnStatus) const {
    double value = 0;
    setStatus(ReturnStatus, evaluate(atTime, value).statusCode());
    return value;
}

MStatus MFnAnimCurve::evaluate(const MTime& t, double& value) const {
    return valueAt(object_, true, ticksOf(t), value);
}

MStatus MFnAnimCurve::evaluate(const MTime& atTime, MTime& timeValue) const {
    double value = 0;
    const MStatus status = evaluate(atTime, value);
    if (status) timeValue = timeOf(value);
    return status;
}

MStatus MFnAnimCurve::evaluate(const double& at, double& value) const { return valueAt(object_, false, at, value); }

MStatus MFnAnimCurve::evaluate(const double& atUnitlessInput, MTime& timeValue) const {
    double value = 0;
    const MStatus status = evaluate(atUnitlessInput, value);
    if (status) timeValue = timeOf(value);
    return status;
}

bool MFnAnimCurve::isStatic(MStatus* ReturnStatus) const {
    const Target curve(object_);
    setStatus(ReturnStatus, curve.status(true));
    if (!curve) return false;
    const auto keys = curve.keys->timed();
    for (unsigned int i = 0; i < keys.size(); ++i)
        if (keys[i].value != keys.front().value || vectorOf(curve, i, true).second != 0 ||
            vectorOf(curve, i, false).second != 0)
            return false;
    return true;
}

unsigned int MFnAnimCurve::numKeys(MStatus* ReturnStatus) const {
    const Target curve(object_);
    setStatus(ReturnStatus, curve.status(true));
    return curve ? static_cast<unsigned int>(curve.keys->timed().size()) : 0;
}

unsigned int MFnAnimCurve::numKeyframes(MStatus* s) const { return numKeys(s); }

MStatus MFnAnimCurve::remove(unsigned int index, MAnimCurveChange* change) {
    const Target curve(object_);
    if (!curve.key(index) || change) return curve.status(false);
    return api::guarded([&] { scene::removeKey(curve.node->scene, *curve.node, static_cast<int>(index)); });
}

MStatus MFnAnimCurve::addKeyframe(const MTime& time, double value, MAnimCurveChange* change) {
    return addKeyframe(time, value, kTangentGlobal, kTangentGlobal, change);
}

MStatus MFnAnimCurve::addKeyframe(const MTime& time, double value, TangentType in, TangentType out,
                                  MAnimCurveChange* change) {
    return put(object_, true, false, ticksOf(time), value, in, out, change, nullptr);
}

#define ORVO_ADD_KEY(Input, Value, timed, timeValue, at, value)                                                        \
    unsigned int MFnAnimCurve::addKey(Input input, Value output, TangentType in, TangentType out,                      \
                                      MAnimCurveChange* change, MStatus* ReturnStatus) {                               \
        unsigned int index = 0;                                                                                        \
        setStatus(ReturnStatus,                                                                                        \
                  put(object_, timed, timeValue, at(input), value(output), in, out, change, &index).statusCode());     \
        return index;                                                                                                  \
    }

ORVO_ADD_KEY(const MTime&, double, true, false, ticksOf, double)
ORVO_ADD_KEY(const MTime&, const MTime&, true, true, ticksOf, ticksOf)
ORVO_ADD_KEY(double, double, false, false, double, double)
ORVO_ADD_KEY(double, const MTime&, false, true, double, ticksOf)

MStatus MFnAnimCurve::addKeys(MTimeArray* timeArray, MDoubleArray* valueArray, TangentType in, TangentType out,
                              bool keepExistingKeys, MAnimCurveChange* change) {
    const Target curve(object_);
    if (!curve) return MStatus::kFailure;
    if (!timeArray || !valueArray || timeArray->length() != valueArray->length() || !overTime(*curve.node) ||
        givesTime(*curve.node) || change || !stored(in, true) || !stored(out, false))
        return MStatus::kInvalidParameter;
    std::vector<CurveKey> keys(timeArray->length());
    for (unsigned int i = 0; i < timeArray->length(); ++i) {
        keys[i].time = ticksOf((*timeArray)[i]);
        keys[i].value = (*valueArray)[i];
        keys[i].in = *stored(in, true);
        keys[i].out = *stored(out, false);
    }
    return api::guarded([&] { scene::addKeys(curve.node->scene, *curve.node, std::move(keys), keepExistingKeys); });
}

bool MFnAnimCurve::find(const MTime& t, unsigned int& i, MStatus* s) const {
    return findAt(object_, true, ticksOf(t), i, s);
}
bool MFnAnimCurve::find(double at, unsigned int& i, MStatus* s) const { return findAt(object_, false, at, i, s); }
unsigned int MFnAnimCurve::findClosest(const MTime& t, MStatus* s) const {
    return closest(object_, true, ticksOf(t), s);
}
unsigned int MFnAnimCurve::findClosest(double at, MStatus* s) const { return closest(object_, false, at, s); }

MTime MFnAnimCurve::time(unsigned int index, MStatus* s) const {
    return ofKey(object_, index, s, [](const CurveKey& k) { return timeOf(k.time); });
}
double MFnAnimCurve::value(unsigned int index, MStatus* s) const {
    return ofKey(object_, index, s, [](const CurveKey& k) { return k.value; });
}
double MFnAnimCurve::unitlessInput(unsigned int index, MStatus* s) const {
    return ofKey(object_, index, s, [](const CurveKey& k) { return k.time; });
}

MStatus MFnAnimCurve::setValue(unsigned int index, double value, MAnimCurveChange* change) {
    return changeKey(object_, index, change, [&](CurveKey& key) {
        key.value = value;
        return true;
    });
}

MStatus MFnAnimCurve::setTime(unsigned int index, const MTime& time, MAnimCurveChange* change) {
    return moveKey(object_, index, true, ticksOf(time), change);
}
MStatus MFnAnimCurve::setUnitlessInput(unsigned int index, double unitlessInput, MAnimCurveChange* change) {
    return moveKey(object_, index, false, unitlessInput, change);
}

bool MFnAnimCurve::isTimeInput(MStatus* ReturnStatus) const {
    const Target curve(object_);
    setStatus(ReturnStatus, curve.status(true));
    return curve && overTime(*curve.node);
}
bool MFnAnimCurve::isUnitlessInput(MStatus* ReturnStatus) const {
    const Target curve(object_);
    setStatus(ReturnStatus, curve.status(true));
    return curve && !overTime(*curve.node);
}

namespace {

MFnAnimCurve::TangentType shown(const MObject& object, unsigned int index, bool in, MStatus* status) {
    const Target curve(object);
    const CurveKey* key = curve.key(index);
    setStatus(status, curve.status(key));
    if (!key) return MFnAnimCurve::kTangentGlobal;
    const std::uint8_t own = in ? key->in : key->out;
    const Tangent type = own == 0 ? curveShape(*curve.node).tangent : static_cast<Tangent>(own);
    for (const auto& [api, tangent] : tangents)
        if (tangent == type) return api;
    return MFnAnimCurve::kTangentGlobal;
}

MStatus setType(const MObject& object, unsigned int index, bool in, MFnAnimCurve::TangentType type,
                const MAnimCurveChange* change) {
    const Target curve(object);
    const auto kind = stored(type, in);
    if (!curve.key(index) || !kind) return curve.status(false);
    const auto [x, y] = vectorOf(curve, index, in);
    return changeKey(object, index, change, [&, x = x, y = y](CurveKey& key) {
        if (type == MFnAnimCurve::kTangentFixed) {
            setVector(key, in, x, y);
            return true;
        }
        (in ? key.in : key.out) = *kind;
        key.given = static_cast<std::uint16_t>(key.given | (in ? CurveKey::InType : CurveKey::OutType));
        return true;
    });
}

} // namespace

MFnAnimCurve::TangentType MFnAnimCurve::inTangentType(unsigned int i, MStatus* s) const {
    return shown(object_, i, true, s);
}
MFnAnimCurve::TangentType MFnAnimCurve::outTangentType(unsigned int i, MStatus* s) const {
    return shown(object_, i, false, s);
}
MStatus MFnAnimCurve::setInTangentType(unsigned int index, TangentType type, MAnimCurveChange* change) {
    return setType(object_, index, true, type, change);
}
MStatus MFnAnimCurve::setOutTangentType(unsigned int index, TangentType type, MAnimCurveChange* change) {
    return setType(object_, index, false, type, change);
}

MStatus MFnAnimCurve::setTangentTypes(MIntArray indexArray, TangentType in, TangentType out, MAnimCurveChange* change) {
    MStatus status;
    for (const int index : indexArray) {
        if (status) status = setInTangentType(static_cast<unsigned int>(index), in, change);
        if (status) status = setOutTangentType(static_cast<unsigned int>(index), out, change);
    }
    return status;
}

MStatus MFnAnimCurve::getTangent(unsigned int index, float& x, float& y, bool inTangent) const {
    const Target curve(object_);
    if (!curve.key(index)) return curve.status(false);
    const auto [vx, vy] = vectorOf(curve, index, inTangent);
    x = static_cast<float>(vx);
    y = static_cast<float>(vy);
    return MStatus::kSuccess;
}

MStatus MFnAnimCurve::getTangent(unsigned int index, MAngle& angle, double& weight, bool inTangent) const {
    const Target curve(object_);
    if (!curve.key(index)) return curve.status(false);
    const auto [x, y] = vectorOf(curve, index, inTangent);
    angle = MAngle(std::atan2(y, x), MAngle::kRadians);
    weight = std::hypot(x, y);
    return MStatus::kSuccess;
}

MStatus MFnAnimCurve::setTangent(unsigned int index, float x, float y, bool inTangent, MAnimCurveChange* change, bool) {
    return turnTangent(object_, index, inTangent, change, [&](double& vx, double& vy) {
        vx = x;
        vy = y;
    });
}

MStatus MFnAnimCurve::setTangent(unsigned int index, const MAngle& angle, double weight, bool inTangent,
                                 MAnimCurveChange* change, bool) {
    return turnTangent(object_, index, inTangent, change, [&](double& x, double& y) {
        x = weight * std::cos(angle.asRadians());
        y = weight * std::sin(angle.asRadians());
    });
}

MStatus MFnAnimCurve::setAngle(unsigned int index, const MAngle& angle, bool inTangent, MAnimCurveChange* change) {
    return turnTangent(object_, index, inTangent, change, [&](double& x, double& y) {
        const double length = std::hypot(x, y);
        x = length * std::cos(angle.asRadians());
        y = length * std::sin(angle.asRadians());
    });
}

MStatus MFnAnimCurve::setWeight(unsigned int index, double weight, bool inTangent, MAnimCurveChange* change) {
    if (!(weight >= 0)) return MStatus::kInvalidParameter;
    return turnTangent(object_, index, inTangent, change, [&](double& x, double& y) {
        const double length = std::hypot(x, y);
        x *= weight / length;
        y *= weight / length;
    });
}

#define ORVO_KEY_FLAG(get, set, member, list)                                                                          \
    bool MFnAnimCurve::get(unsigned int index, MStatus* s) const {                                                     \
        return ofKey(object_, index, s, [](const CurveKey& k) { return k.member; });                                   \
    }                                                                                                                  \
    MStatus MFnAnimCurve::set(unsigned int index, bool state, MAnimCurveChange* change) {                              \
        return changeKey(object_, index, change, [&](CurveKey& key) {                                                  \
            key.member = state;                                                                                        \
            key.given = static_cast<std::uint16_t>(key.given | CurveKey::list);                                        \
            return true;                                                                                               \
        });                                                                                                            \
    }

ORVO_KEY_FLAG(weightsLocked, setWeightsLocked, weightLocked, WeightLocked)
ORVO_KEY_FLAG(tangentsLocked, setTangentsLocked, tangentLocked, TangentLocked)
ORVO_KEY_FLAG(isBreakdown, setIsBreakdown, breakdown, Breakdown)

MFnAnimCurve::InfinityType MFnAnimCurve::preInfinityType(MStatus* ReturnStatus) const {
    const Target curve(object_);
    setStatus(ReturnStatus, curve.status(true));
    return curve ? static_cast<InfinityType>(static_cast<int>(curveShape(*curve.node).pre)) : kConstant;
}

MFnAnimCurve::InfinityType MFnAnimCurve::postInfinityType(MStatus* ReturnStatus) const {
    const Target curve(object_);
    setStatus(ReturnStatus, curve.status(true));
    return curve ? static_cast<InfinityType>(static_cast<int>(curveShape(*curve.node).post)) : kConstant;
}

MStatus MFnAnimCurve::setPreInfinityType(InfinityType type, MAnimCurveChange* change) {
    return setSetting(object_, "preInfinity", type, change);
}
MStatus MFnAnimCurve::setPostInfinityType(InfinityType type, MAnimCurveChange* change) {
    return setSetting(object_, "postInfinity", type, change);
}

bool MFnAnimCurve::isWeighted(MStatus* ReturnStatus) const {
    const Target curve(object_);
    setStatus(ReturnStatus, curve.status(true));
    return curve && curveShape(*curve.node).weighted;
}

MStatus MFnAnimCurve::setIsWeighted(bool isWeighted, MAnimCurveChange* change) {
    return setSetting(object_, "weightedTangents", isWeighted, change);
}
