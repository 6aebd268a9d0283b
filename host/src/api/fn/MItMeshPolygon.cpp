#include <maya/MItMeshPolygon.h>

#include "api/fn/MeshUvs.h"
#include "api/fn/NormalSpace.h"
#include "mesh/TriangleTests.h"

#include <array>
#include <cmath>
#include <limits>

using namespace host;
using api::among;
using api::CornerUv;
using api::fill;
using api::NormalSpace;
using mesh::Float3;

namespace {

constexpr double planarTolerance = 1e-5; ///< of the polygon's size

MVector vectorOf(const Imath::V3d& v) { return MVector(v.x, v.y, v.z); }

/// What shares a vertex or edge with a face, without what is its own.
template <class Of, class Own>
std::vector<int> around(std::span<const int> elements, Of of, Own own) {
    std::vector<int> all;
    for (const int element : elements)
        for (const int other : of(element))
            if (!own(other)) all.push_back(other);
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

std::vector<int> edgesOf(const mesh::PolyMesh& mesh, int face) {
    std::vector<int> edges;
    for (const int id : mesh.faceEdges(face)) edges.push_back(id >= 0 ? id : ~id);
    return edges;
}

bool holds(std::span<const int> list, int element) {
    return std::find(list.begin(), list.end(), element) != list.end();
}

std::vector<int> facesAround(const mesh::PolyMesh& mesh, int face) {
    return around(
        edgesOf(mesh, face), [&](int edge) { return mesh.neighbours().edgeFaces.of(edge); },
        [&](int other) { return other == face; });
}

std::vector<int> edgesAround(const mesh::PolyMesh& mesh, int face) {
    const auto own = edgesOf(mesh, face);
    return around(
        mesh.faceVertices(face), [&](int vertex) { return mesh.neighbours().vertexEdges.of(vertex); },
        [&](int other) { return holds(own, other); });
}

std::vector<int> verticesAround(const mesh::PolyMesh& mesh, int face) {
    std::vector<int> ends;
    for (const int edge : edgesAround(mesh, face))
        for (const int vertex :
             {mesh.edges()[static_cast<std::size_t>(edge)].v1, mesh.edges()[static_cast<std::size_t>(edge)].v2})
            if (!holds(mesh.faceVertices(face), vertex)) ends.push_back(vertex);
    std::sort(ends.begin(), ends.end());
    ends.erase(std::unique(ends.begin(), ends.end()), ends.end());
    return ends;
}

/// Twice the area between the UVs of a face, positive when they turn to the left; nothing when a corner has none.
std::optional<double> doubleUvArea(const mesh::PolyMesh& mesh, int set, int face) {
    double area = 0;
    const int size = mesh.faceSize(face);
    for (int corner = 0; corner < size; ++corner) {
        float u0 = 0, v0 = 0, u1 = 0, v1 = 0;
        if (!mesh.uvAt(set, face, corner, u0, v0) || !mesh.uvAt(set, face, (corner + 1) % size, u1, v1))
            return std::nullopt;
        area += static_cast<double>(u0) * v1 - static_cast<double>(u1) * v0;
    }
    return area;
}

/// A triangle of a face: which corners of the face its own are, and where they lie among the UVs (z is 0).
struct UvTriangle {
    std::array<int, 3> corners;
    std::array<Imath::V3d, 3> uv;
};

/// The triangles of a face; none when a corner has no UV.
std::vector<UvTriangle> uvTriangles(const mesh::PolyMesh& mesh, int set, int face) {
    std::vector<UvTriangle> all;
    for (const mesh::PolyMesh::Triangle& triangle : mesh.faceTriangles(face)) {
        UvTriangle& t = all.emplace_back();
        for (std::size_t k = 0; k < 3; ++k) {
            t.corners[k] = triangle[k] - mesh.faceStart(face);
            float u = 0, v = 0;
            if (!mesh.uvAt(set, face, t.corners[k], u, v)) return {};
            t.uv[k] = Imath::V3d(u, v, 0);
        }
    }
    return all;
}

/// Where a point is nearest to some triangles: which one, how far off, and the weights of its corners there.
struct Nearest {
    std::size_t triangle = 0;
    double distance = std::numeric_limits<double>::infinity();
    std::array<double, 3> weights{};

    /// @param corner the place of a corner of the triangle: (triangle, 0 to 2)
    template <class Corner>
    Nearest(const Imath::V3d& to, std::size_t count, const Corner& corner) {
        for (std::size_t t = 0; t < count; ++t) {
            const Imath::V3d a = corner(t, 0), b = corner(t, 1), c = corner(t, 2),
                             there = mesh::nearestOnTriangle(to, a, b, c);
            const double off = (there - to).length();
            if (!(off < distance)) continue;
            triangle = t;
            distance = off;
            mesh::weightsAt(there, a, b, c, weights.data());
        }
    }
};

/// How far a UV may lie from a polygon that has it, for what single precision leaves out.
constexpr double uvSlack = 1e-6;

} // namespace

MItMeshPolygon::MItMeshPolygon(const MObject& polyObject, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kFaces, polyObject, MObject()).statusCode());
}

