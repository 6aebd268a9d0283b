#include <maya/MFnAttribute.h>

#include "api/fn/FnSupport.h"
#include "api/graph/DataTypes.h"
#include "values/Text.h"

#include <maya/MFloatMatrix.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MMatrix.h>
#include <maya/MString.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::toText;
using scene::Attribute;
using scene::AttributePtr;
using scene::AttributeType;
using scene::DataKind;

ORVO_DEFINE_FN(MFnAttribute, MFn::kAttribute)
ORVO_FN_NAME(MFnAttribute)
ORVO_DEFINE_FN(MFnEnumAttribute, MFn::kEnumAttribute)
ORVO_FN_NAME(MFnEnumAttribute)
ORVO_DEFINE_FN(MFnMatrixAttribute, MFn::kMatrixAttribute)
ORVO_FN_NAME(MFnMatrixAttribute)
ORVO_DEFINE_FN(MFnTypedAttribute, MFn::kTypedAttribute)
ORVO_FN_NAME(MFnTypedAttribute)
ORVO_DEFINE_FN(MFnCompoundAttribute, MFn::kCompoundAttribute)
ORVO_FN_NAME(MFnCompoundAttribute)

namespace {

/// Names a new attribute must have.
bool named(const MString& full, const MString& brief, MStatus* status) {
    const bool ok = full.length() > 0 && brief.length() > 0;
    setStatus(status, ok ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return ok;
}

} // namespace

bool MFnAttribute::flag(bool Attribute::*member, MStatus* status) const {
    const auto a = Access::attribute(object_);
    setStatus(status, a ? MStatus::kSuccess : MStatus::kFailure);
    return a && (*a).*member;
}

MStatus MFnAttribute::setFlag(bool Attribute::*member, bool state) {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    (*a).*member = state;
    // A tuple's parts follow it; a compound's are attributes of their own.
    if (a->type == AttributeType::Tuple && member != &Attribute::array)
        for (const auto& c : a->children) (*c).*member = state;
    return MStatus::kSuccess;
}

bool MFnAttribute::isReadable(MStatus* s) const { return flag(&Attribute::readable, s); }
bool MFnAttribute::isWritable(MStatus* s) const { return flag(&Attribute::writable, s); }
bool MFnAttribute::isConnectable(MStatus* s) const { return flag(&Attribute::connectable, s); }
bool MFnAttribute::isStorable(MStatus* s) const { return flag(&Attribute::storable, s); }
bool MFnAttribute::isCached(MStatus* s) const { return flag(&Attribute::cached, s); }
bool MFnAttribute::isArray(MStatus* s) const { return flag(&Attribute::array, s); }
bool MFnAttribute::indexMatters(MStatus* s) const { return flag(&Attribute::indexMatters, s); }
bool MFnAttribute::isKeyable(MStatus* s) const { return flag(&Attribute::keyable, s); }
bool MFnAttribute::isChannelBoxFlagSet(MStatus* s) const { return flag(&Attribute::channelBox, s); }
bool MFnAttribute::isHidden(MStatus* s) const { return flag(&Attribute::hidden, s); }
bool MFnAttribute::isUsedAsColor(MStatus* s) const { return flag(&Attribute::usedAsColor, s); }
bool MFnAttribute::isIndeterminant(MStatus* s) const { return flag(&Attribute::indeterminant, s); }
bool MFnAttribute::isRenderSource(MStatus* s) const { return flag(&Attribute::renderSource, s); }
bool MFnAttribute::isDynamic(MStatus* s) const { return flag(&Attribute::dynamic, s); }
bool MFnAttribute::isWorldSpace(MStatus* s) const { return flag(&Attribute::worldSpace, s); }
bool MFnAttribute::isAffectsWorldSpace(MStatus* s) const { return flag(&Attribute::affectsWorldSpace, s); }
bool MFnAttribute::isUsedAsFilename(MStatus* s) const { return flag(&Attribute::usedAsFilename, s); }
bool MFnAttribute::affectsAppearance(MStatus* s) const { return flag(&Attribute::affectsAppearance, s); }
bool MFnAttribute::usesArrayDataBuilder(MStatus* s) const { return flag(&Attribute::usesArrayDataBuilder, s); }
bool MFnAttribute::internal(MStatus* s) const { return flag(&Attribute::internal, s); }

MStatus MFnAttribute::setReadable(bool v) { return setFlag(&Attribute::readable, v); }
MStatus MFnAttribute::setWritable(bool v) { return setFlag(&Attribute::writable, v); }
MStatus MFnAttribute::setConnectable(bool v) { return setFlag(&Attribute::connectable, v); }
MStatus MFnAttribute::setStorable(bool v) { return setFlag(&Attribute::storable, v); }
MStatus MFnAttribute::setCached(bool v) { return setFlag(&Attribute::cached, v); }
MStatus MFnAttribute::setArray(bool v) { return setFlag(&Attribute::array, v); }
MStatus MFnAttribute::setIndexMatters(bool v) { return setFlag(&Attribute::indexMatters, v); }
MStatus MFnAttribute::setKeyable(bool v) { return setFlag(&Attribute::keyable, v); }
MStatus MFnAttribute::setChannelBox(bool v) { return setFlag(&Attribute::channelBox, v); }
MStatus MFnAttribute::setHidden(bool v) { return setFlag(&Attribute::hidden, v); }
MStatus MFnAttribute::setUsedAsColor(bool v) { return setFlag(&Attribute::usedAsColor, v); }
MStatus MFnAttribute::setIndeterminant(bool v) { return setFlag(&Attribute::indeterminant, v); }
MStatus MFnAttribute::setRenderSource(bool v) { return setFlag(&Attribute::renderSource, v); }
MStatus MFnAttribute::setWorldSpace(bool v) { return setFlag(&Attribute::worldSpace, v); }
MStatus MFnAttribute::setAffectsWorldSpace(bool v) { return setFlag(&Attribute::affectsWorldSpace, v); }
MStatus MFnAttribute::setUsedAsFilename(bool v) { return setFlag(&Attribute::usedAsFilename, v); }
MStatus MFnAttribute::setAffectsAppearance(bool v) { return setFlag(&Attribute::affectsAppearance, v); }
MStatus MFnAttribute::setUsesArrayDataBuilder(bool v) { return setFlag(&Attribute::usesArrayDataBuilder, v); }
MStatus MFnAttribute::setInternal(bool v) { return setFlag(&Attribute::internal, v); }

MFnAttribute::DisconnectBehavior MFnAttribute::disconnectBehavior(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a ? static_cast<DisconnectBehavior>(a->disconnectBehavior) : kNothing;
}

MStatus MFnAttribute::setDisconnectBehavior(DisconnectBehavior behavior) {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    a->disconnectBehavior = behavior;
    return MStatus::kSuccess;
}

MStatus MFnAttribute::setNiceNameOverride(const MString& localizedName) {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    a->niceName = toText(localizedName);
    return MStatus::kSuccess;
}

bool MFnAttribute::accepts(MFnData::Type type, MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    if (!a) return false;
    if (a->type == AttributeType::Generic) {
        const auto kind = api::kindOf(type);
        return kind && a->accepts(*kind);
    }
    if (a->type == AttributeType::Data) return api::typeOf(a->dataKind) == type;
    switch (type) {
    case MFnData::kNumeric: return a->isNumber() || a->type == AttributeType::Tuple;
    case MFnData::kString: return a->type == AttributeType::String;
    case MFnData::kMatrix: return a->type == AttributeType::Matrix;
    default: return false;
    }
}

MObject MFnAttribute::parent(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a && a->parent ? MStatus::kSuccess : MStatus::kNotFound);
    return a ? Access::object(a->parent) : MObject();
}

