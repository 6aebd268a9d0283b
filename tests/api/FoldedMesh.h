#pragma once

#include "scene/Scene.h"

#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>

#include <gtest/gtest.h>

#include <vector>

/// A unit square in the plane z = 0 and, folded down from its edge at x = 1, a triangle in the plane x = 1:
///
///     3---2        normals (0, 0, 1) of the square 0 1 2 3,
///     |   | \               (1, 0, 0) of the triangle 1 4 2
///     0---1---4
struct FoldedMesh : testing::Test {
    FoldedMesh() { host::scene::Scene::current().reset(); }

    MPointArray points() const {
        const double p[5][4]{{0, 0, 0, 1}, {1, 0, 0, 1}, {1, 1, 0, 1}, {0, 1, 0, 1}, {1, 0, -1, 1}};
        return MPointArray(p, 5);
    }
    const int counts[2]{4, 3}, connects[7]{0, 1, 2, 3, 1, 4, 2};

    MObject make(MFnMesh& fn, const MObject& parentOrOwner = MObject::kNullObj) const {
        MStatus status;
        const MObject made =
            fn.create(5, 2, points(), MIntArray(counts, 2), MIntArray(connects, 7), parentOrOwner, &status);
        EXPECT_TRUE(status);
        return made;
    }
};

inline void expectPoint(const MPoint& p, double x, double y, double z) {
    EXPECT_NEAR(p.x, x, 1e-6);
    EXPECT_NEAR(p.y, y, 1e-6);
    EXPECT_NEAR(p.z, z, 1e-6);
}

inline std::vector<int> list(const MIntArray& array) { return {array.begin(), array.end()}; }