MItMeshPolygon::MItMeshPolygon(const MDagPath& polyObject, MObject& component, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kFaces, polyObject, component).statusCode());
}

MItMeshPolygon::~MItMeshPolygon() = default;

bool MItMeshPolygon::isDone(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, mesh_ ? MStatus::kSuccess : MStatus::kFailure);
    return !there();
}

MStatus MItMeshPolygon::next() { return forward(); }
MStatus MItMeshPolygon::reset() { return restart(); }
MStatus MItMeshPolygon::reset(const MObject& polyObject) { return start(kFaces, polyObject, MObject()); }
MStatus MItMeshPolygon::reset(const MDagPath& polyObject, MObject& component) {
    return start(kFaces, polyObject, component);
}

unsigned int MItMeshPolygon::count(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, mesh_ ? MStatus::kSuccess : MStatus::kFailure);
    return static_cast<unsigned int>(count_);
}

unsigned int MItMeshPolygon::polygonVertexCount(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return there() ? static_cast<unsigned int>(mesh_->faceSize(index_)) : 0;
}

MPoint MItMeshPolygon::center(MSpace::Space space, MStatus* ReturnStatus) {
    MPointArray points;
    MStatus status;
    getPoints(points, space, &status);
    if (ReturnStatus) *ReturnStatus = status;
    MVector sum;
    for (const MPoint& p : points) sum += MVector(p);
    return points.length() > 0 ? MPoint(sum / points.length()) : MPoint();
}

MObject MItMeshPolygon::polygon(MStatus* s) { return componentObject(MFn::kMeshPolygonComponent, index_, s); }
MObject MItMeshPolygon::currentItem(MStatus* s) { return polygon(s); }

unsigned int MItMeshPolygon::index(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return static_cast<unsigned int>(index_);
}

MStatus MItMeshPolygon::setIndex(int index, int& prevIndex) { return jump(index, prevIndex); }

unsigned int MItMeshPolygon::vertexIndex(int index, MStatus* ReturnStatus) {
    const bool known = there() && among(index, mesh_->faceSize(index_));
    setStatus(ReturnStatus, known ? MStatus::kSuccess : there() ? MStatus::kInvalidParameter : MStatus::kFailure);
    return known ? static_cast<unsigned int>(mesh_->faceVertices(index_)[static_cast<std::size_t>(index)]) : 0;
}

MStatus MItMeshPolygon::getVertices(MIntArray& vertices) {
    return there() ? fill(vertices, mesh_->faceVertices(index_)) : MStatus(MStatus::kFailure);
}

MPoint MItMeshPolygon::point(int index, MSpace::Space space, MStatus* ReturnStatus) {
    MStatus status;
    const auto vertex = static_cast<int>(vertexIndex(index, &status));
    MPoint point;
    if (status) status = place(vertex, space, point);
    if (ReturnStatus) *ReturnStatus = status;
    return point;
}

void MItMeshPolygon::getPoints(MPointArray& pointArray, MSpace::Space space, MStatus* ReturnStatus) {
    pointArray.clear();
    MStatus status = there() ? MStatus::kSuccess : MStatus::kFailure;
    if (status)
        for (const int vertex : mesh_->faceVertices(index_)) {
            MPoint point;
            if (status) status = place(vertex, space, point);
            if (status) status = pointArray.append(point);
        }
    if (ReturnStatus) *ReturnStatus = status;
}

MStatus MItMeshPolygon::setPoint(const MPoint& point, unsigned int index, MSpace::Space space) {
    MStatus status;
    const auto vertex = static_cast<int>(vertexIndex(static_cast<int>(index), &status));
    return status ? move({{vertex, point}}, space) : status;
}

