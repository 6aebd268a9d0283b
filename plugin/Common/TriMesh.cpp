#include "TriMesh.h"

#include "Messages.h"
#include "TriMeshBuild.h"

#include <algorithm>
#include <limits>
#include <maya/MDagPath.h>
#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <stdexcept>

namespace orvo {
namespace {

/// Reports what a mesh lacks, with the place of the call.
bool refuse(const char* message, const SourcePlace& where = SourcePlace::current()) {
    reportPlacedError({"CreateTriMeshFromMayaMesh: mesh has no %s! :(", where}, message);
    return false;
}

bool readTriangles(const MFnMesh& mesh, PolygonMesh& read) {
    std::size_t count = 0;
    for (const int size : read.polygonSizes) count += size > 2 ? size - 2 : 0;
    read.triangles.reserve(count);
    for (int polygon = 0; polygon < static_cast<int>(read.polygonSizes.size()); ++polygon) {
        for (int triangle = 0; triangle < read.polygonSizes[polygon] - 2; ++triangle) {
            int points[3];
            if (!succeeded(mesh.getPolygonTriangleVertices(polygon, triangle, points))) return false;
            read.triangles.push_back({static_cast<std::uint32_t>(points[0]), static_cast<std::uint32_t>(points[1]),
                                      static_cast<std::uint32_t>(points[2])});
        }
    }
    return true;
}

/// One UV a corner of the set, (0, 0) where none is assigned.
bool readCornerUvs(const MFnMesh& mesh, const MString& name, const PolygonMesh& read, TriMesh::UvSet& uvs) {
    MFloatArray u, v;
    MIntArray counts, ids;
    if (!succeeded(mesh.getUVs(u, v, &name)) || !succeeded(mesh.getAssignedUVs(counts, ids, &name))) return false;
    uvs.assign(read.corners.size(), Uv());
    std::size_t corner = 0;
    unsigned at = 0;
    for (unsigned polygon = 0; polygon < read.polygonSizes.size(); ++polygon) {
        for (int i = 0; i < counts[polygon]; ++i, ++at) {
            const int id = ids[at];
            if (id >= 0) uvs[corner + i] = {u[static_cast<unsigned>(id)], v[static_cast<unsigned>(id)]};
        }
        corner += read.polygonSizes[polygon];
    }
    return true;
}

bool readUvSets(const MFnMesh& mesh, PolygonMesh& read) {
    MStringArray names;
    if (!succeeded(mesh.getUVSetNames(names))) return false;
    for (std::size_t set = 0; set < TriMesh::kUvSets; ++set) {
        const MString name = TriMesh::uvSetNames[set];
        bool exists = false;
        for (unsigned i = 0; i < names.length(); ++i) exists = exists || names[i] == name;
        if (!exists) continue;
        MStatus status;
        const int count = mesh.numUVs(name, &status);
        if (!succeeded(status)) return false;
        if (count > 0 && !readCornerUvs(mesh, name, read, read.cornerUvs[set].emplace())) return false;
    }
    return true;
}

bool readMesh(const MFnMesh& mesh, bool worldSpace, bool uvs, PolygonMesh& read) {
    MPointArray points;
    if (mesh.getPoints(points, worldSpace ? MSpace::kWorld : MSpace::kObject).error() || points.length() == 0)
        return refuse("verts");
    MStatus status;
    const int polygons = mesh.numPolygons(&status);
    if (status.error() || polygons == 0) return refuse("polys");

    read.points.reserve(points.length());
    for (unsigned i = 0; i < points.length(); ++i) read.points.push_back({points[i].x, points[i].y, points[i].z});
    MIntArray sizes, corners;
    if (!succeeded(mesh.getVertices(sizes, corners))) return false;
    read.polygonSizes.resize(sizes.length());
    read.corners.resize(corners.length());
    if (!succeeded(sizes.get(read.polygonSizes.data())) || !succeeded(corners.get(read.corners.data()))) return false;
    return readTriangles(mesh, read) && (!uvs || readUvSets(mesh, read));
}

/// A failing status, reported with the message and the place of the call.
MStatus failed(const MStatus& status, const char* message, const SourcePlace& where = SourcePlace::current()) {
    if (status.error()) reportFailure(status, message, where);
    return status;
}

/// Gives the transform above a new shape its name.
MStatus nameTransform(const MString& shape, const MString& name) {
    MSelectionList found;
    MStatus status = failed(found.add(shape), "TriMesh:CreateMayaMesh  Could not find newly created output Mesh.");
    if (status.error()) return status;
    MDagPath path;
    status =
        failed(found.getDagPath(0, path), "TriMesh:CreateMayaMesh  problem getting dagPath to new mesh (for naming).");
    if (status.error()) return status;
    const MObject transform = path.transform(&status);
    if (failed(status, "TriMesh:CreateMayaMesh  problem getting transform for new mesh (for naming).").error())
        return status;
    MFnDependencyNode node(transform, &status);
    if (failed(status, "TriMesh:CreateMayaMesh  problem getting transform MFnDependencyNode for new mesh (for naming).")
            .error())
        return status;
    node.setName(name, false, &status);
    return failed(status, "TriMesh:CreateMayaMesh  Could not set output Mesh Name.");
}

MStatus assignDefaultUvs(MFnMesh& shape, const TriMesh::UvSet& uvs, const MIntArray& counts,
                         const MIntArray& connects) {
    MFloatArray u(static_cast<unsigned>(uvs.size())), v(static_cast<unsigned>(uvs.size()));
    for (unsigned i = 0; i < uvs.size(); ++i) {
        u[i] = static_cast<float>(uvs[i].u);
        v[i] = static_cast<float>(uvs[i].v);
    }
    const MStatus status = shape.setUVs(u, v);
    return status.error() ? status : shape.assignUVs(counts, connects);
}

} // namespace

void TriMesh::append(const TriMesh& other) {
    if (&other == this) return append(TriMesh(other));
    if (other.positions.size() > std::numeric_limits<std::uint32_t>::max() - positions.size())
        throw std::length_error("a triangle mesh has more vertices than 32-bit indices can tell apart");
    const bool first = positions.empty();
    const std::uint32_t base = numVerts();
    const std::size_t oldTriangles = triangles.size();
    for (std::size_t set = 0; set < kUvSets; ++set) {
        if (first)
            uvSets[set] = other.uvSets[set];
        else if (uvSets[set] && other.uvSets[set])
            uvSets[set]->insert(uvSets[set]->end(), other.uvSets[set]->begin(), other.uvSets[set]->end());
        else
            uvSets[set].reset();
    }
    positions.insert(positions.end(), other.positions.begin(), other.positions.end());
    triangles.insert(triangles.end(), other.triangles.begin(), other.triangles.end());
    for (std::size_t i = oldTriangles; i < triangles.size(); ++i)
        for (std::uint32_t& index : triangles[i]) index += base;
}

std::vector<Vector3> TriMesh::vertexNormals() const {
    std::vector<Vector3> normals(positions.size());
    for (const Triangle& t : triangles) {
        // Its length is twice the triangle's area.
        const Vector3 normal = cross(positions[t[1]] - positions[t[0]], positions[t[2]] - positions[t[0]]);
        for (const std::uint32_t index : t) normals[index] = normals[index] + normal;
    }
    for (Vector3& normal : normals) {
        const double size = length(normal);
        normal = size > 0.0 && size <= std::numeric_limits<double>::max() ? normal * (1.0 / size) : Vector3{0, 1, 0};
    }
    return normals;
}

std::unique_ptr<TriMesh> CreateTriMeshFromMayaMesh(const MFnMesh& mesh, bool worldSpace, bool uvs) {
    PolygonMesh read;
    if (!readMesh(mesh, worldSpace, uvs, read)) return nullptr;
    if (auto simple = triMeshByPoints(read)) return simple;
    return std::make_unique<TriMesh>(triMeshBySeams(read));
}

MStatus CreateMayaMesh(const TriMesh& mesh, const MString& name, bool uvs, bool shading) {
    MPointArray points(mesh.numVerts());
    for (unsigned i = 0; i < mesh.numVerts(); ++i)
        points[i] = MPoint(mesh.positions[i].x, mesh.positions[i].y, mesh.positions[i].z);
    const MIntArray counts(mesh.numTris(), 3);
    MIntArray connects(3 * mesh.numTris());
    for (unsigned i = 0; i < connects.length(); ++i) connects[i] = static_cast<int>(mesh.triangles[i / 3][i % 3]);

    MStatus status;
    MFnMesh shape;
    shape.create(static_cast<int>(mesh.numVerts()), static_cast<int>(mesh.numTris()), points, counts, connects,
                 MObject::kNullObj, &status);
    if (failed(status, "TriMesh:CreateMayaMesh  Could not create output Mesh.").error()) return status;
    // Its name alone, or as much of its path as makes that unique.
    const MString created = shape.partialPathName(&status);
    if (failed(status, "TriMesh:CreateMayaMesh  Could not get newly created mesh name.").error()) return status;
    status = nameTransform(created, name);
    if (status.error()) return status;

    if (uvs && mesh.uvSets[0]) {
        status = failed(assignDefaultUvs(shape, *mesh.uvSets[0], counts, connects),
                        "TriMesh:CreateMayaMesh  Could not assign default UV's to output Mesh.");
        if (status.error()) return status;
    }
    if (!shading) return status;
    status = failed(shape.updateSurface(), "TriMesh:CreateMayaMesh  updateSurface failed on output Mesh.");
    if (status.error()) return status;
    // Asked again: some hosts rename a shape along with its transform.
    const MString shown = shape.partialPathName(&status);
    if (failed(status, "TriMesh:CreateMayaMesh  Could not get newly created mesh name.").error()) return status;
    return failed(MGlobal::executeCommand("sets -e -fe initialShadingGroup " + shown), "");
}

} // namespace orvo
