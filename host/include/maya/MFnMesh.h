#pragma once

#include <maya/MDGModifier.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnDagNode.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MSpace.h>
#include <maya/MStringArray.h>
#include <maya/MUintArray.h>
#include <maya/MVector.h>

#define kMFnMeshTolerance 1.0e-10
#define kMFnMeshPointTolerance 1.0e-3
#define kMFnMeshInstanceUnspecified -1

/// How queries of rays and nearest points are to be sped up. All kinds make the same structure here, whatever the
/// numbers: a tree of boxes, kept with the mesh until it changes.
class OPENMAYA_EXPORT MMeshIsectAccelParams {
public:
    ~MMeshIsectAccelParams() = default;

private:
    MMeshIsectAccelParams() = default;
    friend class MFnMesh;
};

/// Function set for polygon meshes: those of mesh shapes, and mesh data (MFnMeshData).
///
/// Positions are in centimetres and single precision; a position's w is not looked at. kWorld needs a shape, every
/// other space but kInvalid and kLast is the mesh's own. A path to a transform stands for its only mesh shape. Indices
/// out of range, arrays of a wrong length, names of UV sets that do not exist and spaces that do not apply give
/// kInvalidParameter, and change nothing. A shape or data without geometry, or whose node is gone, gives kFailure.
///
/// Shapes that are fed by a connection accept changes of points alone; others give kFailure. A null `uvSet` means the
/// current set. Changes take place at once, whether or not a modifier is given.
class OPENMAYA_EXPORT MFnMesh : public MFnDagNode {
public:
    ORVO_DECLARE_FN(MFnMesh)
    MFnMesh(const MDagPath& object, MStatus* ReturnStatus = NULL);
    virtual ~MFnMesh();
    virtual MStatus setObject(const MDagPath& objectPath) override;
    virtual MStatus setObject(MObject& object) override;
    virtual MStatus setObject(const MObject& object) override;

