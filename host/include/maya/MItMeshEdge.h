#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/detail/MeshCursor.h>

/// Visits the edges of a mesh: of a shape, of mesh data, or those of a component. What MItMeshVertex says of lists and
/// errors holds here, too.
class OPENMAYA_EXPORT MItMeshEdge : private maya_detail::MeshCursor {
public:
    MItMeshEdge(MObject& polyObject, MStatus* ReturnStatus = NULL);
    MItMeshEdge(MObject& polyObject, MObject& component, MStatus* ReturnStatus = NULL);
    MItMeshEdge(const MDagPath& polyObject, MObject& component = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    virtual ~MItMeshEdge();
    bool isDone(MStatus* ReturnStatus = NULL);
    MStatus next();
    MStatus reset();
    MStatus reset(MObject& polyObject, MObject& component = MObject::kNullObj);
    MStatus reset(const MDagPath& polyObject, MObject& component = MObject::kNullObj);
    int count(MStatus* ReturnStatus = NULL);
    MPoint center(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL);
    /// The edge's end 0 or 1.
    MPoint point(int index, MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL);
    MStatus setPoint(const MPoint& point, unsigned int index, MSpace::Space space = MSpace::kObject);
    bool isSmooth(MStatus* ReturnStatus = NULL) const;
    /// Shows after cleanupSmoothing(), or when the iterator ends.
    MStatus setSmoothing(bool smooth = true);
    MStatus cleanupSmoothing();
    /// The vertex at the edge's end 0 or 1.
    int index(int index, MStatus* ReturnStatus = NULL);
    int index(MStatus* ReturnStatus = NULL) const;
    MObject edge(MStatus* ReturnStatus = NULL);
    MObject currentItem(MStatus* ReturnStatus = NULL);
    MStatus updateSurface();
    MStatus geomChanged();
    MStatus setIndex(int index, int& prevIndex);
    int getConnectedFaces(MIntArray& faceList, MStatus* ReturnStatus = NULL) const;
    /// The edges that share a vertex with this one.
    int getConnectedEdges(MIntArray& edgeList, MStatus* ReturnStatus = NULL) const;
    MStatus numConnectedFaces(int& faceCount) const;
    MStatus numConnectedEdges(int& edgeCount) const;
    bool connectedToFace(int index, MStatus* ReturnStatus = NULL);
    bool connectedToEdge(int index, MStatus* ReturnStatus = NULL);
    /// Whether it has fewer than two faces.
    bool onBoundary(MStatus* ReturnStatus = NULL);
    MStatus getLength(double& length, MSpace::Space space = MSpace::kObject);
    static const char* className();

private:
    std::vector<std::pair<int, bool>> smoothing_;
};
