// The drop-mesh command in MEL.
#include "PluginScene.h"

#include <gmock/gmock.h>

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MPointArray.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include <array>
#include <cmath>
#include <memory>
#include <random>

using testing::Contains;
using testing::ElementsAre;

namespace {

using Point = std::array<double, 3>;

class DropMesh : public PluginScene {
protected:
    /// A plane of `cells` x `cells` polygons, `size` wide, at a height.
    void plane(const std::string& name, double size, int cells, double x, double y, double z) {
        must("polyPlane -w " + std::to_string(size) + " -h " + std::to_string(size) + " -sx " + std::to_string(cells) +
             " -sy " + std::to_string(cells) + " -n \"" + name + "\"; setAttr \"" + name + ".t\" " + std::to_string(x) +
             " " + std::to_string(y) + " " + std::to_string(z));
    }
    /// The function set of a mesh by its transform's name.
    static std::unique_ptr<MFnMesh> mesh(const std::string& name) {
        MSelectionList list;
        MDagPath path;
        EXPECT_TRUE(list.add(MString(name.c_str())) && list.getDagPath(0, path)) << name;
        return std::make_unique<MFnMesh>(path);
    }
    /// In world space.
    static std::vector<Point> points(const std::string& name) {
        MPointArray found;
        EXPECT_TRUE(mesh(name)->getPoints(found, MSpace::kWorld));
        std::vector<Point> list;
        for (unsigned i = 0; i < found.length(); ++i) list.push_back({found[i].x, found[i].y, found[i].z});
        return list;
    }
    std::vector<double> heights(const std::string& name) {
        std::vector<double> list;
        for (const Point& p : points(name)) list.push_back(p[1]);
        return list;
    }
    bool drop(const std::string& statics, const std::string& offset) {
        return mel("orvo_dropMesh \"drop\" " + statics + " " + offset);
    }
    void expectFailure(const std::string& call, const std::string& message) {
        log_.clear();
        EXPECT_FALSE(mel(call)) << call;
        EXPECT_THAT(log_.errors(), Contains(message)) << call;
    }
};

std::string said(const char* text) { return std::string("DropMeshCommand: ") + text; }

/// The height of a triangle above a point, when it is there.
bool heightAt(const Point& a, const Point& b, const Point& c, double x, double z, double& height) {
    const double d = (b[0] - a[0]) * (c[2] - a[2]) - (c[0] - a[0]) * (b[2] - a[2]);
    if (d == 0) return false;
    const double u = ((x - a[0]) * (c[2] - a[2]) - (c[0] - a[0]) * (z - a[2])) / d;
    const double v = ((b[0] - a[0]) * (z - a[2]) - (x - a[0]) * (b[2] - a[2])) / d;
    if (u < 0 || v < 0 || u + v > 1) return false;
    height = a[1] + u * (b[1] - a[1]) + v * (c[1] - a[1]);
    return true;
}

} // namespace

// Catches a lower surface that wins, an offset that is lost, vertices below a surface that stay there, a world or
// object space taken for the other, and vertices that move sideways.
TEST_F(DropMesh, FallsOrRisesOntoTheHighestSurface) {
    plane("low", 100, 1, 0, 0, 0);
    plane("high", 100, 1, 0, 5, 0);
    for (const double start : {50.0, 2.0, -700.0, 3000.0}) {
        plane("drop", 10, 2, 3, start, 4);
        must("setAttr \"drop.s\" 2 3 1; setAttr \"drop.r\" 0 90 0");
        const auto before = points("drop");
        ASSERT_TRUE(drop("{\"low\", \"high\"}", "0.5")) << failure_;
        const auto after = points("drop");
        ASSERT_EQ(after.size(), 9u);
        for (std::size_t i = 0; i < after.size(); ++i) {
            EXPECT_NEAR(after[i][0], before[i][0], 1e-4);
            EXPECT_NEAR(after[i][1], 5.5, 1e-4) << "from " << start;
            EXPECT_NEAR(after[i][2], before[i][2], 1e-4);
        }
        must("delete \"drop\"");
    }
    EXPECT_THAT(log_.errors(), ElementsAre());
}

// Catches rays that begin or end at another static mesh than the highest and the lowest.
TEST_F(DropMesh, StaticsMayBeFarApart) {
    plane("low", 100, 1, 0, 0, 0);
    for (const auto& [x, height] : {std::pair{60, 0}, {0, 3000}}) {
        plane("high", 100, 1, x, 3000, 0);
        plane("drop", 10, 1, 0, 2990, 0);
        ASSERT_TRUE(drop("{\"low\", \"high\"}", "0")) << failure_;
        EXPECT_THAT(heights("drop"), testing::Each(testing::DoubleNear(height, 1e-2)));
        must("delete drop high");
    }
}

