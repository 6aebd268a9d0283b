#pragma once

#include <maya/MDagPath.h>
#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>
#include <maya/detail/MeshCursor.h>

/// Visits the polygons of a mesh: of a shape, of mesh data, or those of a component. Corners are counted from 0. What
/// MItMeshVertex says of lists and errors holds here, too.
class OPENMAYA_EXPORT MItMeshPolygon : private maya_detail::MeshCursor {
public:
    MItMeshPolygon(const MObject& polyObject, MStatus* ReturnStatus = NULL);
    MItMeshPolygon(const MDagPath& polyObject, MObject& component = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    virtual ~MItMeshPolygon();
    bool isDone(MStatus* ReturnStatus = NULL);
    MStatus next();
    MStatus reset();
    MStatus reset(const MObject& polyObject);
    MStatus reset(const MDagPath& polyObject, MObject& component = MObject::kNullObj);
    unsigned int count(MStatus* ReturnStatus = NULL);
    unsigned int polygonVertexCount(MStatus* ReturnStatus = NULL);
    /// The mean of the corners.
    MPoint center(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL);
    MObject polygon(MStatus* ReturnStatus = NULL);
    MObject currentItem(MStatus* ReturnStatus = NULL);
    unsigned int index(MStatus* ReturnStatus = NULL);
    MStatus setIndex(int index, int& prevIndex);
    unsigned int vertexIndex(int index, MStatus* ReturnStatus = NULL);
    MStatus getVertices(MIntArray& vertices);
    MPoint point(int index, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL);
    void getPoints(MPointArray& pointArray, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL);
    MStatus setPoint(const MPoint& point, unsigned int index, MSpace::Space space = MSpace::kObject);
    MStatus setPoints(MPointArray& pointArray, MSpace::Space space = MSpace::kObject);
    unsigned int normalIndex(int vertex, MStatus* ReturnStatus = NULL) const;
    MStatus getNormal(MVector& normal, MSpace::Space space = MSpace::kObject) const;
    MStatus getNormal(unsigned int Vertexindex, MVector& normal, MSpace::Space space = MSpace::kObject) const;
    MStatus getNormals(MVectorArray& vectorArray, MSpace::Space space = MSpace::kObject) const;
    bool hasUVs(MStatus* ReturnStatus = NULL) const;
    bool hasUVs(const MString& uvSet, MStatus* ReturnStatus = NULL) const;
    MStatus setUV(int vertexId, float2& uvPoint, const MString* uvSet = NULL);
    MStatus getUV(int vertexId, float2& uvPoint, const MString* uvSet = NULL) const;
    MStatus setUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet = NULL);
    MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet = NULL) const;
    /// Between the polygon's triangles and their UVs. kFailure where a corner has no UV, or no triangle the UV within
    /// the tolerance, a distance among UVs; the first of several that have it counts.
    MStatus getPointAtUV(MPoint& pt, float2& uvPoint, MSpace::Space space = MSpace::kObject,
                         const MString* uvSet = NULL, float tolerance = 0.0);
    /// The triangle's normal, and the ways in which u and v grow along it, of unit length.
    MStatus getAxisAtUV(MVector& normal, MVector& uTangent, MVector& vTangent, float2& uvPoint,
                        MSpace::Space space = MSpace::kObject, const MString* uvSet = NULL, float tolerance = 0.0);
    /// At the polygon's point that is nearest to the given one.
    MStatus getUVAtPoint(MPoint& pt, float2& uvPoint, MSpace::Space space = MSpace::kObject,
                         const MString* uvSet = NULL);
    MStatus getUVIndex(int vertex, int& index, const MString* uvSet = NULL);
    MStatus getUVIndex(int vertex, int& index, float& u, float& v, const MString* uvSet = NULL);
    MStatus getUVSetNames(MStringArray& setNames) const;
    bool hasValidTriangulation(MStatus* ReturnStatus = NULL) const;
    MStatus numTriangles(int& count) const;
    MStatus getTriangle(int localTriIndex, MPointArray& points, MIntArray& vertexList,
                        MSpace::Space space = MSpace::kObject) const;
    MStatus getTriangles(MPointArray& points, MIntArray& vertexList, MSpace::Space space = MSpace::kObject) const;
    MStatus updateSurface();
    MStatus geomChanged();
    MStatus getEdges(MIntArray& edges);
    /// The polygons that share an edge with this one, and the edges and vertices that share a vertex with it but are
    /// not its own.
    MStatus getConnectedFaces(MIntArray& faces);
    MStatus getConnectedEdges(MIntArray& edges);
    MStatus getConnectedVertices(MIntArray& vertices);
    bool isConnectedToFace(int index, MStatus* ReturnStatus = NULL);
    bool isConnectedToEdge(int index, MStatus* ReturnStatus = NULL);
    bool isConnectedToVertex(int index, MStatus* ReturnStatus = NULL);
    MStatus numConnectedFaces(int& faceCount) const;
    MStatus numConnectedEdges(int& edgeCount) const;
    /// Whether one of its edges has no other face.
    bool onBoundary(MStatus* ReturnStatus = NULL);
    /// The sum of its triangles, in square centimetres.
    MStatus getArea(double& area, MSpace::Space space = MSpace::kObject);
    bool zeroArea(MStatus* ReturnStatus = NULL);
    MStatus getUVArea(double& area, const MString* uvSet = NULL);
    bool zeroUVArea(MStatus* ReturnStatus = NULL);
    bool zeroUVArea(const MString& uvSet, MStatus* ReturnStatus = NULL);
    bool isConvex(MStatus* ReturnStatus = NULL);
    /// Whether all of it can be seen from its center().
    bool isStarlike(MStatus* ReturnStatus = NULL);
    /// Whether another polygon has the same vertices.
    bool isLamina(MStatus* ReturnStatus = NULL);
    bool isHoled(MStatus* ReturnStatus = NULL);
    bool isPlanar(MStatus* ReturnStatus = NULL);
    static const char* className();

private:
    /// The triangle that has a UV: its corners in the space, their UVs, and their weights there.
    MStatus atUV(const float2& uvPoint, MSpace::Space space, const MString* uvSet, double tolerance,
                 MPoint (&corners)[3], float (&uv)[3][2], double (&weights)[3]) const;
};
