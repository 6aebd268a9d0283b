#include "FoldedMesh.h"

#include "scene/Undo.h"

#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFnTransform.h>
#include <maya/MString.h>
#include <maya/MVector.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// The folded mesh as a shape whose transform moves by (10, 0, 0) and doubles sizes.
struct MeshRays : FoldedMesh {
    MeshRays() {
        transform = make(fn);
        MFnTransform place(transform);
        const double twice[3]{2, 2, 2};
        place.setScale(twice);
        place.setTranslation(MVector(10, 0, 0), MSpace::kTransform);
    }

    struct Hit {
        bool found = false;
        MStatus status;
        MFloatPoint point;
        float param = -9, bary1 = -9, bary2 = -9;
        int face = -9, triangle = -9;
    };
    Hit cast(const MFloatPoint& from, const MFloatVector& along, MSpace::Space space = MSpace::kObject,
             float most = 100, bool both = false, float tolerance = 1e-6f, const MIntArray* faces = nullptr,
             const MIntArray* triangles = nullptr) {
        Hit h;
        MMeshIsectAccelParams params = MFnMesh::autoUniformGridParams();
        h.found = fn.closestIntersection(from, along, faces, triangles, false, space, most, both, &params, h.point,
                                         &h.param, &h.face, &h.triangle, &h.bary1, &h.bary2, tolerance, &h.status);
        return h;
    }

    MFnMesh fn;
    MObject transform;
};

std::string text(const MString& s) { return {s.asChar(), s.length()}; }

// Faults: spaces mixed up, results in the wrong order, barycentrics of other corners. The square's triangles are
// 0 1 2 and 0 2 3; (0.75, 0.25, 0) is 1/4 of the first corner, 1/2 of the second and 1/4 of the third.
TEST_F(MeshRays, ClosestIntersection) {
    for (const auto space : {MSpace::kObject, MSpace::kWorld}) {
        const bool world = space == MSpace::kWorld;
        const float scale = world ? 2 : 1;
        const Hit h =
            cast(MFloatPoint(0.75f * scale + (world ? 10 : 0), 0.25f * scale, 3), MFloatVector(0, 0, -2), space);
        ASSERT_TRUE(h.found && h.status);
        expectPoint(h.point, 0.75 * scale + (world ? 10 : 0), 0.25 * scale, 0);
        EXPECT_EQ(h.param, 1.5f);
        EXPECT_EQ(h.face, 0);
        EXPECT_EQ(h.triangle, 0);
        EXPECT_NEAR(h.bary1, 0.25, 1e-6);
        EXPECT_NEAR(h.bary2, 0.5, 1e-6);
    }
    EXPECT_EQ(cast({0.25f, 0.75f, 3}, {0, 0, -1}).triangle, 1);
    const Hit side = cast({5, 0.25f, -0.5f}, {-1, 0, 0});
    EXPECT_EQ(side.face, 1);
    expectPoint(side.point, 1, 0.25, -0.5);
    // Along the square's border at x = 1 lies the triangle's edge, too.
    EXPECT_EQ(cast({1, 0.5f, 3}, {0, 0, -1}).face, 0);
}

// Faults: a miss that is told as an error, or touches the results; bad arguments that are taken.
TEST_F(MeshRays, MissesAndBadArguments) {
    const Hit miss = cast({3, 3, 3}, {0, 0, -1});
    EXPECT_FALSE(miss.found);
    EXPECT_TRUE(miss.status);
    EXPECT_EQ(miss.face, -9);
    EXPECT_FALSE(cast({0.5f, 0.5f, 3}, {0, 0, -1}, MSpace::kObject, 2.9f).found);
    EXPECT_FALSE(cast({0.5f, 0.5f, -3}, {0, 0, -1}).found);
    EXPECT_EQ(cast({0.5f, 0.25f, -3}, {0, 0, -1}, MSpace::kObject, 100, true).param, -3);
    EXPECT_TRUE(cast({0.5f, -0.005f, 3}, {0, 0, -1}, MSpace::kObject, 100, false, 0.01f).found);

    const MFloatPoint from(0.5f, 0.5f, 3);
    const MFloatVector along(0, 0, -1);
    for (const Hit& bad :
         {cast(from, {0, 0, 0}), cast(from, {0, kNan, 0}), cast({kNan, 0, 0}, along),
          cast(from, along, MSpace::kInvalid), cast(from, along, MSpace::kObject, -1),
          cast(from, along, MSpace::kObject, kNan), cast(from, along, MSpace::kObject, 9, false, -1),
          cast(from, along, MSpace::kObject, 9, false, 1.5f), cast(from, along, MSpace::kObject, 9, false, kNan)}) {
        EXPECT_FALSE(bad.found);
        EXPECT_EQ(bad.status, MStatus::kInvalidParameter);
    }
}

