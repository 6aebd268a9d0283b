// Triangle meshes as plain data and as XML.
#include "Common/TriMesh.h"
#include "Common/TriMeshBuild.h"
#include "Common/TriMeshXml.h"
#include "kit/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <map>
#include <random>
#include <sstream>

using orvo::PolygonMesh;
using orvo::TriMesh;
using orvo::Uv;
using orvo::Vector3;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// A fan of triangles for each polygon.
PolygonMesh polygons(std::vector<Vector3> points, std::vector<std::vector<int>> faces) {
    PolygonMesh mesh;
    mesh.points = std::move(points);
    for (const auto& face : faces) {
        mesh.polygonSizes.push_back(static_cast<int>(face.size()));
        mesh.corners.insert(mesh.corners.end(), face.begin(), face.end());
        for (std::size_t i = 2; i < face.size(); ++i)
            mesh.triangles.push_back({static_cast<std::uint32_t>(face[0]), static_cast<std::uint32_t>(face[i - 1]),
                                      static_cast<std::uint32_t>(face[i])});
    }
    return mesh;
}

/// The documented steps in the plainest form: ordered records, each compared with all before it.
TriMesh plainBySeams(const PolygonMesh& mesh) {
    struct Record {
        Vector3 position;
        Uv uvs[3];
        std::uint32_t index = 0;
    };
    std::map<std::pair<int, int>, Record> records;
    std::vector<std::array<std::pair<int, int>, 3>> triangles;
    std::size_t triangle = 0, corner = 0;
    for (int polygon = 0; polygon < static_cast<int>(mesh.polygonSizes.size()); ++polygon) {
        for (int i = 2; i < mesh.polygonSizes[polygon]; ++i) {
            auto& pairs = triangles.emplace_back();
            for (int k = 0; k < 3; ++k) {
                pairs[k] = {static_cast<int>(mesh.triangles[triangle][k]), polygon};
                records[pairs[k]].position = mesh.points[mesh.triangles[triangle][k]];
            }
            ++triangle;
        }
    }
    for (int polygon = 0; polygon < static_cast<int>(mesh.polygonSizes.size()); ++polygon)
        for (int i = 0; i < mesh.polygonSizes[polygon]; ++i, ++corner)
            for (int set = 0; set < 3; ++set)
                if (mesh.cornerUvs[set]) {
                    const auto found = records.find({mesh.corners[corner], polygon});
                    if (found != records.end()) found->second.uvs[set] = (*mesh.cornerUvs[set])[corner];
                }
    TriMesh made;
    std::vector<const Record*> kept;
    for (auto& [pair, record] : records) {
        std::size_t at = 0;
        while (at < kept.size() &&
               !(kept[at]->position == record.position && std::equal(record.uvs, record.uvs + 3, kept[at]->uvs)))
            ++at;
        if (at == kept.size()) kept.push_back(&record);
        record.index = static_cast<std::uint32_t>(at);
    }
    for (const Record* record : kept) made.positions.push_back(record->position);
    for (int set = 0; set < 3; ++set) {
        if (!mesh.cornerUvs[set]) continue;
        made.uvSets[set].emplace();
        for (const Record* record : kept) made.uvSets[set]->push_back(record->uvs[set]);
    }
    for (const auto& pairs : triangles)
        made.triangles.push_back({records[pairs[0]].index, records[pairs[1]].index, records[pairs[2]].index});
    return made;
}

/// Compares bit by bit, so that values that are no numbers can be compared, too.
std::string bits(const TriMesh& mesh) {
    std::ostringstream text;
    const auto put = [&](double v) { text << std::bit_cast<std::uint64_t>(v) << ' '; };
    for (const Vector3& p : mesh.positions) put(p.x), put(p.y), put(p.z);
    for (const auto& set : mesh.uvSets) {
        text << (set ? "\nset " : "\nnone ");
        if (set)
            for (const Uv& uv : *set) put(uv.u), put(uv.v);
    }
    for (const auto& t : mesh.triangles) text << '\n' << t[0] << ' ' << t[1] << ' ' << t[2];
    return text.str();
}

class XmlFile {
public:
    bool write(const TriMesh& mesh, const char* indent) {
        orvo::OutputFile file((folder_ / "mesh.xml").string(), "wb");
        const bool written = orvo::writeTriMeshXml(mesh, file, indent);
        EXPECT_TRUE(file.close());
        contents = folder_.read("mesh.xml");
        return written;
    }
    std::string contents;

private:
    orvo::test::TemporaryFolder folder_;
};

std::string printed(const char* format, auto... values) {
    char text[1200];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

} // namespace

