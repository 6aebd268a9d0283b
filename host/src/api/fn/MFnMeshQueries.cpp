#include <maya/MFnMesh.h>

#include "api/fn/MeshCall.h"
#include "api/fn/NormalSpace.h"
#include "mesh/QueryCache.h"
#include "mesh/TriangleTests.h"

#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <numeric>

using namespace host;
using api::among;
using api::withMesh;
using Imath::V3d;
using mesh::MeshQueries;
using mesh::PolyMesh;
using mesh::QueryCache;
using mesh::Ray;
using mesh::RayHit;

namespace {

/// The mesh's queries in a space; null with a status when there are none.
std::shared_ptr<const MeshQueries> queriesIn(const MObject& object, const PolyMesh& m, MSpace::Space space,
                                             double tolerance, bool accelerate, MStatus& status) {
    MMatrix matrix;
    status = api::matrixTo(object, space, matrix);
    if (!status) return nullptr;
    Imath::M44d placement(matrix.matrix);
    return m.queryCache().get(m, placement, tolerance, accelerate);
}

/// Runs a query that may need more memory than there is.
template <class Query>
MStatus withQueries(const MObject& object, MSpace::Space space, double tolerance, bool accelerate, Query&& query) {
    return withMesh(object, [&](const PolyMesh& m) -> MStatus {
        try {
            MStatus status;
            const auto queries = queriesIn(object, m, space, tolerance, accelerate, status);
            return queries ? query(m, *queries) : status;
        } catch (const std::bad_alloc&) {
            return MStatus::kInsufficientMemory;
        }
    });
}

template <class Triple>
V3d doubles(const Triple& t) {
    return V3d(t.x, t.y, t.z);
}

bool finite(const V3d& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

/// Beyond this, distances are not told apart from infinite ones.
bool near(const V3d& v) { return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)}) <= 1e60; }

bool possible(const Ray& ray) {
    return finite(ray.origin) && finite(ray.direction) && ray.direction != V3d(0.0) && ray.maxParam >= 0 &&
           ray.tolerance >= 0 && ray.tolerance <= 1;
}

/// The triangles that lists of faces, and of the faces' triangles, name. False for ids that do not exist.
bool listTriangles(const MeshQueries& queries, const MIntArray& faces, const MIntArray* triangles,
                   std::vector<int>& listed) {
    if (triangles && triangles->length() != faces.length()) return false;
    for (unsigned int i = 0; i < faces.length(); ++i) {
        if (!among(faces[i], queries.numFaces())) return false;
        const int first = queries.firstTriangle(faces[i]), end = queries.firstTriangle(faces[i] + 1);
        if (!triangles) {
            for (int t = first; t < end; ++t) listed.push_back(t);
        } else if (among((*triangles)[i], end - first)) {
            listed.push_back(first + (*triangles)[i]);
        } else {
            return false;
        }
    }
    return true;
}

/// The arguments that the queries of rays share.
struct RayCall {
    Ray ray;
    const MIntArray* faceIds;
    const MIntArray* triIds;
    MSpace::Space space;
    bool accelerate;

    /// Runs one of two queries: of all triangles, or of those that are listed.
    template <class All, class Some>
    MStatus run(const MObject& object, All&& all, Some&& some) const {
        if (!possible(ray) || (triIds && !faceIds)) return MStatus::kInvalidParameter;
        return withQueries(object, space, ray.tolerance, accelerate && !faceIds,
                           [&](const PolyMesh&, const MeshQueries& queries) -> MStatus {
                               if (!faceIds) {
                                   all(queries);
                                   return MStatus::kSuccess;
                               }
                               std::vector<int> listed;
                               if (!listTriangles(queries, *faceIds, triIds, listed)) return MStatus::kInvalidParameter;
                               std::ranges::sort(listed);
                               listed.erase(std::unique(listed.begin(), listed.end()), listed.end());
                               some(queries, listed);
                               return MStatus::kSuccess;
                           });
    }
};

MFloatPoint singlePoint(const V3d& p) {
    return MFloatPoint(static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z));
}

int triangleInFace(const MeshQueries& queries, int triangle) {
    return triangle - queries.firstTriangle(queries.faceOf(triangle));
}

template <class Value>
void give(Value* out, Value value) {
    if (out) *out = value;
}

/// All hits by their signed parameter; equal ones stay in the order of the triangles.
void sortByParam(std::vector<RayHit>& hits) {
    std::ranges::stable_sort(hits, {}, [](const RayHit& hit) { return hit.param; });
}

/// Fills an array with something of every hit.
template <class Array, class Part>
MStatus giveAll(Array* out, const std::vector<RayHit>& hits, Part part) {
    return out ? api::fill(*out, hits, part) : MStatus(MStatus::kSuccess);
}

MString usageText(const QueryCache::Usage& usage) {
    if (usage.triangles == 0) return MString();
    const std::string text =
        fmt::format("{} accelerator{} for {} triangles, {:.1f} MB", usage.trees, usage.trees == 1 ? "" : "s",
                    usage.triangles, static_cast<double>(usage.bytes) / (1024.0 * 1024.0));
    return MString(text.c_str());
}

} // namespace

