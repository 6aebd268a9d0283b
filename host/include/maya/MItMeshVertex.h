#pragma once

#include <maya/MDagPath.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>
#include <maya/detail/MeshCursor.h>

/// Visits the vertices of a mesh: of a shape, of mesh data, or those of a component.
///
/// Lists of neighbours are in ascending order. What is set takes effect at once. Asking behind the last vertex gives
/// kFailure, indices that the vertex has nothing to do with kInvalidParameter. kWorld needs a shape.
class OPENMAYA_EXPORT MItMeshVertex : private maya_detail::MeshCursor {
public:
    MItMeshVertex(MObject& polyObject, MStatus* ReturnStatus = NULL);
    MItMeshVertex(const MDagPath& polyObject, MObject& component = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    virtual ~MItMeshVertex();
    bool isDone(MStatus* ReturnStatus = NULL);
    MStatus next();
    MStatus reset();
    MStatus reset(MObject& polyObject);
    MStatus reset(const MDagPath& polyObject, MObject& component = MObject::kNullObj);
    int count(MStatus* ReturnStatus = NULL);
    int index(MStatus* ReturnStatus = NULL);
    MObject vertex(MStatus* ReturnStatus = NULL);
    MObject currentItem(MStatus* ReturnStatus = NULL);
    MPoint position(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL);
    MStatus setPosition(const MPoint& point, MSpace::Space space = MSpace::kObject);
    MStatus translateBy(const MVector& vector, MSpace::Space space = MSpace::kObject);
    /// The average over the faces around the vertex.
    MStatus getNormal(MVector& vector, MSpace::Space space = MSpace::kObject);
    MStatus getNormal(MVector& vector, int faceIndex, MSpace::Space space = MSpace::kObject);
    /// One a face around the vertex.
    MStatus getNormals(MVectorArray& vectorArray, MSpace::Space space = MSpace::kObject);
    MStatus getNormalIndices(MIntArray& normalIndices) const;
    MStatus numUVs(int& count, const MString* uvSet = NULL);
    /// Gives all corners at the vertex one UV.
    MStatus setUV(float2& uvPoint, const MString* uvSet = NULL);
    /// The UV of the first face that has one here; kFailure when none does.
    MStatus getUV(float2& uvPoint, const MString* uvSet = NULL);
    MStatus setUV(int faceId, float2& uvPoint, const MString* uvSet = NULL);
    MStatus getUV(int faceId, float2& uvPoint, const MString* uvSet = NULL) const;
    MStatus setUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds, const MString* uvSet = NULL);
    MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds, const MString* uvSet = NULL) const;
    MStatus getUVIndices(MIntArray& uvIndices, const MString* uvSet = NULL) const;
    MStatus updateSurface();
    MStatus geomChanged();
    MStatus setIndex(int index, int& prevIndex);
    MStatus getConnectedFaces(MIntArray& faceList);
    MStatus getConnectedEdges(MIntArray& edgeList);
    MStatus getConnectedVertices(MIntArray& vertexList);
    MStatus numConnectedFaces(int& faceCount) const;
    MStatus numConnectedEdges(int& edgeCount) const;
    bool connectedToFace(int faceIndex, MStatus* ReturnStatus = NULL);
    bool connectedToEdge(int edgeIndex, MStatus* ReturnStatus = NULL);
    MStatus getOppositeVertex(int& vertexId, int edgeId);
    bool onBoundary(MStatus* ReturnStatus = NULL);
    static const char* className();
};
