#include <maya/MFnMeshData.h>

#include "api/fn/FnSupport.h"

using namespace host;

ORVO_DEFINE_FN(MFnGeometryData, MFn::kGeometryData)
ORVO_FN_NAME(MFnGeometryData)
ORVO_DEFINE_FN(MFnMeshData, MFn::kMeshData)
ORVO_FN_NAME(MFnMeshData)

MObject MFnMeshData::create(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    object_ = api::Access::object(scene::Value(scene::DataPtr(std::make_shared<scene::MeshData>())));
    return object_;
}