MMeshIsectAccelParams MFnMesh::uniformGridParams(int, int, int) { return {}; }
MMeshIsectAccelParams MFnMesh::autoUniformGridParams() { return {}; }

bool MFnMesh::closestIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection,
                                  const MIntArray* faceIds, const MIntArray* triIds, bool /*idsSorted*/,
                                  MSpace::Space space, float maxParam, bool testBothDirections,
                                  MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint, float* hitRayParam,
                                  int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2, float tolerance,
                                  MStatus* ReturnStatus) {
    const RayCall call{{doubles(raySource), doubles(rayDirection), maxParam, testBothDirections, tolerance},
                       faceIds,
                       triIds,
                       space,
                       accelParams != nullptr};
    bool found = false;
    const auto answer = [&](const MeshQueries& queries, const std::optional<RayHit>& hit) {
        found = hit.has_value();
        if (!found) return;
        hitPoint = singlePoint(hit->point);
        give(hitRayParam, hit->param);
        if (hitFace || hitTriangle) {
            const int face = queries.faceOf(hit->triangle);
            give(hitFace, face);
            give(hitTriangle, hit->triangle - queries.firstTriangle(face));
        }
        give(hitBary1, hit->bary1);
        give(hitBary2, hit->bary2);
    };
    const MStatus status = call.run(
        object_, [&](const MeshQueries& q) { answer(q, q.closestHit(call.ray)); },
        [&](const MeshQueries& q, const std::vector<int>& listed) { answer(q, q.closestHit(call.ray, listed)); });
    setStatus(ReturnStatus, status.statusCode());
    return found;
}

bool MFnMesh::anyIntersection(const MFloatPoint& raySource, const MFloatVector& rayDirection, const MIntArray* faceIds,
                              const MIntArray* triIds, bool idsSorted, MSpace::Space space, float maxParam,
                              bool testBothDirections, MMeshIsectAccelParams* accelParams, MFloatPoint& hitPoint,
                              float* hitRayParam, int* hitFace, int* hitTriangle, float* hitBary1, float* hitBary2,
                              float tolerance, MStatus* ReturnStatus) {
    return closestIntersection(raySource, rayDirection, faceIds, triIds, idsSorted, space, maxParam, testBothDirections,
                               accelParams, hitPoint, hitRayParam, hitFace, hitTriangle, hitBary1, hitBary2, tolerance,
                               ReturnStatus);
}

bool MFnMesh::allIntersections(const MFloatPoint& raySource, const MFloatVector& rayDirection, const MIntArray* faceIds,
                               const MIntArray* triIds, bool /*idsSorted*/, MSpace::Space space, float maxParam,
                               bool testBothDirections, MMeshIsectAccelParams* accelParams, bool sortHits,
                               MFloatPointArray& hitPoints, MFloatArray* hitRayParams, MIntArray* hitFaces,
                               MIntArray* hitTriangles, MFloatArray* hitBary1s, MFloatArray* hitBary2s, float tolerance,
                               MStatus* ReturnStatus) {
    const RayCall call{{doubles(raySource), doubles(rayDirection), maxParam, testBothDirections, tolerance},
                       faceIds,
                       triIds,
                       space,
                       accelParams != nullptr};
    MStatus filled;
    const auto answer = [&](const MeshQueries& q, std::vector<RayHit> hits) {
        if (sortHits) sortByParam(hits);
        filled = giveAll(&hitPoints, hits, [](const RayHit& h) { return singlePoint(h.point); });
        const auto fill = [&](auto* out, auto part) {
            if (filled) filled = giveAll(out, hits, part);
        };
        fill(hitRayParams, [](const RayHit& h) { return h.param; });
        fill(hitFaces, [&](const RayHit& h) { return q.faceOf(h.triangle); });
        fill(hitTriangles, [&](const RayHit& h) { return triangleInFace(q, h.triangle); });
        fill(hitBary1s, [](const RayHit& h) { return h.bary1; });
        fill(hitBary2s, [](const RayHit& h) { return h.bary2; });
    };
    MStatus status = call.run(
        object_, [&](const MeshQueries& q) { answer(q, q.allHits(call.ray)); },
        [&](const MeshQueries& q, const std::vector<int>& listed) { answer(q, q.allHits(call.ray, listed)); });
    if (status) status = filled;
    setStatus(ReturnStatus, status.statusCode());
    return status && hitPoints.length() > 0;
}