MStatus MItMeshPolygon::setPoints(MPointArray& pointArray, MSpace::Space space) {
    if (!there()) return MStatus::kFailure;
    const auto vertices = mesh_->faceVertices(index_);
    if (pointArray.length() != vertices.size()) return MStatus::kInvalidParameter;
    std::vector<std::pair<int, MPoint>> points;
    for (unsigned int i = 0; i < pointArray.length(); ++i) points.emplace_back(vertices[i], pointArray[i]);
    return move(points, space);
}

unsigned int MItMeshPolygon::normalIndex(int vertex, MStatus* ReturnStatus) const {
    const bool known = there() && among(vertex, mesh_->faceSize(index_));
    setStatus(ReturnStatus, known ? MStatus::kSuccess : there() ? MStatus::kInvalidParameter : MStatus::kFailure);
    return known ? static_cast<unsigned int>(mesh_->faceStart(index_) + vertex) : 0;
}

MStatus MItMeshPolygon::getNormal(MVector& normal, MSpace::Space space) const {
    if (!there()) return MStatus::kFailure;
    const NormalSpace to(object_, space);
    if (to.status) normal = to(vectorOf(mesh_->polygonNormal(index_)));
    return to.status;
}

MStatus MItMeshPolygon::getNormal(unsigned int Vertexindex, MVector& normal, MSpace::Space space) const {
    MStatus status;
    const unsigned int at = normalIndex(static_cast<int>(Vertexindex), &status);
    if (!status) return status;
    const NormalSpace to(object_, space);
    if (to.status) normal = to(mesh_->faceVertexNormals()[at]);
    return to.status;
}

MStatus MItMeshPolygon::getNormals(MVectorArray& vectorArray, MSpace::Space space) const {
    if (!there()) return MStatus::kFailure;
    const NormalSpace to(object_, space);
    if (!to.status) return to.status;
    const auto start = static_cast<std::size_t>(mesh_->faceStart(index_));
    return fill(vectorArray,
                mesh_->faceVertexNormals().subspan(start, static_cast<std::size_t>(mesh_->faceSize(index_))), to);
}

bool MItMeshPolygon::hasUVs(MStatus* ReturnStatus) const { return hasUVs(MString(), ReturnStatus); }

bool MItMeshPolygon::hasUVs(const MString& uvSet, MStatus* ReturnStatus) const {
    const int set = there() ? api::uvSetNamed(*mesh_, &uvSet) : -1;
    setStatus(ReturnStatus, set >= 0 ? MStatus::kSuccess : there() ? MStatus::kInvalidParameter : MStatus::kFailure);
    return set >= 0 && mesh_->uvId(set, index_, 0) >= 0;
}

MStatus MItMeshPolygon::setUV(int vertexId, float2& uvPoint, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    if (!among(vertexId, mesh_->faceSize(index_))) return MStatus::kInvalidParameter;
    const int face = index_;
    mesh_.reset();
    const MStatus status = api::setCornerUvs(object_, uvSet, {{face, vertexId, uvPoint[0], uvPoint[1]}}, false);
    look();
    return status;
}

MStatus MItMeshPolygon::getUV(int vertexId, float2& uvPoint, const MString* uvSet) const {
    if (!there()) return MStatus::kFailure;
    if (!among(vertexId, mesh_->faceSize(index_))) return MStatus::kInvalidParameter;
    return api::uvOf(*mesh_, uvSet, index_, vertexId, nullptr, &uvPoint[0], &uvPoint[1]);
}

MStatus MItMeshPolygon::setUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    const auto size = static_cast<unsigned int>(mesh_->faceSize(index_));
    if (uArray.length() != size || vArray.length() != size) return MStatus::kInvalidParameter;
    std::vector<CornerUv> corners;
    for (unsigned int i = 0; i < size; ++i) corners.push_back({index_, static_cast<int>(i), uArray[i], vArray[i]});
    mesh_.reset();
    const MStatus status = api::setCornerUvs(object_, uvSet, corners, false);
    look();
    return status;
}

MStatus MItMeshPolygon::getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet) const {
    if (!there()) return MStatus::kFailure;
    uArray.clear();
    vArray.clear();
    MStatus status;
    for (int corner = 0; status && corner < mesh_->faceSize(index_); ++corner) {
        float2 uv = {0, 0};
        status = getUV(corner, uv, uvSet);
        if (status) status = uArray.append(uv[0]);
        if (status) status = vArray.append(uv[1]);
    }
    return status;
}