MString MFnAttribute::name(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a ? fromText(a->longName) : MString();
}

MString MFnAttribute::shortName(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a ? fromText(a->shortName) : MString();
}

MObject MFnEnumAttribute::create(const MString& fullName, const MString& briefName, short defaultValue,
                                 MStatus* ReturnStatus) {
    if (!named(fullName, briefName, ReturnStatus)) return MObject();
    object_ = Access::object(Attribute::enumeration(toText(fullName), toText(briefName), defaultValue, {}).get());
    return object_;
}

MStatus MFnEnumAttribute::addField(const MString& fieldString, short index) {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    std::erase_if(a->fields, [&](const auto& f) { return f.second == index; });
    const auto at = std::find_if(a->fields.begin(), a->fields.end(), [&](const auto& f) { return f.second > index; });
    a->fields.insert(at, {toText(fieldString), index});
    return MStatus::kSuccess;
}

MString MFnEnumAttribute::fieldName(short index, MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    const auto name = a ? a->fieldName(index) : std::nullopt;
    setStatus(ReturnStatus, name ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return name ? fromText(*name) : MString();
}

short MFnEnumAttribute::fieldIndex(const MString& fieldString, MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    const auto i = a ? a->fieldIndex(toText(fieldString)) : std::nullopt;
    setStatus(ReturnStatus, i ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return i.value_or(0);
}

MStatus MFnEnumAttribute::getMin(short& minValue) const {
    const auto a = Access::attribute(object_);
    if (!a || a->fields.empty()) return MStatus::kFailure;
    minValue = a->fields.front().second;
    return MStatus::kSuccess;
}

MStatus MFnEnumAttribute::getMax(short& maxValue) const {
    const auto a = Access::attribute(object_);
    if (!a || a->fields.empty()) return MStatus::kFailure;
    maxValue = a->fields.back().second;
    return MStatus::kSuccess;
}

MStatus MFnEnumAttribute::setDefault(short index) {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    a->defaultValue = scene::Numeric(scene::NumericType::Short, 1, index);
    return MStatus::kSuccess;
}

MStatus MFnEnumAttribute::setDefault(const MString& fieldString) {
    MStatus status;
    const short i = fieldIndex(fieldString, &status);
    return status ? setDefault(i) : status;
}

MStatus MFnEnumAttribute::getDefault(short& index) const {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    index = static_cast<short>(std::get<scene::Numeric>(a->defaultValue).get());
    return MStatus::kSuccess;
}

MString MFnEnumAttribute::defaultValue(MStatus* ReturnStatus) const {
    short i = 0;
    const MStatus status = getDefault(i);
    if (!status) {
        setStatus(ReturnStatus, status.statusCode());
        return MString();
    }
    return fieldName(i, ReturnStatus);
}

MStatus MFnEnumAttribute::getDefault(MString& fieldString) const {
    MStatus status;
    fieldString = defaultValue(&status);
    return status;
}

MObject MFnMatrixAttribute::create(const MString& fullName, const MString& briefName, Type matrixType,
                                   MStatus* ReturnStatus) {
    if (!named(fullName, briefName, ReturnStatus)) return MObject();
    auto a = Attribute::matrix(toText(fullName), toText(briefName));
    if (matrixType == kFloat) {
        a->type = AttributeType::FloatMatrix;
        a->defaultValue = MFloatMatrix();
    }
    object_ = Access::object(a.get());
    return object_;
}

namespace {

template <class M>
MStatus readMatrix(const MObject& o, M& out) {
    const auto a = Access::attribute(o);
    const auto* held = a ? std::get_if<scene::Boxed<M>>(&a->defaultValue) : nullptr;
    if (!held) return MStatus::kInvalidParameter;
    out = held->get();
    return MStatus::kSuccess;
}

template <class M>
MStatus writeMatrix(const MObject& o, const M& in) {
    const auto a = Access::attribute(o);
    if (!a || !std::holds_alternative<scene::Boxed<M>>(a->defaultValue)) return MStatus::kInvalidParameter;
    a->defaultValue = in;
    return MStatus::kSuccess;
}

} // namespace

MStatus MFnMatrixAttribute::getDefault(MMatrix& def) { return readMatrix(object_, def); }
MStatus MFnMatrixAttribute::getDefault(MFloatMatrix& def) { return readMatrix(object_, def); }
MStatus MFnMatrixAttribute::setDefault(const MMatrix& def) { return writeMatrix(object_, def); }
MStatus MFnMatrixAttribute::setDefault(const MFloatMatrix& def) { return writeMatrix(object_, def); }

MObject MFnTypedAttribute::create(const MString& full, const MString& brief, MFnData::Type type, MObject defaultData,
                                  MStatus* ReturnStatus) {
    if (!named(full, brief, ReturnStatus)) return MObject();
    AttributePtr a;
    const auto data = [&](DataKind kind) { return Attribute::data(toText(full), toText(brief), kind); };
    switch (type) {
    case MFnData::kString: a = Attribute::text(toText(full), toText(brief)); break;
    case MFnData::kMatrix: a = Attribute::matrix(toText(full), toText(brief)); break;
    case MFnData::kMesh: a = data(DataKind::Mesh); break;
    case MFnData::kStringArray: a = data(DataKind::StringArray); break;
    case MFnData::kDoubleArray: a = data(DataKind::DoubleArray); break;
    case MFnData::kFloatArray: a = data(DataKind::FloatArray); break;
    case MFnData::kIntArray: a = data(DataKind::IntArray); break;
    case MFnData::kPointArray: a = data(DataKind::PointArray); break;
    case MFnData::kVectorArray: a = data(DataKind::VectorArray); break;
    case MFnData::kMatrixArray: a = data(DataKind::MatrixArray); break;
    case MFnData::kComponentList: a = data(DataKind::ComponentList); break;
    case MFnData::kAny:
        a = Attribute::text(toText(full), toText(brief));
        a->type = AttributeType::Generic;
        a->defaultValue = std::monostate();
        break;
    default: setStatus(ReturnStatus, MStatus::kNotImplemented); return MObject();
    }
    object_ = Access::object(a.get());
    if (!defaultData.isNull()) {
        const MStatus status = setDefault(defaultData);
        setStatus(ReturnStatus, status.statusCode());
    }
    return object_;
}

MObject MFnTypedAttribute::create(const MString& full, const MString& brief, MFnData::Type type,
                                  MStatus* ReturnStatus) {
    return create(full, brief, type, MObject::kNullObj, ReturnStatus);
}

MFnData::Type MFnTypedAttribute::attrType(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    if (!a) return MFnData::kInvalid;
    if (a->type == AttributeType::String) return MFnData::kString;
    if (a->type == AttributeType::Matrix) return MFnData::kMatrix;
    return a->type == AttributeType::Generic ? MFnData::kAny : api::typeOf(a->dataKind);
}

MStatus MFnTypedAttribute::getDefault(MObject& defaultData) {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    defaultData = Access::object(a->defaultValue);
    return MStatus::kSuccess;
}

MStatus MFnTypedAttribute::setDefault(const MObject& defaultData) {
    const auto a = Access::attribute(object_);
    const auto* d = Access::data(defaultData);
    if (!a || !d) return MStatus::kInvalidParameter;
    if (a->type != AttributeType::Generic && a->defaultValue.index() != d->value.index())
        return MStatus::kInvalidParameter;
    const auto* data = std::get_if<scene::DataPtr>(&d->value);
    if (a->type == AttributeType::Data && data && *data && (*data)->kind() != a->dataKind)
        return MStatus::kInvalidParameter;
    a->defaultValue = d->value;
    return MStatus::kSuccess;
}

MObject MFnCompoundAttribute::create(const MString& full, const MString& brief, MStatus* ReturnStatus) {
    if (!named(full, brief, ReturnStatus)) return MObject();
    object_ = Access::object(Attribute::compound(toText(full), toText(brief), {}).get());
    return object_;
}

namespace {

/// Whether nodes have the attribute, so that its parts have to stay as they are.
bool inUse(const Attribute& a) { return a.root().dynamic || api::belongsToType(a.root()); }

} // namespace

MStatus MFnCompoundAttribute::addChild(const MObject& child) {
    const auto a = Access::attribute(object_), c = Access::attribute(child);
    if (!a || a->type != AttributeType::Compound) return MStatus::kFailure;
    if (!c || c->parent || c.get() == &a->root()) return MStatus::kInvalidParameter;
    if (inUse(*a) || inUse(*c)) return MStatus::kFailure;
    a->addChild(c);
    return MStatus::kSuccess;
}

MStatus MFnCompoundAttribute::removeChild(const MObject& child) {
    const auto a = Access::attribute(object_), c = Access::attribute(child);
    if (!a || !c || c->parent != a.get()) return MStatus::kInvalidParameter;
    if (inUse(*a)) return MStatus::kFailure;
    c->parent = nullptr;
    std::erase(a->children, c);
    for (std::size_t i = 0; i < a->children.size(); ++i) a->children[i]->childIndex = static_cast<int>(i);
    return MStatus::kSuccess;
}

unsigned int MFnCompoundAttribute::numChildren(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a ? static_cast<unsigned int>(a->children.size()) : 0;
}

MObject MFnCompoundAttribute::child(unsigned int index, MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    const bool ok = a && index < a->children.size();
    setStatus(ReturnStatus, ok ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return ok ? Access::object(a->children[index].get()) : MObject();
}
