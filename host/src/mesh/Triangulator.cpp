#include "Triangulator.h"

#include <GL/glu.h>

#include <cmath>

#ifndef CALLBACK
#define CALLBACK
#endif

namespace host::mesh {
namespace {

// Below this share of the polygon's area a triangle counts as having none: about the rounding of the points.
constexpr double kNoArea = 1e-6;

// The tessellator's time grows with the square of the corners of a spiky polygon: beyond this many it could hang.
constexpr std::size_t kMostTessellated = 10000;

/// What the tessellator's callbacks write. They run below C frames, so they neither allocate nor throw.
struct Output {
    std::span<PolyMesh::Triangle> triangles;
    const int* polygon; // a corner's data is the address of its vertex in here
    std::size_t corners = 0;
    bool failed = false;
};

void CALLBACK onVertex(void* corner, void* data) {
    auto& out = *static_cast<Output*>(data);
    if (out.corners >= out.triangles.size() * 3) {
        out.failed = true;
        return;
    }
    out.triangles[out.corners / 3][out.corners % 3] = static_cast<int>(static_cast<const int*>(corner) - out.polygon);
    ++out.corners;
}

// Having this callback makes the tessellator give single triangles, not strips and fans.
void CALLBACK onEdgeFlag(GLboolean, void*) {}

// Called where edges cross or points coincide, which would need vertices that the mesh does not have.
void CALLBACK onCombine(GLdouble*, void** sources, GLfloat*, void** result, void* data) {
    *result = sources[0];
    static_cast<Output*>(data)->failed = true;
}

void CALLBACK onError(GLenum, void* data) { static_cast<Output*>(data)->failed = true; }

template <class Function>
void setCallback(GLUtesselator* tess, GLenum which, Function* function) {
    gluTessCallback(tess, which, reinterpret_cast<_GLUfuncptr>(function));
}

/// Whether both triangles, given by corners, face along `normal` and have an area worth the name.
bool bothFace(std::span<const Float3> points, std::span<const int> polygon, const Imath::V3d& normal,
              const PolyMesh::Triangle& a, const PolyMesh::Triangle& b) {
    const double least = kNoArea * normal.dot(normal);
    for (const PolyMesh::Triangle& t : {a, b}) {
        const int vertices[] = {polygon[t[0]], polygon[t[1]], polygon[t[2]]};
        if (!(newellNormal(points, vertices).dot(normal) > least)) return false;
    }
    return true;
}

} // namespace

Imath::V3d newellNormal(std::span<const Float3> points, std::span<const int> polygon) {
    // Measured from the first corner, so that a small polygon far from the origin keeps its precision.
    const Imath::V3d origin = toDouble(points[polygon[0]]);
    Imath::V3d sum(0.0), previous(0.0);
    for (std::size_t i = 1; i < polygon.size(); ++i) {
        const Imath::V3d current = toDouble(points[polygon[i]]) - origin;
        sum += previous.cross(current);
        previous = current;
    }
    return sum;
}

Triangulator::~Triangulator() {
    if (tess_) gluDeleteTess(tess_);
}

void Triangulator::triangulate(std::span<const Float3> points, std::span<const int> polygon,
                               std::span<PolyMesh::Triangle> triangles) {
    if (polygon.size() == 4) {
        const Imath::V3d normal = newellNormal(points, polygon);
        const PolyMesh::Triangle a{0, 1, 2}, b{0, 2, 3}, c{0, 1, 3}, d{1, 2, 3};
        const bool other = !bothFace(points, polygon, normal, a, b) && bothFace(points, polygon, normal, c, d);
        triangles[0] = other ? c : a;
        triangles[1] = other ? d : b;
        return;
    }
    if (polygon.size() > 4 && polygon.size() <= kMostTessellated &&
        tessellate(points, polygon, newellNormal(points, polygon), triangles))
        return;
    for (int i = 0; i < static_cast<int>(triangles.size()); ++i) triangles[i] = {0, i + 1, i + 2};
}

bool Triangulator::tessellate(std::span<const Float3> points, std::span<const int> polygon, const Imath::V3d& normal,
                              std::span<PolyMesh::Triangle> triangles) {
    const double length = std::sqrt(normal.dot(normal));
    if (!std::isfinite(length) || length == 0) return false;
    if (!tess_) {
        tess_ = gluNewTess();
        if (!tess_) return false;
        setCallback(tess_, GLU_TESS_VERTEX_DATA, onVertex);
        setCallback(tess_, GLU_TESS_EDGE_FLAG_DATA, onEdgeFlag);
        setCallback(tess_, GLU_TESS_COMBINE_DATA, onCombine);
        setCallback(tess_, GLU_TESS_ERROR_DATA, onError);
        gluTessProperty(tess_, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_NONZERO);
    }
    Output out{triangles, polygon.data()};
    gluTessNormal(tess_, normal.x / length, normal.y / length, normal.z / length);
    gluTessBeginPolygon(tess_, &out);
    gluTessBeginContour(tess_);
    const Imath::V3d origin = toDouble(points[polygon[0]]);
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        Imath::V3d p = toDouble(points[polygon[i]]) - origin;
        gluTessVertex(tess_, &p.x, const_cast<int*>(&polygon[i])); // handed back as it is, never written to
    }
    gluTessEndContour(tess_);
    gluTessEndPolygon(tess_);
    return !out.failed && out.corners == triangles.size() * 3;
}

} // namespace host::mesh
