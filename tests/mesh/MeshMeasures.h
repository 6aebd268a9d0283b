#pragma once

#include "mesh/PolyMesh.h"

#include <cmath>
#include <set>
#include <utility>

namespace host::mesh {

/// Six times the signed volume below each triangle, summed up: the divergence theorem.
inline double signedVolume(const PolyMesh& mesh) {
    double volume = 0;
    for (const PolyMesh::Triangle& t : mesh.triangles()) {
        const auto p = [&](int i) { return toDouble(mesh.point(mesh.connects()[t[i]])); };
        volume += p(0).dot(p(1).cross(p(2))) / 6;
    }
    return volume;
}

inline double triangleArea(const PolyMesh& mesh, const PolyMesh::Triangle& t) {
    const auto p = [&](int i) { return toDouble(mesh.point(mesh.connects()[t[i]])); };
    return (p(1) - p(0)).cross(p(2) - p(0)).length() / 2;
}

inline double surfaceArea(const PolyMesh& mesh) {
    double area = 0;
    for (const PolyMesh::Triangle& t : mesh.triangles()) area += triangleArea(mesh, t);
    return area;
}

inline int eulerCharacteristic(const PolyMesh& mesh) {
    return mesh.numVertices() - mesh.numEdges() + mesh.numPolygons();
}

/// Whether each edge is walked once in either direction: a closed surface of consistent winding.
inline bool isClosed(const PolyMesh& mesh) {
    std::set<std::pair<int, int>> sides;
    for (int f = 0; f < mesh.numPolygons(); ++f) {
        const auto v = mesh.faceVertices(f);
        for (std::size_t i = 0; i < v.size(); ++i)
            if (!sides.emplace(v[i], v[(i + 1) % v.size()]).second) return false;
    }
    for (const auto& [a, b] : sides)
        if (!sides.contains({b, a})) return false;
    return true;
}

} // namespace host::mesh