// Catches a vertex beside all statics that takes the wrong one's height, or moves to the nearest point itself.
TEST_F(DropMesh, BesideAllSurfacesTakesTheNearestHeight) {
    plane("left", 10, 1, -50, 7, 0);
    plane("right", 10, 1, 50, 9, 0);
    plane("drop", 2, 1, 20, 100, 0);
    ASSERT_TRUE(drop("{\"left\", \"right\", \"gone\"}", "-1")) << failure_;
    EXPECT_THAT(heights("drop"), testing::Each(testing::DoubleNear(8, 1e-4)));
    EXPECT_NEAR(points("drop")[0][0], 19, 1e-4);
    EXPECT_THAT(log_.all(), Contains("Warning: DropMeshCommand: unable to get static mesh [gone]\n"));
    // The middle column is equally near to both: the first of the list counts.
    must("delete \"drop\"");
    plane("drop", 2, 2, 0, 8, 0);
    ASSERT_TRUE(drop("{\"right\", \"left\"}", "0"));
    EXPECT_THAT(heights("drop"), ElementsAre(7, 9, 9, 7, 9, 9, 7, 9, 9));
}

// Against the height of every triangle in plain arithmetic. Catches triangles that a search structure misses.
TEST_F(DropMesh, AgreesWithATestOfEveryTriangle) {
    std::mt19937 random(3);
    const auto number = [&](double from, double to) {
        return from + (to - from) * static_cast<double>(random()) / 4294967295.0;
    };
    std::vector<std::array<Point, 3>> triangles;
    for (const char* name : {"hills", "rocks"}) {
        plane(name, 40, 9, 0, 0, 0);
        const auto ground = mesh(name);
        auto corners = points(name);
        for (unsigned i = 0; i < corners.size(); ++i) {
            for (int k = 0; k < 3; ++k) corners[i][k] += number(-1, 1) * (k == 1 ? 5 : 1);
            const MPoint moved(corners[i][0], corners[i][1], corners[i][2]);
            ASSERT_TRUE(ground->setPoint(static_cast<int>(i), moved, MSpace::kWorld));
        }
        corners = points(name); // as rounded
        for (int face = 0; face < ground->numPolygons(); ++face) {
            for (int triangle = 0; triangle < 2; ++triangle) {
                int at[3];
                ASSERT_TRUE(ground->getPolygonTriangleVertices(face, triangle, at));
                triangles.push_back({corners[at[0]], corners[at[1]], corners[at[2]]});
            }
        }
    }
    ASSERT_EQ(triangles.size(), 2u * 2 * 81);
    plane("drop", 36, 30, 0.123, 0, 0.321);
    const auto before = points("drop");
    ASSERT_TRUE(drop("{\"hills\", \"rocks\"}", "0.25")) << failure_;
    const auto after = heights("drop");
    int met = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        double best = -1e9, height = 0;
        for (const auto& t : triangles)
            if (heightAt(t[0], t[1], t[2], before[i][0], before[i][2], height)) best = std::max(best, height);
        if (best == -1e9) continue;
        ++met;
        EXPECT_NEAR(after[i], best + 0.25, 2e-3) << i;
    }
    EXPECT_GT(met, 900);
}

// Catches an undo that is off by a rounding, a redo that takes new undo positions or measures the statics anew.
TEST_F(DropMesh, UndoesAndRedoes) {
    plane("ground", 100, 1, 0, 0, 0);
    plane("drop", 10, 3, 0.1, 20, 0.3);
    must("setAttr \"drop.r\" 10 20 30; setAttr \"drop.s\" 1.5 0.7 3");
    // Scripts see it, too: point by point, in the mesh's own space.
    const auto fromMel = [&] {
        std::vector<double> places;
        for (int v = 0; v < 16; ++v) {
            must("xform -q -t drop.vtx[" + std::to_string(v) + "]");
            for (const double number : result_.toFloatArray()) places.push_back(number);
        }
        return places;
    };
    const auto before = points("drop");
    const auto melBefore = fromMel();
    ASSERT_TRUE(drop("{\"ground\"}", "1"));
    const auto after = points("drop");
    const auto melAfter = fromMel();
    ASSERT_NE(after, before);
    ASSERT_NE(melAfter, melBefore);
    for (int round = 0; round < 2; ++round) {
        must("undo");
        EXPECT_EQ(points("drop"), before);
        EXPECT_EQ(fromMel(), melBefore);
        must("redo");
        EXPECT_EQ(points("drop"), after);
        EXPECT_EQ(fromMel(), melAfter);
    }
    must("undo");
    EXPECT_EQ(points("drop"), before);
    EXPECT_THAT(log_.errors(), ElementsAre());
}

// A redo falls from where the first run did, and its undo goes back to where that began, whatever moved since.
TEST_F(DropMesh, RedoKeepsWhatTheFirstRunMeasured) {
    plane("low", 100, 1, 0, 0, 0);
    plane("high", 100, 1, 0, 1, 0);
    plane("drop", 10, 1, 0, 20, 0);
    const auto before = points("drop");
    ASSERT_TRUE(drop("{\"low\", \"high\"}", "0"));
    EXPECT_THAT(heights("drop"), testing::Each(testing::DoubleNear(1, 1e-4)));
    // Rays fall from 1001 to -1000.
    const std::pair<const char*, double> moves[] = {{"setAttr high.ty 5000", 0},
                                                    {"setAttr high.ty 900", 900},
                                                    {"setAttr high.t 60 15 0; setAttr low.ty -900", -900}};
    for (const auto& [move, height] : moves) {
        must(std::string("undo; undoInfo -swf 0; ") + move);
        ASSERT_TRUE(mesh("drop")->setPoint(0, MPoint(0, 7, 0)));
        must("undoInfo -swf 1; redo");
        EXPECT_THAT(heights("drop"), testing::Each(testing::DoubleNear(height, 1e-3))) << move;
    }
    must("undo");
    EXPECT_EQ(points("drop"), before);
}