MStatus MItMeshPolygon::getUVIndex(int vertex, int& index, const MString* uvSet) {
    float u = 0, v = 0;
    return getUVIndex(vertex, index, u, v, uvSet);
}

MStatus MItMeshPolygon::getUVIndex(int vertex, int& index, float& u, float& v, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    if (!among(vertex, mesh_->faceSize(index_))) return MStatus::kInvalidParameter;
    return api::uvOf(*mesh_, uvSet, index_, vertex, &index, &u, &v);
}

MStatus MItMeshPolygon::atUV(const float2& uvPoint, MSpace::Space space, const MString* uvSet, double tolerance,
                             MPoint (&corners)[3], float (&uv)[3][2], double (&weights)[3]) const {
    if (!there()) return MStatus::kFailure;
    const int set = api::uvSetNamed(*mesh_, uvSet);
    if (set < 0) return MStatus::kInvalidParameter;
    const auto triangles = uvTriangles(*mesh_, set, index_);
    const Nearest nearest(Imath::V3d(uvPoint[0], uvPoint[1], 0), triangles.size(),
                          [&](std::size_t t, std::size_t k) { return triangles[t].uv[k]; });
    if (triangles.empty() || !(nearest.distance <= std::max(tolerance, uvSlack))) return MStatus::kFailure;
    MStatus status;
    for (std::size_t k = 0; status && k < 3; ++k) {
        const UvTriangle& t = triangles[nearest.triangle];
        status = place(mesh_->faceVertices(index_)[static_cast<std::size_t>(t.corners[k])], space, corners[k]);
        uv[k][0] = static_cast<float>(t.uv[k].x);
        uv[k][1] = static_cast<float>(t.uv[k].y);
        weights[k] = nearest.weights[k];
    }
    return status;
}

MStatus MItMeshPolygon::getPointAtUV(MPoint& pt, float2& uvPoint, MSpace::Space space, const MString* uvSet,
                                     float tolerance) {
    MPoint corners[3];
    float uv[3][2];
    double weights[3];
    const MStatus status = atUV(uvPoint, space, uvSet, tolerance, corners, uv, weights);
    if (!status) return status;
    MVector sum;
    for (int k = 0; k < 3; ++k) sum += MVector(corners[k]) * weights[k];
    pt = MPoint(sum);
    return status;
}

MStatus MItMeshPolygon::getAxisAtUV(MVector& normal, MVector& uTangent, MVector& vTangent, float2& uvPoint,
                                    MSpace::Space space, const MString* uvSet, float tolerance) {
    MPoint corners[3];
    float uv[3][2];
    double weights[3];
    const MStatus status = atUV(uvPoint, space, uvSet, tolerance, corners, uv, weights);
    if (!status) return status;
    const MVector first = corners[1] - corners[0], second = corners[2] - corners[0];
    const double u1 = uv[1][0] - uv[0][0], v1 = uv[1][1] - uv[0][1], u2 = uv[2][0] - uv[0][0], v2 = uv[2][1] - uv[0][1],
                 twice = u1 * v2 - u2 * v1;
    if (twice == 0) return MStatus::kFailure;
    uTangent = ((first * v2 - second * v1) / twice).normal();
    vTangent = ((second * u1 - first * u2) / twice).normal();
    normal = (first ^ second).normal();
    return status;
}

MStatus MItMeshPolygon::getUVAtPoint(MPoint& pt, float2& uvPoint, MSpace::Space space, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    const int set = api::uvSetNamed(*mesh_, uvSet);
    if (set < 0) return MStatus::kInvalidParameter;
    MPointArray points;
    MStatus status;
    getPoints(points, space, &status);
    if (!status) return status;
    const auto triangles = uvTriangles(*mesh_, set, index_);
    if (triangles.empty()) return MStatus::kFailure;
    const Nearest nearest(Imath::V3d(pt.x, pt.y, pt.z), triangles.size(), [&](std::size_t t, std::size_t k) {
        const MPoint& p = points[static_cast<unsigned int>(triangles[t].corners[k])];
        return Imath::V3d(p.x, p.y, p.z);
    });
    Imath::V3d uv(0);
    for (std::size_t k = 0; k < 3; ++k) uv += triangles[nearest.triangle].uv[k] * nearest.weights[k];
    uvPoint[0] = static_cast<float>(uv.x);
    uvPoint[1] = static_cast<float>(uv.y);
    return status;
}