    /// @name Making meshes
    /// Counts are the polygons' numbers of corners, 3 or more each; connects are the vertices of all corners. Without a
    /// parent a shape with a transform is made, and the transform is the answer; below a parent transform a shape, and
    /// with mesh data as owner its geometry. The function set works on the new shape or data then. The UVs become those
    /// of the set "map1", for assignUVs().
    /// @{
    MObject create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                   const MIntArray& polygonCounts, const MIntArray& polygonConnects,
                   MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MObject create(int numVertices, int numPolygons, const MPointArray& vertexArray, const MIntArray& polygonCounts,
                   const MIntArray& polygonConnects, MObject parentOrOwner = MObject::kNullObj,
                   MStatus* ReturnStatus = NULL);
    MObject create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                   const MIntArray& polygonCounts, const MIntArray& polygonConnects, const MFloatArray& uArray,
                   const MFloatArray& vArray, MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MObject create(int numVertices, int numPolygons, const MPointArray& vertexArray, const MIntArray& polygonCounts,
                   const MIntArray& polygonConnects, const MFloatArray& uArray, const MFloatArray& vArray,
                   MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    /// A copy of another mesh (a shape, or data), placed as create() does.
    MObject copy(const MObject& source, MObject parentOrOwner = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MStatus createInPlace(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                          const MIntArray& polygonCounts, const MIntArray& polygonConnects);
    MStatus copyInPlace(const MObject& source);
    /// Tells that changes are complete; they show without it.
    MStatus updateSurface();
    /// @}

    /// @name Vertices, edges and polygons
    /// @{
    int numVertices(MStatus* ReturnStatus = NULL) const;
    int numEdges(MStatus* ReturnStatus = NULL) const;
    int numPolygons(MStatus* ReturnStatus = NULL) const;
    int numFaceVertices(MStatus* ReturnStatus = NULL) const;
    int polygonVertexCount(int polygonId, MStatus* ReturnStatus = NULL) const;
    MStatus getPoints(MFloatPointArray& vertexArray, MSpace::Space space = MSpace::kObject) const;
    MStatus getPoints(MPointArray& vertexArray, MSpace::Space space = MSpace::kObject) const;
    MStatus setPoints(MFloatPointArray& vertexArray, MSpace::Space space = MSpace::kObject);
    MStatus setPoints(MPointArray& vertexArray, MSpace::Space space = MSpace::kObject);
    MStatus getPoint(int vertexId, MPoint& pos, MSpace::Space space = MSpace::kObject) const;
    MStatus setPoint(int vertexId, const MPoint& pos, MSpace::Space space = MSpace::kObject);
    MStatus getVertices(MIntArray& vertexCount, MIntArray& vertexList) const;
    MStatus getPolygonVertices(int polygonId, MIntArray& vertexList) const;
    /// The vertices of one of a polygon's triangles; a polygon of n corners has n - 2.
    MStatus getPolygonTriangleVertices(int polygonId, int triangleId, int vertexList[3]) const;
    /// The numbers of triangles of the polygons, and the triangles' vertices.
    MStatus getTriangles(MIntArray& triangleCounts, MIntArray& triangleVertices) const;
    /// The same with places in the list of getVertices() in the vertices' stead.
    MStatus getTriangleOffsets(MIntArray& triangleCounts, MIntArray& triangleIndices) const;
    MStatus getEdgeVertices(int edgeId, int2& vertexList) const;
    bool isEdgeSmooth(int edgeId, MStatus* ReturnStatus = NULL) const;
    MStatus setEdgeSmoothing(int edgeId, bool smooth = true);
    /// Settles setEdgeSmoothing(), which takes effect without it.
    MStatus cleanupEdgeSmoothing();
    /// @}

    /// @name Normals, of unit length
    /// Those of a polygon's corners are the ones that were given, else averages over the polygons that smooth edges
    /// join at the vertex. Those of vertices are averages over all of its polygons. Polygons without area
    /// have the normal (0, 0, 0).
    /// @{
    /// One a face vertex, in the order of getVertices().
    MStatus getNormals(MFloatVectorArray& normals, MSpace::Space space = MSpace::kObject) const;
    int numNormals(MStatus* ReturnStatus = NULL) const;
    MStatus getNormalIds(MIntArray& normalCounts, MIntArray& normals) const;
    MStatus getFaceNormalIds(int faceIndex, MIntArray& normals) const;
    /// The vertex is the mesh's, and must be one of the polygon's.
    MStatus getFaceVertexNormal(int faceIndex, int vertexIndex, MVector& normal,
                                MSpace::Space space = MSpace::kObject) const;
    MStatus getFaceVertexNormals(int faceIndex, MFloatVectorArray& normals,
                                 MSpace::Space space = MSpace::kObject) const;
    /// Every polygon counts the same, or by its angle at the vertex.
    MStatus getVertexNormal(int vertexId, MVector& normal, MSpace::Space space = MSpace::kObject) const;
    MStatus getVertexNormal(int vertexId, bool angleWeighted, MVector& normal,
                            MSpace::Space space = MSpace::kObject) const;
    MStatus getVertexNormals(bool angleWeighted, MFloatVectorArray& normals,
                             MSpace::Space space = MSpace::kObject) const;
    MStatus getPolygonNormal(int polygonId, MVector& normal, MSpace::Space space = MSpace::kObject) const;
    /// @}

    /// @name Rays
    /// Source and direction are in the given space, as are hit points; the parameter of a hit is its distance from the
    /// source in lengths of the direction. Triangles are met from both sides. `maxParam` bounds the search, backwards
    /// too when testing both directions: parameters are negative there. `tolerance` says how far outside of a triangle
    /// still counts, as a share of its size (0 to 1). With `faceIds`, only those faces are looked at, or with `triIds`
    /// also, of equal length, only those of their triangles. With `accelParams` a structure for speed is made and kept
    /// with the mesh; without them, from the second query of an unchanged mesh on. The answers are the same.
    ///
    /// The hit point is `hitBary1` * first + `hitBary2` * second + the rest * third corner of the triangle. Among hits
    /// of equal parameter, that of the lowest face and then triangle comes first. Result pointers may be null.
    /// kInvalidParameter: a ray that is not finite or has no direction, a bound or tolerance out of range, ids that do
    /// not exist. Without a hit, the results stay as they are (arrays: are emptied).
    /// @{
    static MMeshIsectAccelParams uniformGridParams(int xDiv, int yDiv, int zDiv);
    static MMeshIsectAccelParams autoUniformGridParams();
    /// The hit nearest to the source; forward wins over backward.
    bool closestIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection, const MIntArray* faceIds,
                             const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                             bool testBothDirections, MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint,
                             float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2,
                             float tolerance = 1e-6, MStatus* ReturnStatus = NULL);
    /// Any hit; it happens to be the nearest one.
    bool anyIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection, const MIntArray* faceIds,
                         const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                         bool testBothDirections, MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint,
                         float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2,
                         float tolerance = 1e-6, MStatus* ReturnStatus = NULL);
    /// All hits, sorted by their signed parameter, or by face and triangle. A ray through an edge meets both sides.
    bool allIntersections(const MFloatPoint& raySource, const MFloatVector& rayDirection, const MIntArray* faceIds,
                          const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                          bool testBothDirections, MMeshIsectAccelParams* accelParams, bool sortHits,
                          MFloatPointArray& hitPoints, MFloatArray* hitRayParams, MIntArray* hitFaces,
                          MIntArray* hitTriangles, MFloatArray* hitBary1s, MFloatArray* hitBary2s,
                          float tolerance = 1e-6, MStatus* ReturnStatus = NULL);
    /// The points where the ray enters or leaves, nearest first, and their polygons; each point once a polygon.
    bool intersect(const MPoint& raySource, const MVector& rayDirection, MPointArray& points,
                   double tolerance = kMFnMeshPointTolerance, MSpace::Space space = MSpace::kObject,
                   MIntArray* polygonIds = NULL, MStatus* ReturnStatus = NULL) const;
    /// Sorts by face, then triangle; the triangles may be left out.
    MStatus sortIntersectionFaceTriIds(MIntArray* faceIds, MIntArray* triIds);
    /// Frees what is kept for queries of this mesh (of all meshes), or says how much that is.
    MStatus freeCachedIntersectionAccelerator();
    MString cachedIntersectionAcceleratorInfo(MStatus* ReturnStatus = NULL);
    static MString globalIntersectionAcceleratorsInfo();
    static void clearGlobalIntersectionAcceleratorInfo();
    /// @}