// Faults: lists of faces that are not looked at, or read beyond their end.
TEST_F(MeshRays, ListedFacesAlone) {
    const MFloatPoint from(0.75f, 0.25f, 3);
    const MFloatVector along(0, 0, -1);
    const auto listed = [&](std::vector<int> faces, const std::vector<int>* triangles = nullptr) {
        const MIntArray f(faces.data(), static_cast<unsigned int>(faces.size()));
        const MIntArray t(triangles ? triangles->data() : nullptr,
                          triangles ? static_cast<unsigned int>(triangles->size()) : 0);
        return cast(from, along, MSpace::kObject, 100, false, 1e-6f, &f, triangles ? &t : nullptr);
    };
    EXPECT_TRUE(listed({1, 0}).found);
    EXPECT_FALSE(listed({1}).found);
    EXPECT_FALSE(listed({}).found);
    const std::vector<int> first{0}, second{1}, none{2};
    EXPECT_TRUE(listed({0}, &first).found);
    EXPECT_FALSE(listed({0}, &second).found);
    for (const Hit& bad : {listed({2}), listed({-1}), listed({0}, &none), listed({0, 1}, &first)})
        EXPECT_EQ(bad.status, MStatus::kInvalidParameter);

    MIntArray faces(3, 1), triangles(3, 0);
    faces[2] = 0;
    triangles[0] = 4;
    EXPECT_TRUE(fn.sortIntersectionFaceTriIds(&faces, &triangles));
    EXPECT_THAT(list(faces), ElementsAre(0, 1, 1));
    EXPECT_THAT(list(triangles), ElementsAre(0, 0, 4));
}

// Faults: hits that are lost, unsorted, or of other lengths. The ray leaves through the square at (0.5, 0.25, 0), and
// enters through the triangle's plane x = 1 at (1, 0.25, -0.5).
TEST_F(MeshRays, AllIntersections) {
    for (const bool both : {false, true}) {
        MFloatPointArray points;
        MFloatArray params, bary1s, bary2s;
        MIntArray faces, triangles;
        MStatus status;
        const MFloatPoint from = both ? MFloatPoint(0.75f, 0.25f, -0.25f) : MFloatPoint(2, 0.25f, -1.5f);
        ASSERT_TRUE(fn.allIntersections(from, MFloatVector(-0.5f, 0, 0.5f), nullptr, nullptr, false, MSpace::kObject,
                                        50, both, nullptr, true, points, &params, &faces, &triangles, &bary1s, &bary2s,
                                        1e-6f, &status));
        ASSERT_EQ(points.length(), 2u);
        expectPoint(points[0], 1, 0.25, -0.5);
        expectPoint(points[1], 0.5, 0.25, 0);
        EXPECT_THAT(std::vector<float>(params.begin(), params.end()),
                    both ? ElementsAre(-0.5f, 0.5f) : ElementsAre(2.0f, 3.0f));
        EXPECT_THAT(list(faces), ElementsAre(1, 0));
        EXPECT_THAT(list(triangles), ElementsAre(0, 0));
        EXPECT_EQ(bary1s.length() + bary2s.length(), 4u);
        fn.allIntersections(from, MFloatVector(0, 1, 0), nullptr, nullptr, false, MSpace::kObject, 50, both, nullptr,
                            true, points, &params, nullptr, nullptr, nullptr, nullptr, 1e-6f, &status);
        EXPECT_TRUE(status);
        EXPECT_EQ(points.length() + params.length(), 0u);
    }
    MPointArray points;
    MIntArray faces;
    // On the diagonal of the square, which both of its triangles have: once.
    EXPECT_TRUE(fn.intersect(MPoint(0.5, 0.5, 2), MVector(0, 0, -1), points, 1e-3, MSpace::kObject, &faces));
    EXPECT_THAT(list(faces), ElementsAre(0));
    expectPoint(points[0], 0.5, 0.5, 0);
    EXPECT_FALSE(fn.intersect(MPoint(5, 5, 2), MVector(0, 0, -1), points));
}

