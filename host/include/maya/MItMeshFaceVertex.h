#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MVector.h>
#include <maya/detail/MeshCursor.h>

/// Visits the corners of a mesh's polygons, polygon by polygon: all of them, or those of the polygons, or at the
/// vertices, of a component. What MItMeshVertex says of errors holds here, too.
class OPENMAYA_EXPORT MItMeshFaceVertex : private maya_detail::MeshCursor {
public:
    MItMeshFaceVertex(const MObject& polyObject, MStatus* ReturnStatus = NULL);
    MItMeshFaceVertex(const MDagPath& polyObject, MObject& component = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    virtual ~MItMeshFaceVertex();
    bool isDone(MStatus* ReturnStatus = NULL);
    MStatus next();
    MStatus reset();
    MStatus reset(const MObject& polyObject);
    MStatus reset(const MDagPath& polyObject, MObject& component = MObject::kNullObj);
    int vertId(MStatus* ReturnStatus = NULL) const;
    int faceId(MStatus* ReturnStatus = NULL) const;
    /// Which of the polygon's corners it is.
    int faceVertId(MStatus* ReturnStatus = NULL) const;
    MPoint position(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL);
    MStatus getNormal(MVector& normal, MSpace::Space space = MSpace::kObject) const;
    int normalId(MStatus* ReturnStatus = NULL) const;
    bool hasUVs(MStatus* ReturnStatus = NULL) const;
    bool hasUVs(const MString& uvSet, MStatus* ReturnStatus = NULL) const;
    MStatus getUV(float2& uvPoint, const MString* uvSet = NULL) const;
    MStatus getUVIndex(int& index, const MString* uvSet = NULL);
    MStatus getUVIndex(int& index, float& u, float& v, const MString* uvSet = NULL);
    MStatus updateSurface();
    MStatus geomChanged();
    /// Goes to a corner of a polygon, counted from 0, and tells where it was.
    MStatus setIndex(int faceId, int vertFaceId, int& prevFaceId, int& prevVertId);
    static const char* className();

private:
    int face() const;
};
