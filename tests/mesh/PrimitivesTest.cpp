#include "mesh/Primitives.h"

#include "MeshMeasures.h"

#include <gmock/gmock.h>

#include <limits>

namespace host::mesh {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// The volume of a sphere's polyhedron, by its slices: prismatoids between regular polygons (Simpson's rule is exact).
double sphereVolume(int around, int up) {
    const double polygon = around * std::sin(2 * M_PI / around) / 2; // area of the regular polygon of radius 1
    double volume = 0;
    for (int j = 0; j < up; ++j) {
        const double a = M_PI * j / up, b = M_PI * (j + 1) / up, middle = (std::sin(a) + std::sin(b)) / 2;
        const double squares = std::sin(a) * std::sin(a) + 4 * middle * middle + std::sin(b) * std::sin(b);
        volume += (std::cos(a) - std::cos(b)) / 6 * squares * polygon;
    }
    return volume;
}

struct Solid {
    const char* name;
    std::shared_ptr<const PolyMesh> mesh;
    int vertices, faces;
    double volume;
    friend void PrintTo(const Solid& c, std::ostream* out) { *out << c.name; }
};

class ClosedPrimitive : public testing::TestWithParam<Solid> {};

// Catches holes, flipped or doubled faces, seams that are not joined, and wrong counts, sizes and ids.
TEST_P(ClosedPrimitive, IsAClosedSurfaceOfTheRightSize) {
    const Solid& solid = GetParam();
    ASSERT_NE(solid.mesh, nullptr);
    const PolyMesh& mesh = *solid.mesh;
    EXPECT_EQ(mesh.numVertices(), solid.vertices);
    EXPECT_EQ(mesh.numPolygons(), solid.faces);
    EXPECT_EQ(eulerCharacteristic(mesh), 2);
    EXPECT_TRUE(isClosed(mesh));
    EXPECT_NEAR(signedVolume(mesh), solid.volume, 2e-6 * solid.volume);
    ASSERT_EQ(mesh.uvSet(0).name, "map1");
    ASSERT_EQ(mesh.uvSet(0).ids.size(), static_cast<std::size_t>(mesh.numFaceVertices()));
    std::vector<bool> used(mesh.uvSet(0).u.size());
    double uvArea = 0;
    for (int f = 0; f < mesh.numPolygons(); ++f) {
        double area = 0;
        for (int i = 0; i < mesh.faceSize(f); ++i) {
            float u = 0, v = 0, nextU = 0, nextV = 0;
            ASSERT_TRUE(mesh.uvAt(0, f, i, u, v));
            ASSERT_TRUE(mesh.uvAt(0, f, (i + 1) % mesh.faceSize(f), nextU, nextV));
            area += (static_cast<double>(u) * nextV - static_cast<double>(nextU) * v) / 2;
            used[mesh.uvId(0, f, i)] = true;
        }
        EXPECT_GT(area, 0) << "face " << f << " is mirrored in the texture";
        uvArea += area;
    }
    EXPECT_THAT(used, testing::Each(true));
    EXPECT_LE(uvArea, 1 + 1e-6);
}

INSTANTIATE_TEST_SUITE_P(
    Primitives, ClosedPrimitive,
    testing::Values(
        Solid{"cube", polyCube({}), 8, 6, 1}, Solid{"box", polyCube({.width = 2, .height = 3, .depth = 5}), 8, 6, 30},
        // Faces 2(3*4 + 3*5 + 4*5) = 94; a closed surface of quads has faces + 2 vertices.
        Solid{"dividedBox",
              polyCube({.width = 2,
                        .height = 3,
                        .depth = 5,
                        .subdivisionsX = 3,
                        .subdivisionsY = 4,
                        .subdivisionsZ = 5,
                        .axis = {1, 2, -3}}),
              96, 94, 30},
        Solid{"sphere", polySphere({}), 382, 400, sphereVolume(20, 20)},
        Solid{"bigCoarseSphere", polySphere({.radius = 10, .subdivisionsAxis = 3, .subdivisionsHeight = 3}), 8, 9,
              1000 * sphereVolume(3, 3)},
        Solid{"fineSphere", polySphere({.subdivisionsAxis = 400, .subdivisionsHeight = 300, .axis = {0, -1, 0}}),
              400 * 299 + 2, 120000, sphereVolume(400, 300)},
        Solid{"cylinder", polyCylinder({}), 42, 60, 2 * 10 * std::sin(M_PI / 10)},
        Solid{"openCapCylinder", polyCylinder({.subdivisionsCaps = 0}), 40, 22, 2 * 10 * std::sin(M_PI / 10)},
        Solid{"dividedCylinder",
              polyCylinder({.radius = 2,
                            .height = 7,
                            .subdivisionsAxis = 6,
                            .subdivisionsHeight = 4,
                            .subdivisionsCaps = 3,
                            .axis = {0, 0, 1}}),
              // rings 5 + 2 + 2 of 6, and two centres; 8 strips and two ends of 6 faces
              9 * 6 + 2, 60, 7 * 4 * 3 * std::sin(M_PI / 3)}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Primitives, SphereTendsToTheRoundOne) {
    const double round = 4 * M_PI / 3;
    const double coarse = round - signedVolume(*polySphere({.subdivisionsAxis = 20, .subdivisionsHeight = 20}));
    const double fine = round - signedVolume(*polySphere({.subdivisionsAxis = 200, .subdivisionsHeight = 200}));
    EXPECT_GT(fine, 0);
    EXPECT_NEAR(coarse / fine, 100, 2); // second order
}

// Catches another vertex order: scenes store offsets and selections by vertex number.
TEST(Primitives, NumberVerticesAsTheHostDoes) {
    const auto plane = polyPlane({.subdivisionsX = 1, .subdivisionsY = 1});
    EXPECT_THAT(plane->points(),
                ElementsAre(Float3{-.5f, 0, .5f}, Float3{.5f, 0, .5f}, Float3{-.5f, 0, -.5f}, Float3{.5f, 0, -.5f}));
    EXPECT_THAT(plane->connects(), ElementsAre(0, 1, 3, 2));
    EXPECT_EQ(polyPlane({})->numVertices(), 121);
    EXPECT_EQ(polyPlane({})->polygonNormal(0), Imath::V3d(0, 1, 0));
    EXPECT_EQ(polyPlane({.axis = {0, 0, 2}})->polygonNormal(7), Imath::V3d(0, 0, 1));

    const auto cube = polyCube({});
    EXPECT_THAT(cube->points(), ElementsAre(Float3{-.5f, -.5f, .5f}, Float3{.5f, -.5f, .5f}, Float3{-.5f, .5f, .5f},
                                            Float3{.5f, .5f, .5f}, Float3{-.5f, .5f, -.5f}, Float3{.5f, .5f, -.5f},
                                            Float3{-.5f, -.5f, -.5f}, Float3{.5f, -.5f, -.5f}));
    EXPECT_THAT(cube->connects(), ElementsAre(0, 1, 3, 2, 2, 3, 5, 4, 4, 5, 7, 6, 6, 7, 1, 0, 1, 7, 5, 3, 6, 0, 2, 4));
    const auto sphere = polySphere({});
    EXPECT_EQ(sphere->point(380), (Float3{0, -1, 0}));
    EXPECT_EQ(sphere->point(381), (Float3{0, 1, 0}));
    EXPECT_LT(sphere->point(0).y, sphere->point(20).y);
}

// Catches creases that are smoothed over, or facets that show on a round side.
TEST(Primitives, AreHardWhereTheyAreCreased) {
    const auto hard = [](const std::shared_ptr<const PolyMesh>& mesh) {
        int n = 0;
        for (const Edge& e : mesh->edges()) n += !e.smooth;
        return n;
    };
    EXPECT_EQ(hard(polyCube({})), 12);
    EXPECT_EQ(hard(polyCube({.subdivisionsX = 2, .subdivisionsY = 3, .subdivisionsZ = 4})), 4 * (2 + 3 + 4));
    EXPECT_EQ(hard(polySphere({})), 0);
    EXPECT_EQ(hard(polyCylinder({.subdivisionsHeight = 3, .subdivisionsCaps = 2})), 40);
    EXPECT_EQ(hard(polyPlane({.subdivisionsX = 3, .subdivisionsY = 2})), 10);
}

// Catches memory exhaustion and meshes of bad numbers.
TEST(Primitives, RefuseWhatCannotBeBuilt) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const int huge = std::numeric_limits<int>::max();
    std::string error;
    EXPECT_EQ(polyPlane({.subdivisionsX = huge, .subdivisionsY = huge}, &error), nullptr);
    EXPECT_THAT(error, HasSubstr("the most is 4000000"));
    EXPECT_EQ(polyCube({.subdivisionsX = huge, .subdivisionsY = huge, .subdivisionsZ = huge}, &error), nullptr);
    EXPECT_EQ(polySphere({.subdivisionsAxis = huge, .subdivisionsHeight = huge}, &error), nullptr);
    EXPECT_EQ(polyCylinder({.subdivisionsAxis = 3, .subdivisionsCaps = huge}, &error), nullptr);
    EXPECT_THAT(error, HasSubstr("the most is 4000000"));
    EXPECT_EQ(polyPlane({.width = nan}, &error), nullptr);
    EXPECT_EQ(polyCube({.depth = -1}, &error), nullptr);
    EXPECT_EQ(polyCylinder({.height = 1e60}, &error), nullptr);
    EXPECT_EQ(polySphere({.axis = {nan, 0, 0}}, &error), nullptr);
    EXPECT_THAT(error, HasSubstr("axis"));
    const int least = std::numeric_limits<int>::min();
    const auto plane = polyPlane({.subdivisionsX = least, .subdivisionsY = 0, .axis = {0, 0, 0}}, &error);
    ASSERT_NE(plane, nullptr);
    EXPECT_EQ(error, "");
    EXPECT_EQ(plane->numPolygons(), 1);
    EXPECT_EQ(plane->polygonNormal(0), Imath::V3d(0, 1, 0));
}

} // namespace
} // namespace host::mesh