bool MFnMesh::intersect(const MPoint& raySource, const MVector& rayDirection, MPointArray& points, double tolerance,
                        MSpace::Space space, MIntArray* polygonIds, MStatus* ReturnStatus) const {
    const Ray ray{doubles(raySource), doubles(rayDirection), std::numeric_limits<float>::max(), false, tolerance};
    MStatus status = MStatus::kInvalidParameter;
    if (possible(ray) && near(ray.origin) && near(ray.direction))
        status = withQueries(object_, space, tolerance, false, [&](const PolyMesh&, const MeshQueries& q) {
            auto hits = q.allHits(ray);
            sortByParam(hits);
            const auto same = [&](const RayHit& a, const RayHit& b) {
                return a.param == b.param && q.faceOf(a.triangle) == q.faceOf(b.triangle);
            };
            hits.erase(std::unique(hits.begin(), hits.end(), same), hits.end());
            const MStatus filled =
                giveAll(&points, hits, [](const RayHit& h) { return MPoint(h.point.x, h.point.y, h.point.z); });
            return filled ? giveAll(polygonIds, hits, [&](const RayHit& h) { return q.faceOf(h.triangle); }) : filled;
        });
    setStatus(ReturnStatus, status.statusCode());
    return status && points.length() > 0;
}

MStatus MFnMesh::sortIntersectionFaceTriIds(MIntArray* faceIds, MIntArray* triIds) {
    if (!faceIds || (triIds && triIds->length() != faceIds->length())) return MStatus::kInvalidParameter;
    if (!triIds) {
        std::sort(faceIds->begin(), faceIds->end());
        return MStatus::kSuccess;
    }
    std::vector<std::pair<int, int>> ids;
    for (unsigned int i = 0; i < faceIds->length(); ++i) ids.emplace_back((*faceIds)[i], (*triIds)[i]);
    std::ranges::sort(ids);
    for (unsigned int i = 0; i < faceIds->length(); ++i) {
        (*faceIds)[i] = ids[i].first;
        (*triIds)[i] = ids[i].second;
    }
    return MStatus::kSuccess;
}

MStatus MFnMesh::freeCachedIntersectionAccelerator() {
    return withMesh(object_, [](const PolyMesh& m) -> MStatus {
        m.queryCache().clear();
        return MStatus::kSuccess;
    });
}

MString MFnMesh::cachedIntersectionAcceleratorInfo(MStatus* ReturnStatus) {
    MString text;
    const MStatus status = withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        text = usageText(m.queryCache().usage());
        return MStatus::kSuccess;
    });
    setStatus(ReturnStatus, status.statusCode());
    return text;
}

MString MFnMesh::globalIntersectionAcceleratorsInfo() { return usageText(QueryCache::totalUsage()); }
void MFnMesh::clearGlobalIntersectionAcceleratorInfo() { QueryCache::clearAll(); }

MStatus MFnMesh::getClosestPointAndNormal(const MPoint& toThisPoint, MPoint& theClosestPoint, MVector& theNormal,
                                          MSpace::Space space, int* closestPolygon,
                                          MMeshIsectAccelParams* accelParams) const {
    return withQueries(
        object_, space, 0, accelParams != nullptr, [&](const PolyMesh& m, const MeshQueries& q) -> MStatus {
            const V3d point = doubles(toThisPoint);
            const api::NormalSpace to(object_, space);
            if (!near(point) || !to.status) return MStatus::kInvalidParameter;
            const auto nearest = q.nearest(point);
            if (!nearest) return MStatus::kFailure;
            const int face = q.faceOf(nearest->triangle);
            const auto at = q.corners(nearest->triangle);
            double weights[3];
            mesh::weightsAt(nearest->point, at[0], at[1], at[2], weights);
            const PolyMesh::Triangle& corners = m.triangles()[static_cast<std::size_t>(nearest->triangle)];
            MVector normal;
            for (std::size_t i = 0; i < 3; ++i) {
                const mesh::Float3& n = m.faceVertexNormals()[static_cast<std::size_t>(corners[i])];
                normal += MVector(n.x, n.y, n.z) * weights[i];
            }
            theNormal = to(normal.normal());
            theClosestPoint = MPoint(nearest->point.x, nearest->point.y, nearest->point.z);
            give(closestPolygon, face);
            return MStatus::kSuccess;
        });
}

MStatus MFnMesh::getClosestPoint(const MPoint& toThisPoint, MPoint& theClosestPoint, MSpace::Space space,
                                 int* closestPolygon, MMeshIsectAccelParams* accelParams) const {
    return withQueries(object_, space, 0, accelParams != nullptr,
                       [&](const PolyMesh&, const MeshQueries& q) -> MStatus {
                           const V3d point = doubles(toThisPoint);
                           if (!near(point)) return MStatus::kInvalidParameter;
                           const auto nearest = q.nearest(point);
                           if (!nearest) return MStatus::kFailure;
                           theClosestPoint = MPoint(nearest->point.x, nearest->point.y, nearest->point.z);
                           if (closestPolygon) *closestPolygon = q.faceOf(nearest->triangle);
                           return MStatus::kSuccess;
                       });
}

MStatus MFnMesh::getClosestNormal(const MPoint& toThisPoint, MVector& theNormal, MSpace::Space space,
                                  int* closestPolygon, MMeshIsectAccelParams* accelParams) const {
    MPoint point;
    return getClosestPointAndNormal(toThisPoint, point, theNormal, space, closestPolygon, accelParams);
}
