#include "FoldedMesh.h"

#include <maya/MFloatArray.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

std::vector<std::string> setNames(const MFnMesh& fn) {
    MStringArray names;
    EXPECT_TRUE(fn.getUVSetNames(names));
    std::vector<std::string> out;
    for (unsigned i = 0; i < names.length(); ++i) out.emplace_back(names[i].asChar());
    return out;
}

/// Six UVs: the corners of the square, and two more for the triangle, whose vertex 1 lies on a seam.
struct MeshUvs : FoldedMesh {
    const float u[6]{0, 0.5f, 0.5f, 0, 0.75f, 1}, v[6]{0, 0, 0.5f, 0.5f, 0, 0.25f};
    const int ids[7]{0, 1, 2, 3, 4, 5, 2};
    MFnMesh fn;
    MeshUvs() {
        make(fn);
        EXPECT_TRUE(fn.setUVs(MFloatArray(u, 6), MFloatArray(v, 6)));
        EXPECT_TRUE(fn.assignUVs(MIntArray(counts, 2), MIntArray(ids, 7)));
    }
};

// Fault: UVs kept by vertex, so that a seam closes; a corner counted in the mesh instead of the polygon.
TEST_F(MeshUvs, SeamsKeepTheirSides) {
    float a = -1, b = -1;
    int id = -1;
    EXPECT_TRUE(fn.getPolygonUV(0, 1, a, b));
    EXPECT_THAT(std::vector({a, b}), ElementsAre(0.5f, 0.0f));
    EXPECT_TRUE(fn.getPolygonUV(1, 0, a, b)); // the same vertex from the other polygon
    EXPECT_THAT(std::vector({a, b}), ElementsAre(0.75f, 0.0f));
    EXPECT_TRUE(fn.getPolygonUVid(1, 2, id));
    EXPECT_EQ(id, 2);
    EXPECT_TRUE(fn.assignUV(1, 0, 1));
    EXPECT_TRUE(fn.getPolygonUVid(1, 0, id));
    EXPECT_EQ(id, 1);
    MIntArray n, i;
    EXPECT_TRUE(fn.getAssignedUVs(n, i));
    EXPECT_THAT(list(i), ElementsAre(0, 1, 2, 3, 1, 5, 2));
}

// Fault: polygons without UVs are given those of others, or shorten the list wrongly.
TEST_F(MeshUvs, PolygonsMayHaveNone) {
    const int some[2]{0, 3}, three[3]{4, 5, 2};
    EXPECT_TRUE(fn.assignUVs(MIntArray(some, 2), MIntArray(three, 3)));
    float a, b;
    int id = 9;
    EXPECT_EQ(fn.getPolygonUV(0, 0, a, b), MStatus::kFailure);
    EXPECT_EQ(fn.getPolygonUVid(0, 0, id), MStatus::kFailure);
    EXPECT_EQ(id, 9);
    EXPECT_TRUE(fn.getPolygonUV(1, 1, a, b));
    EXPECT_EQ(a, 1.0f);
    MIntArray n, i;
    EXPECT_TRUE(fn.getAssignedUVs(n, i));
    EXPECT_THAT(list(n), ElementsAre(0, 3));
    EXPECT_THAT(list(i), ElementsAre(4, 5, 2));
    EXPECT_TRUE(fn.assignUV(0, 2, 3));
    EXPECT_TRUE(fn.getAssignedUVs(n, i));
    EXPECT_THAT(list(n), ElementsAre(4, 3));
    EXPECT_THAT(list(i), ElementsAre(-1, -1, 3, -1, 4, 5, 2));
}

// Fault: single UVs that overwrite others, or a list that shrinks below the ids in use.
TEST_F(MeshUvs, SingleUvsGrowTheList) {
    EXPECT_TRUE(fn.setUV(8, 0.25f, 0.125f));
    EXPECT_EQ(fn.numUVs(), 9);
    float a = -1, b = -1;
    EXPECT_TRUE(fn.getUV(7, a, b));
    EXPECT_THAT(std::vector({a, b}), ElementsAre(0.0f, 0.0f));
    EXPECT_TRUE(fn.getUV(5, a, b));
    EXPECT_THAT(std::vector({a, b}), ElementsAre(1.0f, 0.25f));
    const int two[2]{8, 0};
    const float x[2]{3, 4};
    EXPECT_TRUE(fn.setSomeUVs(MIntArray(two, 2), MFloatArray(x, 2), MFloatArray(x, 2)));
    EXPECT_TRUE(fn.getUV(0, a, b));
    EXPECT_EQ(a, 4.0f);
    EXPECT_EQ(fn.setUVs(MFloatArray(5, 0.0f), MFloatArray(5, 0.0f)), MStatus::kInvalidParameter) << "id 5 is in use";
    EXPECT_EQ(fn.setUV(1 << 30, 0, 0), MStatus::kInvalidParameter);
    EXPECT_EQ(fn.numUVs(), 9);
    EXPECT_TRUE(fn.clearUVs());
    EXPECT_EQ(fn.numUVs(), 0);
}

// Fault: calls work on another set than the named or the current one; deleting loses what other sets or edges hold.
TEST_F(MeshUvs, SetsAreApart) {
    const MString second("second");
    MStatus status;
    EXPECT_STREQ(fn.createUVSetWithName(second, nullptr, &status).asChar(), "second");
    EXPECT_TRUE(status);
    EXPECT_STREQ(fn.createUVSetWithName(second).asChar(), "second1");
    MString wanted("map1");
    EXPECT_TRUE(fn.createUVSet(wanted));
    EXPECT_STRNE(wanted.asChar(), "map1");
    EXPECT_EQ(fn.numUVSets(), 4);
    EXPECT_EQ(fn.numUVs(second), 0);
    EXPECT_TRUE(fn.setUVs(MFloatArray(3, 0.5f), MFloatArray(3, 0.25f), &second));
    EXPECT_EQ(fn.numUVs(second), 3);
    EXPECT_EQ(fn.numUVs(), 6);
    EXPECT_EQ(fn.numUVs("nowhere", &status), 0);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_STREQ(fn.copyUVSetWithName("map1", "second1").asChar(), "second1");
    EXPECT_TRUE(fn.setCurrentUVSetName("second1"));
    EXPECT_STREQ(fn.currentUVSetName().asChar(), "second1");
    EXPECT_EQ(fn.renameUVSet("second", "map1"), MStatus::kInvalidParameter) << "the name is taken";
    EXPECT_TRUE(fn.renameUVSet("second1", "third"));

    EXPECT_TRUE(fn.setEdgeSmoothing(1, false));
    EXPECT_TRUE(fn.deleteUVSet(second));
    EXPECT_THAT(setNames(fn), ElementsAre("map1", "third", wanted.asChar()));
    EXPECT_STREQ(fn.currentUVSetName().asChar(), "third");
    float a = -1, b = -1;
    EXPECT_TRUE(fn.getPolygonUV(1, 1, a, b)); // copied from map1
    EXPECT_EQ(a, 1.0f);
    EXPECT_FALSE(fn.isEdgeSmooth(1));
    EXPECT_EQ(fn.numEdges(), 6);
    EXPECT_TRUE(fn.deleteUVSet("third"));
    EXPECT_STREQ(fn.currentUVSetName().asChar(), "map1");
    EXPECT_EQ(fn.numUVs(), 6);
}

} // namespace
