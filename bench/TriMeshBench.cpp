// Triangle meshes, each beside a plain version of the same work in the same run:
//   the XML of 1,000,000 triangles; plain: fprintf
//   vertices split along seams, with a seam at every edge, at sizes that double; plain: ordered maps of pairs and
//   vertices
#include "Common/TriMesh.h"
#include "Common/TriMeshBuild.h"
#include "Common/TriMeshXml.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <tuple>

namespace {

namespace fs = std::filesystem;
using orvo::PolygonMesh;
using orvo::TriMesh;

/// A file of the run's own, removed at its end.
class BenchFile {
public:
    explicit BenchFile(const char* name)
        : path_(fs::temp_directory_path() / ("orvosky-bench-" + std::to_string(getpid()) + name)) {}
    ~BenchFile() { fs::remove(path_); }
    std::string path() const { return path_.string(); }
    std::string contents() const {
        std::ostringstream text;
        text << std::ifstream(path_, std::ios::binary).rdbuf();
        return text.str();
    }

private:
    fs::path path_;
};

/// A wavy field of cells x cells quads as two triangles each.
const TriMesh& field(int cells) {
    static std::map<int, TriMesh> made;
    TriMesh& mesh = made[cells];
    if (!mesh.positions.empty()) return mesh;
    mesh.uvSets[0].emplace();
    for (int z = 0; z <= cells; ++z) {
        for (int x = 0; x <= cells; ++x) {
            mesh.positions.push_back({x * 123.4, std::sin(x * 0.7) * std::cos(z * 0.3) * 5000, z * -98.7});
            mesh.uvSets[0]->push_back({static_cast<double>(x) / cells, static_cast<double>(z) / cells});
        }
    }
    const auto at = [&](int x, int z) { return static_cast<std::uint32_t>(z * (cells + 1) + x); };
    for (int z = 0; z < cells; ++z) {
        for (int x = 0; x < cells; ++x) {
            mesh.triangles.push_back({at(x, z), at(x + 1, z), at(x + 1, z + 1)});
            mesh.triangles.push_back({at(x, z), at(x + 1, z + 1), at(x, z + 1)});
        }
    }
    return mesh;
}

constexpr int millionCells = 707; // 999,698 triangles

void printMesh(const TriMesh& mesh, const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return;
    std::fprintf(file, "\t<TriMesh\n\t\tnumVerts = \"%d\"\n\t\tnumTris = \"%d\"\n\t\t>\n",
                 static_cast<int>(mesh.numVerts()), static_cast<int>(mesh.numTris()));
    for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
        const auto& p = mesh.positions[i];
        const auto& uv = (*mesh.uvSets[0])[i];
        std::fprintf(file, "%s\t<Vert", "\t");
        std::fprintf(file, " pos=\"%f %f %f\"", p.x / 100, p.y / 100, p.z / 100);
        std::fprintf(file, " uv=\"%f %f\"", uv.u, uv.v);
        std::fprintf(file, " />\n");
    }
    for (const auto& t : mesh.triangles) {
        std::fprintf(file, "%s\t<Tri", "\t");
        std::fprintf(file, " indicies=\"%d %d %d\"", static_cast<int>(t[0]), static_cast<int>(t[1]),
                     static_cast<int>(t[2]));
        std::fprintf(file, " />\n");
    }
    std::fprintf(file, "\t</TriMesh>\n");
    std::fclose(file);
}

void XmlPlain(benchmark::State& state) {
    const TriMesh& mesh = field(millionCells);
    const BenchFile file("-plain.xml");
    for (auto _ : state) printMesh(mesh, file.path());
}
BENCHMARK(XmlPlain)->Unit(benchmark::kMillisecond);

void Xml(benchmark::State& state) {
    const TriMesh& mesh = field(millionCells);
    const BenchFile file(".xml"), plain("-compared.xml");
    const auto write = [&] {
        orvo::OutputFile out(file.path(), "wb");
        return orvo::writeTriMeshXml(mesh, out, "\t") && out.close();
    };
    printMesh(mesh, plain.path());
    if (!write() || file.contents() != plain.contents()) {
        state.SkipWithError("the bytes differ from fprintf's");
        return;
    }
    for (auto _ : state)
        if (!write()) state.SkipWithError("the file could not be written");
}
BENCHMARK(Xml)->Unit(benchmark::kMillisecond);

/// A field of quads, each with UVs of its own at all corners.
PolygonMesh seams(int cells) {
    const TriMesh& mesh = field(cells);
    PolygonMesh made;
    made.points = mesh.positions;
    made.triangles = mesh.triangles;
    made.cornerUvs[0].emplace();
    for (std::size_t t = 0; t < mesh.triangles.size(); t += 2) {
        made.polygonSizes.push_back(4);
        const auto &a = mesh.triangles[t], &b = mesh.triangles[t + 1];
        for (const std::uint32_t point : {a[0], a[1], a[2], b[2]}) {
            made.corners.push_back(static_cast<int>(point));
            made.cornerUvs[0]->push_back({static_cast<double>(t), static_cast<double>(point)});
        }
    }
    return made;
}

void Seams(benchmark::State& state) {
    const PolygonMesh mesh = seams(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(orvo::triMeshBySeams(mesh).positions.data());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(mesh.triangles.size()));
}
BENCHMARK(Seams)->RangeMultiplier(2)->Range(64, 1024)->Unit(benchmark::kMillisecond);

void SeamsPlain(benchmark::State& state) {
    const PolygonMesh mesh = seams(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        using Key = std::tuple<double, double, double, double, double>;
        std::map<std::pair<int, int>, Key> records;
        std::size_t corner = 0;
        for (int polygon = 0; polygon < static_cast<int>(mesh.polygonSizes.size()); ++polygon) {
            for (int i = 0; i < mesh.polygonSizes[polygon]; ++i, ++corner) {
                const auto& p = mesh.points[mesh.corners[corner]];
                const auto& uv = (*mesh.cornerUvs[0])[corner];
                records[{mesh.corners[corner], polygon}] = {p.x, p.y, p.z, uv.u, uv.v};
            }
        }
        std::map<Key, std::uint32_t> vertices;
        std::map<std::pair<int, int>, std::uint32_t> indices;
        for (const auto& [pair, key] : records)
            indices[pair] = vertices.try_emplace(key, static_cast<std::uint32_t>(vertices.size())).first->second;
        std::vector<TriMesh::Triangle> triangles = mesh.triangles;
        for (std::size_t t = 0; t < triangles.size(); ++t)
            for (auto& index : triangles[t]) index = indices[{static_cast<int>(index), static_cast<int>(t / 2)}];
        benchmark::DoNotOptimize(triangles.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(mesh.triangles.size()));
}
BENCHMARK(SeamsPlain)->RangeMultiplier(4)->Range(64, 512)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
