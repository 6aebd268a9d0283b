#include <maya/MFnUnitAttribute.h>

#include "api/fn/FnSupport.h"
#include "values/Text.h"
#include "values/TimeTicks.h"

using namespace host;
using host::api::Access;
using host::api::toText;
using scene::Attribute;
using scene::AttributeType;
using scene::Limits;

ORVO_DEFINE_FN(MFnUnitAttribute, MFn::kUnitAttribute)
ORVO_FN_NAME(MFnUnitAttribute)

namespace {

/// The kind of attribute that a value is for, and its number there; plain numbers are for all.
struct Inside {
    AttributeType type;
    double value;
};
Inside inside(double v) { return {AttributeType::Numeric, v}; }
Inside inside(const MTime& v) { return {AttributeType::Time, ticksOf(v)}; }
Inside inside(const MAngle& v) { return {AttributeType::Angle, v.asRadians()}; }
Inside inside(const MDistance& v) { return {AttributeType::Distance, v.asCentimeters()}; }

void show(double number, double& out) { out = number; }
void show(double number, MTime& out) { out = timeOf(number); }
void show(double number, MAngle& out) { out = MAngle(number, MAngle::kRadians); }
void show(double number, MDistance& out) { out = MDistance(number, MDistance::kCentimeters); }

bool fits(const Attribute& a, AttributeType type) { return type == AttributeType::Numeric || type == a.type; }

using Limit = std::optional<double> Limits::*;

bool has(const MObject& o, Limit limit, MStatus* status) {
    const auto a = Access::attribute(o);
    setStatus(status, a ? MStatus::kSuccess : MStatus::kFailure);
    return a && a->limits[0].*limit;
}

template <class T>
MStatus read(const MObject& o, Limit limit, T& out) {
    const auto a = Access::attribute(o);
    if (!a) return MStatus::kFailure;
    if (!fits(*a, inside(out).type)) return MStatus::kInvalidParameter;
    if (!(a->limits[0].*limit)) return MStatus::kFailure;
    show(*(a->limits[0].*limit), out);
    return MStatus::kSuccess;
}

MStatus write(const MObject& o, Limit limit, Inside in) {
    const auto a = Access::attribute(o);
    if (!a) return MStatus::kFailure;
    if (!fits(*a, in.type)) return MStatus::kInvalidParameter;
    a->limits[0].*limit = in.value;
    return MStatus::kSuccess;
}

template <class T>
MStatus readDefault(const MObject& o, T& out) {
    const auto a = Access::attribute(o);
    const auto* n = a ? std::get_if<scene::Numeric>(&a->defaultValue) : nullptr;
    if (!n) return MStatus::kFailure;
    if (!fits(*a, inside(out).type)) return MStatus::kInvalidParameter;
    show(n->get(), out);
    return MStatus::kSuccess;
}

MStatus writeDefault(const MObject& o, Inside in) {
    const auto a = Access::attribute(o);
    if (!a) return MStatus::kFailure;
    if (!fits(*a, in.type)) return MStatus::kInvalidParameter;
    a->defaultValue = scene::Numeric(scene::NumericType::Double, 1, in.value);
    return MStatus::kSuccess;
}

} // namespace

MObject MFnUnitAttribute::create(const MString& fullName, const MString& briefName, Type unitType, double defaultValue,
                                 MStatus* ReturnStatus) {
    const bool known = unitType > kInvalid && unitType < kLast;
    const bool good = known && fullName.length() > 0 && briefName.length() > 0;
    setStatus(ReturnStatus, good ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!good) return MObject();
    const AttributeType type = unitType == kAngle      ? AttributeType::Angle
                               : unitType == kDistance ? AttributeType::Distance
                                                       : AttributeType::Time;
    object_ = Access::object(Attribute::unit(toText(fullName), toText(briefName), type, defaultValue).get());
    return object_;
}

MObject MFnUnitAttribute::create(const MString& fullName, const MString& briefName, const MTime& defaultValue,
                                 MStatus* ReturnStatus) {
    return create(fullName, briefName, kTime, inside(defaultValue).value, ReturnStatus);
}

MObject MFnUnitAttribute::create(const MString& fullName, const MString& briefName, const MAngle& defaultValue,
                                 MStatus* ReturnStatus) {
    return create(fullName, briefName, kAngle, inside(defaultValue).value, ReturnStatus);
}

MObject MFnUnitAttribute::create(const MString& fullName, const MString& briefName, const MDistance& defaultValue,
                                 MStatus* ReturnStatus) {
    return create(fullName, briefName, kDistance, inside(defaultValue).value, ReturnStatus);
}

MFnUnitAttribute::Type MFnUnitAttribute::unitType(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    if (!a) return kInvalid;
    return a->type == AttributeType::Angle ? kAngle : a->type == AttributeType::Distance ? kDistance : kTime;
}

#define ORVO_UNIT_LIMIT(Name, member)                                                                                  \
    bool MFnUnitAttribute::has##Name(MStatus* s) const { return has(object_, &Limits::member, s); }                    \
    MStatus MFnUnitAttribute::get##Name(double& v) const { return read(object_, &Limits::member, v); }                 \
    MStatus MFnUnitAttribute::get##Name(MTime& v) const { return read(object_, &Limits::member, v); }                  \
    MStatus MFnUnitAttribute::get##Name(MAngle& v) const { return read(object_, &Limits::member, v); }                 \
    MStatus MFnUnitAttribute::get##Name(MDistance& v) const { return read(object_, &Limits::member, v); }              \
    MStatus MFnUnitAttribute::set##Name(double v) { return write(object_, &Limits::member, inside(v)); }               \
    MStatus MFnUnitAttribute::set##Name(const MTime& v) { return write(object_, &Limits::member, inside(v)); }         \
    MStatus MFnUnitAttribute::set##Name(const MAngle& v) { return write(object_, &Limits::member, inside(v)); }        \
    MStatus MFnUnitAttribute::set##Name(const MDistance& v) { return write(object_, &Limits::member, inside(v)); }

ORVO_UNIT_LIMIT(Min, min)
ORVO_UNIT_LIMIT(Max, max)
ORVO_UNIT_LIMIT(SoftMin, softMin)
ORVO_UNIT_LIMIT(SoftMax, softMax)

MStatus MFnUnitAttribute::getDefault(double& v) { return readDefault(object_, v); }
MStatus MFnUnitAttribute::getDefault(MTime& v) { return readDefault(object_, v); }
MStatus MFnUnitAttribute::getDefault(MAngle& v) { return readDefault(object_, v); }
MStatus MFnUnitAttribute::getDefault(MDistance& v) { return readDefault(object_, v); }
MStatus MFnUnitAttribute::setDefault(double v) { return writeDefault(object_, inside(v)); }
MStatus MFnUnitAttribute::setDefault(const MTime& v) { return writeDefault(object_, inside(v)); }
MStatus MFnUnitAttribute::setDefault(const MAngle& v) { return writeDefault(object_, inside(v)); }
MStatus MFnUnitAttribute::setDefault(const MDistance& v) { return writeDefault(object_, inside(v)); }