    /// @name The point of the mesh nearest to another one
    /// Among polygons equally near, the lowest counts. The normal is what the corners' normals give there. kFailure
    /// for a mesh without polygons, kInvalidParameter for a point that is not finite.
    /// @{
    MStatus getClosestPointAndNormal(const MPoint& toThisPoint, MPoint& theClosestPoint, MVector& theNormal,
                                     MSpace::Space space = MSpace::kObject, int* closestPolygon = NULL,
                                     MMeshIsectAccelParams* accelParams = NULL) const;
    MStatus getClosestPoint(const MPoint& toThisPoint, MPoint& theClosestPoint, MSpace::Space space = MSpace::kObject,
                            int* closestPolygon = NULL, MMeshIsectAccelParams* accelParams = NULL) const;
    MStatus getClosestNormal(const MPoint& toThisPoint, MVector& theNormal, MSpace::Space space = MSpace::kObject,
                             int* closestPolygon = NULL, MMeshIsectAccelParams* accelParams = NULL) const;
    /// @}

    /// @name UV sets
    /// @{
    int numUVSets(MStatus* ReturnStatus = NULL) const;
    MStatus getUVSetNames(MStringArray& setNames) const;
    MString currentUVSetName(MStatus* ReturnStatus = NULL, int instance = kMFnMeshInstanceUnspecified) const;
    MStatus getCurrentUVSetName(MString& setName, int instance = kMFnMeshInstanceUnspecified) const;
    MStatus setCurrentUVSetName(const MString& setName, MDGModifier* modifier = NULL,
                                MSelectionList* currentSelection = NULL);
    /// Adds an empty set; a name that is taken gets a number, an empty one stands for "uvSet".
    MString createUVSetWithName(const MString& uvSetName, MDGModifier* modifier = NULL, MStatus* ReturnStatus = NULL,
                                const MUintArray* instances = NULL);
    /// The same; the name that the set got comes back in `uvSetName`.
    MStatus createUVSet(MString& uvSetName, MDGModifier* modifier = NULL, const MUintArray* instances = NULL);
    /// Copies a set over another one, which is made if need be; an empty name makes a new set of the old one's name.
    MString copyUVSetWithName(const MString& fromName, const MString& toName, MDGModifier* modifier = NULL,
                              MStatus* ReturnStatus = NULL);
    MStatus renameUVSet(const MString& origName, const MString& newName, MDGModifier* modifier = NULL);
    /// The first set cannot be deleted (kFailure).
    MStatus deleteUVSet(const MString& setName, MDGModifier* modifier = NULL, MSelectionList* currentSelection = NULL);
    /// @}

    /// @name UVs, and which corners they are assigned to
    /// @{
    int numUVs(MStatus* ReturnStatus = NULL) const;
    int numUVs(const MString& uvSet, MStatus* ReturnStatus = NULL) const;
    /// Sets all; fewer than corners are assigned to fail.
    MStatus setUVs(const MFloatArray& uArray, const MFloatArray& vArray, const MString* uvSet = NULL);
    /// Ids beyond the last one lengthen the list, with (0, 0) in between; at most to 2^24.
    MStatus setSomeUVs(const MIntArray& uvIds, const MFloatArray& uArray, const MFloatArray& vArray,
                       const MString* uvSet = NULL);
    MStatus setUV(int uvId, float u, float v, const MString* uvSet = NULL);
    MStatus getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet = NULL) const;
    MStatus getUV(int uvId, float& u, float& v, const MString* uvSet = NULL) const;
    /// Of a polygon's corner, counted from 0; kFailure where it has no UV.
    MStatus getPolygonUV(int polygonId, int vertexIndex, float& u, float& v, const MString* uvSet = NULL) const;
    MStatus getPolygonUVid(int polygonId, int vertexIndex, int& uvId, const MString* uvSet = NULL) const;
    MStatus assignUV(int polygonId, int vertexIndex, int uvId, const MString* uvSet = NULL);
    /// Counts are one a polygon, its number of corners or 0 for no UVs; the ids are those of the others' corners.
    MStatus assignUVs(const MIntArray& uvCounts, const MIntArray& uvIds, const MString* uvSet = NULL);
    /// The same, backwards; a corner without UV among others that have one has the id -1.
    MStatus getAssignedUVs(MIntArray& uvCounts, MIntArray& uvIds, const MString* uvSet = NULL) const;
    MStatus clearUVs(const MString* uvSet = NULL);
    /// @}

protected:
    virtual const char* className() const;
};