MStatus MItMeshPolygon::getUVSetNames(MStringArray& setNames) const {
    if (!there()) return MStatus::kFailure;
    setNames.clear();
    for (int set = 0; set < mesh_->numUvSets(); ++set)
        if (mesh_->uvId(set, index_, 0) >= 0) setNames.append(api::fromText(mesh_->uvSet(set).name));
    return MStatus::kSuccess;
}

bool MItMeshPolygon::hasValidTriangulation(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return there();
}

MStatus MItMeshPolygon::numTriangles(int& count) const {
    if (!there()) return MStatus::kFailure;
    count = mesh_->faceSize(index_) - 2;
    return MStatus::kSuccess;
}

MStatus MItMeshPolygon::getTriangle(int localTriIndex, MPointArray& points, MIntArray& vertexList,
                                    MSpace::Space space) const {
    if (!there()) return MStatus::kFailure;
    if (!among(localTriIndex, mesh_->faceSize(index_) - 2)) return MStatus::kInvalidParameter;
    const auto vertices = mesh_->triangleVertices(index_, localTriIndex);
    points.clear();
    for (const int vertex : vertices) {
        MPoint point;
        if (const MStatus status = place(vertex, space, point); !status) return status;
        points.append(point);
    }
    return fill(vertexList, vertices);
}

MStatus MItMeshPolygon::getTriangles(MPointArray& points, MIntArray& vertexList, MSpace::Space space) const {
    if (!there()) return MStatus::kFailure;
    points.clear();
    vertexList.clear();
    MStatus status;
    for (int triangle = 0; status && triangle < mesh_->faceSize(index_) - 2; ++triangle) {
        MPointArray corners;
        MIntArray vertices;
        status = getTriangle(triangle, corners, vertices, space);
        for (unsigned int i = 0; status && i < corners.length(); ++i) {
            points.append(corners[i]);
            vertexList.append(vertices[i]);
        }
    }
    return status;
}

MStatus MItMeshPolygon::updateSurface() { return look(); }
MStatus MItMeshPolygon::geomChanged() { return look(); }

MStatus MItMeshPolygon::getEdges(MIntArray& edges) {
    return there() ? fill(edges, edgesOf(*mesh_, index_)) : MStatus(MStatus::kFailure);
}

MStatus MItMeshPolygon::getConnectedFaces(MIntArray& faces) {
    return there() ? fill(faces, facesAround(*mesh_, index_)) : MStatus(MStatus::kFailure);
}

MStatus MItMeshPolygon::getConnectedEdges(MIntArray& edges) {
    return there() ? fill(edges, edgesAround(*mesh_, index_)) : MStatus(MStatus::kFailure);
}

MStatus MItMeshPolygon::getConnectedVertices(MIntArray& vertices) {
    return there() ? fill(vertices, verticesAround(*mesh_, index_)) : MStatus(MStatus::kFailure);
}

bool MItMeshPolygon::isConnectedToFace(int index, MStatus* ReturnStatus) {
    const bool known = there() && among(index, mesh_->numPolygons());
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return known && holds(facesAround(*mesh_, index_), index);
}

bool MItMeshPolygon::isConnectedToEdge(int index, MStatus* ReturnStatus) {
    const bool known = there() && among(index, mesh_->numEdges());
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return known && (holds(edgesOf(*mesh_, index_), index) || holds(edgesAround(*mesh_, index_), index));
}

bool MItMeshPolygon::isConnectedToVertex(int index, MStatus* ReturnStatus) {
    const bool known = there() && among(index, mesh_->numVertices());
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return known && (holds(mesh_->faceVertices(index_), index) || holds(verticesAround(*mesh_, index_), index));
}

MStatus MItMeshPolygon::numConnectedFaces(int& faceCount) const {
    if (!there()) return MStatus::kFailure;
    faceCount = static_cast<int>(facesAround(*mesh_, index_).size());
    return MStatus::kSuccess;
}

MStatus MItMeshPolygon::numConnectedEdges(int& edgeCount) const {
    if (!there()) return MStatus::kFailure;
    edgeCount = static_cast<int>(edgesAround(*mesh_, index_).size());
    return MStatus::kSuccess;
}

