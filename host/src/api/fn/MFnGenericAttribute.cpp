#include <maya/MFnGenericAttribute.h>

#include "api/fn/FnSupport.h"
#include "api/graph/DataTypes.h"
#include "values/Text.h"

#include <maya/MFnMessageAttribute.h>

using namespace host;
using host::api::Access;
using host::api::toText;
using scene::Attribute;
using scene::AttributeType;

ORVO_DEFINE_FN(MFnGenericAttribute, MFn::kGenericAttribute)
ORVO_FN_NAME(MFnGenericAttribute)
ORVO_DEFINE_FN(MFnMessageAttribute, MFn::kMessageAttribute)
ORVO_FN_NAME(MFnMessageAttribute)

namespace {

bool named(const MString& full, const MString& brief, MStatus* status) {
    const bool good = full.length() > 0 && brief.length() > 0;
    setStatus(status, good ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return good;
}

/// Adds a kind to those that the attribute takes, or takes it away.
MStatus change(const MObject& object, std::optional<scene::ValueKind> kind, bool add) {
    const auto a = Access::attribute(object);
    if (!a) return MStatus::kFailure;
    if (!kind) return MStatus::kInvalidParameter;
    const auto at = std::find(a->accepted.begin(), a->accepted.end(), *kind);
    if (add && at == a->accepted.end()) a->accepted.push_back(*kind);
    if (add) return MStatus::kSuccess;
    if (at == a->accepted.end()) return MStatus::kInvalidParameter;
    a->accepted.erase(at);
    return MStatus::kSuccess;
}

} // namespace

MObject MFnGenericAttribute::create(const MString& full, const MString& brief, MStatus* ReturnStatus) {
    if (!named(full, brief, ReturnStatus)) return MObject();
    const auto a = Attribute::text(toText(full), toText(brief));
    a->type = AttributeType::Generic;
    a->defaultValue = std::monostate();
    object_ = Access::object(a.get());
    return object_;
}

MStatus MFnGenericAttribute::addDataAccept(MFnData::Type t) { return change(object_, api::kindOf(t), true); }
MStatus MFnGenericAttribute::removeDataAccept(MFnData::Type t) { return change(object_, api::kindOf(t), false); }
MStatus MFnGenericAttribute::addNumericDataAccept(MFnNumericData::Type t) {
    return change(object_, api::kindOf(t), true);
}
MStatus MFnGenericAttribute::removeNumericDataAccept(MFnNumericData::Type t) {
    return change(object_, api::kindOf(t), false);
}
MStatus MFnGenericAttribute::addAccept(MFnData::Type t) { return addDataAccept(t); }
MStatus MFnGenericAttribute::addAccept(MFnNumericData::Type t) { return addNumericDataAccept(t); }
MStatus MFnGenericAttribute::removeAccept(MFnData::Type t) { return removeDataAccept(t); }
MStatus MFnGenericAttribute::removeAccept(MFnNumericData::Type t) { return removeNumericDataAccept(t); }

MObject MFnMessageAttribute::create(const MString& fullName, const MString& briefName, MStatus* ReturnStatus) {
    if (!named(fullName, briefName, ReturnStatus)) return MObject();
    object_ = Access::object(Attribute::message(toText(fullName), toText(briefName)).get());
    return object_;
}
