#include <maya/MFnBase.h>

#include "api/graph/Handle.h"
#include "values/StatusOut.h"

MFnBase::MFnBase() = default;
MFnBase::~MFnBase() = default;
MFn::Type MFnBase::type() const { return MFn::kBase; }
bool MFnBase::hasObj(MFn::Type mtype) const { return object_.hasFn(mtype); }
bool MFnBase::hasObj(const MObject& object) const { return object.hasFn(type()); }

MObject MFnBase::object(MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, object_.isNull() ? MStatus::kFailure : MStatus::kSuccess);
    return object_;
}

MStatus MFnBase::attach(const MObject& object, MFn::Type wanted) {
    object_ = MObject();
    if (object.isNull() || !object.hasFn(wanted)) return MStatus::kInvalidParameter;
    object_ = object;
    return MStatus::kSuccess;
}

MStatus MFnBase::setObject(MObject& object) { return attach(object, type()); }
MStatus MFnBase::setObject(const MObject& object) { return attach(object, type()); }
const char* MFnBase::className() { return "MFnBase"; }