// Catches a wrong conflict rule: a stored zero counts as not set, anything else that differs is a conflict.
TEST(TriMeshByPoints, TakesALaterValueForAZeroOnly) {
    PolygonMesh mesh = polygons({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}});
    //                     0          1       2       0            2       3
    mesh.cornerUvs[0] = {{0, -0.5}, {1, 0}, {1, 1}, {0.25, -0.5}, {1, 1}, {0, 1}};
    const auto made = orvo::triMeshByPoints(mesh);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->numVerts(), 4u);
    EXPECT_EQ(*made->uvSets[0], (TriMesh::UvSet{{0.25, -0.5}, {1, 0}, {1, 1}, {0, 1}}));
    EXPECT_FALSE(made->uvSets[1]);
    for (const Uv& other : {Uv{0, 0.25}, Uv{0, 0}, Uv{0, notANumber}}) {
        (*mesh.cornerUvs[0])[3] = other;
        EXPECT_FALSE(orvo::triMeshByPoints(mesh)) << other.u << ' ' << other.v;
    }
}

// Catches wrong splits, merges and orders. By hand: records in the order (0,0) (1,0) (1,1) (2,0) (2,1) (3,1), of which
// (1,1) has a UV of its own and point 3 lies on point 0 with the same UV.
TEST(TriMeshBySeams, SplitsAtSeamsAndMergesWhatIsEqual) {
    PolygonMesh mesh = polygons({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {9, 9, 9}}, {{0, 1, 2}, {2, 1, 3}});
    mesh.cornerUvs[0] = {{0.1, 0.1}, {0.9, 0.1}, {0.1, 0.9}, {0.1, 0.9}, {0.5, 0.1}, {0.1, 0.1}};
    const TriMesh made = orvo::triMeshBySeams(mesh);
    EXPECT_EQ(made.positions, (std::vector<Vector3>{{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
    EXPECT_EQ(*made.uvSets[0], (TriMesh::UvSet{{0.1, 0.1}, {0.9, 0.1}, {0.5, 0.1}, {0.1, 0.9}}));
    EXPECT_EQ(made.triangles, (std::vector<TriMesh::Triangle>{{0, 1, 3}, {3, 2, 0}}));
}

// Catches any difference of the hashed form from the plain one: collisions, negative zeros, values that are no numbers,
// corners that repeat a point, points of many polygons, sets that are absent.
TEST(TriMeshBySeams, AgreesWithThePlainForm) {
    std::mt19937 random(11);
    const double few[] = {0.0, -0.0, 0.5, 1.0, notANumber, std::numeric_limits<double>::infinity()};
    for (int round = 0; round < 200; ++round) {
        const auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
        std::vector<Vector3> points(static_cast<std::size_t>(3 + pick(12)));
        for (Vector3& p : points) p = {few[pick(6)], few[pick(3)], few[pick(2)]};
        std::vector<std::vector<int>> faces(static_cast<std::size_t>(1 + pick(20)));
        for (auto& face : faces)
            for (int i = 3 + pick(4); i > 0; --i) face.push_back(pick(static_cast<int>(points.size())));
        PolygonMesh mesh = polygons(points, faces);
        for (auto& set : mesh.cornerUvs) {
            if (pick(3) == 0) continue;
            set.emplace(mesh.corners.size());
            for (Uv& uv : *set) uv = {few[pick(5)], few[pick(3)]};
        }
        ASSERT_TRUE(bits(orvo::triMeshBySeams(mesh)) == bits(plainBySeams(mesh))) << "round " << round;
    }
}

// Catches indices that still count from the other mesh's start, and UV sets of two lengths.
TEST(TriMeshAppend, MovesIndicesAndKeepsCommonUvSets) {
    TriMesh mesh, triangle;
    triangle.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    triangle.triangles = {{0, 1, 2}};
    triangle.uvSets[0] = TriMesh::UvSet(3, Uv{0.5, 0.5});
    triangle.uvSets[2] = TriMesh::UvSet(3);
    mesh.append(triangle);
    EXPECT_EQ(bits(mesh), bits(triangle));
    triangle.uvSets[2].reset();
    mesh.append(triangle);
    EXPECT_EQ(mesh.triangles, (std::vector<TriMesh::Triangle>{{0, 1, 2}, {3, 4, 5}}));
    EXPECT_EQ(mesh.positions.size(), 6u);
    EXPECT_EQ(mesh.uvSets[0]->size(), 6u);
    EXPECT_FALSE(mesh.uvSets[2]);
    mesh.append(mesh); // itself
    EXPECT_EQ(mesh.triangles.back(), (TriMesh::Triangle{9, 10, 11}));
}

// Catches normals that are not unit vectors, not weighted by area, or not a number at points without one.
TEST(TriMeshNormals, AverageTheTrianglesByArea) {
    TriMesh mesh;
    // A triangle of area 1 that looks up +Z and one of area 2 that looks along +X meet at points 0 and 2.
    mesh.positions = {{0, 0, 0}, {-2, 0, 0}, {0, -1, 0}, {0, 0, -4}, {5, 5, 5}, {notANumber, 0, 0}};
    mesh.triangles = {{0, 1, 2}, {0, 2, 3}, {4, 4, 4}, {5, 5, 5}};
    mesh.append({{{1e200, 0, 0}, {0, 1e200, 0}, {0, 0, 0}}, {}, {{0, 1, 2}}}); // an area beyond all numbers
    const auto normals = mesh.vertexNormals();
    const double l = std::sqrt(5.0);
    const Vector3 expected[] = {{2 / l, 0, 1 / l}, {0, 0, 1}, {2 / l, 0, 1 / l}, {1, 0, 0},
                                {0, 1, 0},         {0, 1, 0}, {0, 1, 0}};
    for (int i = 0; i < 7; ++i) {
        EXPECT_NEAR(normals[i].x, expected[i].x, 1e-12) << i;
        EXPECT_NEAR(normals[i].y, expected[i].y, 1e-12) << i;
        EXPECT_NEAR(normals[i].z, expected[i].z, 1e-12) << i;
    }
}

TEST(TriMeshXml, WritesTheDocumentedBytes) {
    TriMesh mesh;
    mesh.positions = {{150, 0, -250}, {0, -0.00001, 1}, {-0.0, 100, 12345678}};
    mesh.uvSets[0] = {{0, 1}, {0.25, -0.125}, {1e-7, 0.9999999}};
    mesh.triangles = {{0, 1, 2}, {2, 1, 4294967295u}};
    XmlFile file;
    ASSERT_TRUE(file.write(mesh, "  "));
    EXPECT_EQ(file.contents, "  <TriMesh\n"
                             "  \tnumVerts = \"3\"\n"
                             "  \tnumTris = \"2\"\n"
                             "  \t>\n"
                             "  \t<Vert pos=\"1.500000 0.000000 -2.500000\" uv=\"0.000000 1.000000\" />\n"
                             "  \t<Vert pos=\"0.000000 -0.000000 0.010000\" uv=\"0.250000 -0.125000\" />\n"
                             "  \t<Vert pos=\"-0.000000 1.000000 123456.780000\" uv=\"0.000000 1.000000\" />\n"
                             "  \t<Tri indicies=\"0 1 2\" />\n"
                             "  \t<Tri indicies=\"2 1 -1\" />\n"
                             "  </TriMesh>\n");
    for (int missing = 0; missing < 3; ++missing) {
        TriMesh part = mesh;
        if (missing == 0) part.uvSets[0].reset();
        if (missing == 1) part.positions.clear();
        if (missing == 2) part.triangles.clear();
        EXPECT_FALSE(file.write(part, ""));
        EXPECT_EQ(file.contents, "");
    }
}

// Catches a digit that differs from the C library's "%f": ties, carries, neighbours of ties, tiny, huge and odd values.
TEST(TriMeshXml, NumbersAreThoseOfPrintf) {
    std::vector<double> values{notANumber,
                               -notANumber,
                               std::numeric_limits<double>::infinity(),
                               -0.0,
                               std::numeric_limits<double>::denorm_min(),
                               std::numeric_limits<double>::max(),
                               4294967294.9999999,
                               4294967295.0,
                               4294967296.5,
                               0.9999995,
                               0.99999949999999999};
    std::mt19937_64 random(5);
    for (int i = 0; i < 30000; ++i) values.push_back(std::bit_cast<double>(random()));
    for (int i = 0; i < 100000; ++i) // every size from 2^-40 to 2^40
        values.push_back(std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 80) - 93));
    for (int i = 0; i < 20000; ++i) {
        // Ties end in ...5 exactly: odd multiples of 2^-7 x 5^-6 are none, those of 2^-7 are.
        const double tie = static_cast<double>(random() % 100000) + static_cast<double>(random() % 128) / 128;
        const double half = (static_cast<double>(random() % (i % 2 ? 400 : 2000000000)) + 0.5) / 1e6;
        for (const double v : {tie, half}) {
            values.push_back(v);
            values.push_back(std::nextafter(v, 0.0));
            values.push_back(-std::nextafter(v, 1e9));
        }
    }
    if (values.size() % 2) values.push_back(1.0);
    TriMesh mesh;
    mesh.uvSets[0].emplace();
    for (std::size_t i = 0; i < values.size(); i += 2) mesh.uvSets[0]->push_back({values[i], values[i + 1]});
    mesh.positions.resize(mesh.uvSets[0]->size());
    mesh.triangles = {{0, 0, 0}};
    XmlFile file;
    ASSERT_TRUE(file.write(mesh, ""));
    std::istringstream lines(file.contents);
    std::string line;
    for (int i = 0; i < 4; ++i) std::getline(lines, line);
    for (const Uv& uv : *mesh.uvSets[0]) {
        std::getline(lines, line);
        // What is no number has no sign.
        const double u = std::isnan(uv.u) ? std::fabs(uv.u) : uv.u, v = std::isnan(uv.v) ? std::fabs(uv.v) : uv.v;
        ASSERT_EQ(line, printed("\t<Vert pos=\"0.000000 0.000000 0.000000\" uv=\"%f %f\" />", u, v))
            << std::hexfloat << uv.u << ' ' << uv.v;
    }
}