bool MItMeshPolygon::onBoundary(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    if (!there()) return false;
    const auto edges = edgesOf(*mesh_, index_);
    return std::any_of(edges.begin(), edges.end(),
                       [&](int edge) { return mesh_->neighbours().edgeFaces.of(edge).size() < 2; });
}

MStatus MItMeshPolygon::getArea(double& area, MSpace::Space space) {
    MPointArray points;
    MIntArray vertices;
    const MStatus status = getTriangles(points, vertices, space);
    if (!status) return status;
    area = 0;
    for (unsigned int i = 0; i + 2 < points.length(); i += 3)
        area += ((points[i + 1] - points[i]) ^ (points[i + 2] - points[i])).length() / 2;
    return status;
}

bool MItMeshPolygon::zeroArea(MStatus* ReturnStatus) {
    double area = 0;
    const MStatus status = getArea(area);
    if (ReturnStatus) *ReturnStatus = status;
    return status && area == 0;
}

MStatus MItMeshPolygon::getUVArea(double& area, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    const int set = api::uvSetNamed(*mesh_, uvSet);
    if (set < 0) return MStatus::kInvalidParameter;
    const auto twice = doubleUvArea(*mesh_, set, index_);
    if (twice) area = std::abs(*twice) / 2;
    return twice ? MStatus::kSuccess : MStatus::kFailure;
}

bool MItMeshPolygon::zeroUVArea(MStatus* ReturnStatus) { return zeroUVArea(MString(), ReturnStatus); }

bool MItMeshPolygon::zeroUVArea(const MString& uvSet, MStatus* ReturnStatus) {
    double area = 0;
    const MStatus status = getUVArea(area, &uvSet);
    if (ReturnStatus) *ReturnStatus = status;
    return status && area == 0;
}

bool MItMeshPolygon::isConvex(MStatus* ReturnStatus) {
    MPointArray p;
    MStatus status;
    getPoints(p, MSpace::kObject, &status);
    if (ReturnStatus) *ReturnStatus = status;
    if (!status) return false;
    const MVector normal = vectorOf(mesh_->newellNormal(index_));
    const unsigned int n = p.length();
    for (unsigned int i = 0; i < n; ++i)
        if (((p[(i + 1) % n] - p[i]) ^ (p[(i + 2) % n] - p[(i + 1) % n])) * normal < 0) return false;
    return true;
}

bool MItMeshPolygon::isStarlike(MStatus* ReturnStatus) {
    MPointArray p;
    MStatus status;
    getPoints(p, MSpace::kObject, &status);
    if (ReturnStatus) *ReturnStatus = status;
    if (!status) return false;
    const MVector normal = vectorOf(mesh_->newellNormal(index_));
    const MPoint middle = center();
    const unsigned int n = p.length();
    for (unsigned int i = 0; i < n; ++i)
        if (((p[(i + 1) % n] - p[i]) ^ (middle - p[i])) * normal < 0) return false;
    return true;
}

bool MItMeshPolygon::isLamina(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    if (!there()) return false;
    const auto sorted = [&](int face) {
        const auto vertices = mesh_->faceVertices(face);
        std::vector<int> all(vertices.begin(), vertices.end());
        std::sort(all.begin(), all.end());
        return all;
    };
    const auto own = sorted(index_);
    const auto faces = facesAround(*mesh_, index_);
    return std::any_of(faces.begin(), faces.end(), [&](int face) { return sorted(face) == own; });
}

bool MItMeshPolygon::isHoled(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    const auto records = there() ? mesh_->faceRecords() : nullptr;
    return records && std::any_of(records->records.begin(), records->records.end(), [&](const auto& r) {
               return r.face == index_ && r.kind == mesh::FaceRecords::Kind::Hole;
           });
}

bool MItMeshPolygon::isPlanar(MStatus* ReturnStatus) {
    MPointArray points;
    MStatus status;
    getPoints(points, MSpace::kObject, &status);
    if (ReturnStatus) *ReturnStatus = status;
    if (!status) return false;
    const MVector normal = vectorOf(mesh_->polygonNormal(index_));
    double size = 0;
    for (const MPoint& p : points) size = std::max(size, (p - points[0]).length());
    return std::all_of(points.begin(), points.end(),
                       [&](const MPoint& p) { return std::abs((p - points[0]) * normal) <= planarTolerance * size; });
}

const char* MItMeshPolygon::className() { return "MItMeshPolygon"; }