// Faults: distances taken in another space, normals that do not turn with the shape, points that stay on the plane.
TEST_F(MeshRays, NearestPoints) {
    MPoint point;
    MVector normal;
    int polygon = -1;
    ASSERT_TRUE(fn.getClosestPointAndNormal(MPoint(0.25, 0.5, 7), point, normal, MSpace::kObject, &polygon));
    expectPoint(point, 0.25, 0.5, 0);
    EXPECT_EQ(polygon, 0);
    ASSERT_TRUE(fn.getClosestPoint(MPoint(-3, 0.5, 4), point));
    expectPoint(point, 0, 0.5, 0);
    // Turned, the triangle has the corners (10, 2, 0), (8, 2, 0) and (10, 2, -2) in the world: the point is beyond the
    // middle of the edge from the second to the third.
    MFnTransform(transform).setRotation(MEulerRotation(0, 0, M_PI / 2));
    ASSERT_TRUE(fn.getClosestPointAndNormal(MPoint(9, 9, -1.75), point, normal, MSpace::kWorld, &polygon));
    expectPoint(point, 9.375, 2, -1.375);
    EXPECT_EQ(polygon, 1);
    ASSERT_TRUE(fn.getClosestNormal(MPoint(9.5, 9, -1.9), normal, MSpace::kWorld));
    EXPECT_GT(normal.y, 0.5);
    EXPECT_NEAR(normal.length(), 1, 1e-9);

    EXPECT_EQ(fn.getClosestPoint(MPoint(kNan, 0, 0), point), MStatus::kInvalidParameter);
    MFnMesh empty;
    empty.create(0, 0, MPointArray(), MIntArray(), MIntArray());
    EXPECT_EQ(empty.getClosestPoint(MPoint(), point), MStatus::kFailure);
    EXPECT_EQ(MFnMesh().getClosestPoint(MPoint(), point), MStatus::kFailure);
}

// Faults: answers of the mesh as it was, or where it was; a structure that is never freed.
TEST_F(MeshRays, KeptStructuresFollowChanges) {
    const auto height = [&](MSpace::Space space) { return cast({10.5f, 0.5f, 9}, {0, 0, -1}, space).point.z; };
    EXPECT_EQ(height(MSpace::kWorld), 0);
    EXPECT_THAT(text(fn.cachedIntersectionAcceleratorInfo()), testing::StartsWith("1 accelerator for 3 triangles"));
    MFnTransform(transform).setTranslation(MVector(10, 0, 4), MSpace::kTransform);
    EXPECT_EQ(height(MSpace::kWorld), 4);
    for (int v = 0; v < 4; ++v) {
        MPoint p;
        fn.getPoint(v, p);
        p.z += 1;
        fn.setPoint(v, p);
    }
    EXPECT_EQ(height(MSpace::kWorld), 6);
    {
        const host::scene::UndoQueue::Chunk chunk(host::scene::Scene::current().undo);
        fn.setPoint(0, MPoint(0, 0, 1.5));
        EXPECT_GT(height(MSpace::kWorld), 6);
    }
    EXPECT_TRUE(host::scene::Scene::current().undo.undo());
    EXPECT_EQ(height(MSpace::kWorld), 6);
    EXPECT_TRUE(fn.freeCachedIntersectionAccelerator());
    EXPECT_EQ(text(fn.cachedIntersectionAcceleratorInfo()), "");
    EXPECT_EQ(height(MSpace::kWorld), 6);
    EXPECT_NE(text(MFnMesh::globalIntersectionAcceleratorsInfo()), "");
    MFnMesh::clearGlobalIntersectionAcceleratorInfo();
    EXPECT_EQ(text(MFnMesh::globalIntersectionAcceleratorsInfo()), "");
}

} // namespace