TEST_F(DropMesh, UndoRefusesAnotherMesh) {
    plane("ground", 100, 1, 0, 0, 0);
    plane("drop", 10, 1, 0, 20, 0);
    ASSERT_TRUE(drop("{\"ground\"}", "1"));
    must("undoInfo -swf 0; delete \"drop\"; polyPlane -sx 4 -sy 4 -n \"drop\"; undoInfo -swf 1");
    const auto other = points("drop");
    log_.clear();
    must("undo");
    EXPECT_THAT(log_.errors(), Contains(said("undo Data does not match mesh!!? :(")));
    EXPECT_EQ(points("drop"), other);
}

TEST_F(DropMesh, RefusesBadArguments) {
    plane("ground", 100, 1, 0, 0, 0);
    plane("drop", 10, 1, 0, 20, 0);
    must("createNode transform -n \"bare\"; createNode mesh -n \"hollow\"");
    const auto before = points("drop");
    const std::string syntax =
        "Syntax: \"dropMesh dropObject staticObjects offset\", where dropObject is the mesh to be "
        "dropped. staticObjects is an array of static scene objects.  offset is a value in Y";
    expectFailure("orvo_dropMesh \"drop\" {\"ground\"}", syntax);
    expectFailure("orvo_dropMesh \"drop\" {\"ground\"} 1 2", syntax);
    expectFailure("string $none[]; orvo_dropMesh \"drop\" $none 1",
                  said("Could not get staticObjectNameArray argument"));
    expectFailure("orvo_dropMesh \"drop\" {\"ground\"} \"up\"", said("Could not get offset argument"));
    expectFailure("orvo_dropMesh \"drop\" {\"ground\"} 1e39", said("Could not get offset argument"));
    expectFailure("orvo_dropMesh \"gone\" {\"ground\"} 1", said("Trouble getting dropObject MFnMesh"));
    expectFailure("orvo_dropMesh \"bare\" {\"ground\"} 1", said("Trouble getting dropObject MFnMesh"));
    expectFailure("orvo_dropMesh \"drop\" {\"gone\", \"bare\"} 1",
                  said("Could not get any static objects to work with"));
    EXPECT_FALSE(drop("{\"hollow\"}", "1")); // nothing to fall onto, nothing near
    EXPECT_EQ(points("drop"), before);
}

// Catches a drop that never ends, or that falls onto vertices it has moved itself.
TEST_F(DropMesh, OntoItselfTakesTheSurfaceAsItWas) {
    must("polyCube -w 2 -h 2 -d 2 -n \"drop\"");
    ASSERT_TRUE(drop("{\"drop\"}", "3")) << failure_;
    EXPECT_THAT(heights("drop"), testing::Each(testing::DoubleNear(4, 1e-4)));
    must("undo");
    EXPECT_NEAR(heights("drop")[0], -1, 1e-6);
}

// Catches a mesh that is scattered because its transform, a flattened one, cannot be undone.
TEST_F(DropMesh, RefusesAMeshThatItsTransformFlattens) {
    plane("ground", 100, 1, 0, 0, 0);
    plane("drop", 10, 1, 0, 20, 0);
    must("setAttr drop.s 2 0 1");
    MPointArray before, after;
    ASSERT_TRUE(mesh("drop")->getPoints(before, MSpace::kObject));
    expectFailure("orvo_dropMesh \"drop\" {\"ground\"} 1", said("Error assigning point back into dropObjectMesh"));
    ASSERT_TRUE(mesh("drop")->getPoints(after, MSpace::kObject));
    for (unsigned i = 0; i < before.length(); ++i) EXPECT_EQ(after[i], before[i]);
}

// Catches one bad vertex that keeps a mesh from being dropped, or leaves it half dropped without an undo.
TEST_F(DropMesh, LeavesVerticesWithoutAPositionAlone) {
    plane("ground", 100, 1, 0, 0, 0);
    plane("drop", 10, 1, 0, 20, 0);
    ASSERT_TRUE(mesh("drop")->setPoint(1, MPoint(std::nan(""), 1, 2)));
    ASSERT_TRUE(drop("{\"ground\"}", "1")) << failure_;
    EXPECT_THAT(log_.all(), ElementsAre("Warning: DropMeshCommand: 1 vertices have no position and are left alone\n"));
    const auto after = heights("drop");
    EXPECT_TRUE(std::isnan(after[1]));
    for (const std::size_t i : {0, 2, 3}) EXPECT_NEAR(after[i], 1, 1e-4);
}
