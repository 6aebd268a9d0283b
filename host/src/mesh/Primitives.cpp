#include "Primitives.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <numbers>

namespace host::mesh {
namespace {

/// Grid sizes are computed in double, in which no product of subdivisions overflows.
bool checkSize(std::initializer_list<double> sizes, const Imath::V3d& axis, double vertices, std::string* error) {
    if (error) error->clear();
    const auto fail = [error](std::string text) {
        if (error) *error = std::move(text);
        return false;
    };
    for (const double size : sizes)
        if (!(size >= 0 && size <= std::numeric_limits<float>::max()))
            return fail(fmt::format("a primitive's size must be a number of at least 0, not {}", size));
    if (!std::isfinite(axis.x) || !std::isfinite(axis.y) || !std::isfinite(axis.z))
        return fail("a primitive's axis must be three finite numbers");
    if (vertices > kMostPrimitiveVertices)
        return fail(fmt::format("the subdivisions would give {:.0f} vertices; the most is {}", vertices,
                                kMostPrimitiveVertices));
    return true;
}

/// A mesh in the making.
struct Parts {
    std::vector<Imath::V3d> points;
    std::vector<int> counts, connects, uvIds;
    std::vector<float> u, v;

    void addUv(double s, double t) {
        u.push_back(static_cast<float>(s));
        v.push_back(static_cast<float>(t));
    }
    void addQuad(const std::array<int, 4>& vertices, const std::array<int, 4>& uvs) {
        counts.push_back(4);
        connects.insert(connects.end(), vertices.begin(), vertices.end());
        uvIds.insert(uvIds.end(), uvs.begin(), uvs.end());
    }
    void addTriangle(const std::array<int, 3>& vertices, const std::array<int, 3>& uvs) {
        counts.push_back(3);
        connects.insert(connects.end(), vertices.begin(), vertices.end());
        uvIds.insert(uvIds.end(), uvs.begin(), uvs.end());
    }
};

/// The shortest turn that takes +Y to the axis (Rodrigues' formula); to -Y, half a turn about X.
class Turn {
public:
    explicit Turn(const Imath::V3d& axis) {
        const double longest = std::max({std::abs(axis.x), std::abs(axis.y), std::abs(axis.z)});
        if (longest == 0) return;
        const Imath::V3d scaled = axis / longest; // so that no square under- or overflows
        to_ = scaled / std::sqrt(scaled.dot(scaled));
    }
    Float3 operator()(const Imath::V3d& p) const {
        Imath::V3d r;
        if (to_.y < -1 + 1e-12) {
            r = {p.x, -p.y, -p.z};
        } else {
            const Imath::V3d k = Imath::V3d(0, 1, 0).cross(to_);
            r = p * to_.y + k.cross(p) + k * (k.dot(p) / (1 + to_.y));
        }
        return {static_cast<float>(r.x), static_cast<float>(r.y), static_cast<float>(r.z)};
    }

private:
    Imath::V3d to_{0, 1, 0};
};

/// Makes the mesh; `isHard` is asked for each edge, with its two vertices.
template <class IsHard>
std::shared_ptr<const PolyMesh> finish(Parts parts, const Imath::V3d& axis, IsHard isHard) {
    std::vector<Float3> points(parts.points.size());
    std::transform(parts.points.begin(), parts.points.end(), points.begin(), Turn(axis));
    auto mesh =
        std::make_shared<PolyMesh>(PolyMesh::fromPolygons(std::move(points), parts.counts, std::move(parts.connects)));
    if (!mesh->setUvs(0, std::move(parts.u), std::move(parts.v)) || !mesh->assignUvs(0, parts.counts, parts.uvIds))
        return nullptr;
    std::vector<bool> smooth;
    smooth.reserve(mesh->edges().size());
    for (const Edge& e : mesh->edges()) smooth.push_back(!isHard(e.v1, e.v2));
    mesh->setEdgesSmooth(smooth);
    return mesh;
}

/// In how many coordinates both points lie at the same end of a box around the origin.
int sharedEnds(const Imath::V3d& a, const Imath::V3d& b, const Imath::V3d& half) {
    return (a.x == b.x && std::abs(a.x) == half.x) + (a.y == b.y && std::abs(a.y) == half.y) +
           (a.z == b.z && std::abs(a.z) == half.z);
}

/// From -size / 2 to size / 2 in `steps` steps, meeting both ends exactly.
double along(double size, int step, int steps) {
    return step == steps ? size / 2 : size * (static_cast<double>(step) / steps) - size / 2;
}

/// A ring of a body of revolution about Y.
struct Ring {
    double radius = 0, y = 0;
};

/// Adds rings of vertices, each starting one step after +X and turning towards -Z, then the centres if any.
void addRings(Parts& parts, const std::vector<Ring>& rings, int around) {
    std::vector<double> cosine(around), sine(around);
    for (int i = 0; i < around; ++i) {
        const double angle = 2 * std::numbers::pi * ((i + 1) % around) / around;
        cosine[i] = std::cos(angle);
        sine[i] = std::sin(angle);
    }
    for (const Ring& ring : rings)
        for (int i = 0; i < around; ++i)
            parts.points.emplace_back(ring.radius * cosine[i], ring.y, -ring.radius * sine[i]);
}

/// Adds the quads between successive rings. `uvId(strip, upper, column)` gives the UV id of a corner: strip s lies
/// between rings s and s + 1, columns run from 0 to `around`, where vertices repeat but UVs need not.
template <class UvId>
void addStrips(Parts& parts, int rings, int around, UvId uvId) {
    for (int r = 0; r + 1 < rings; ++r)
        for (int i = 0; i < around; ++i) {
            const int low = r * around, high = low + around, next = (i + 1) % around;
            parts.addQuad({low + i, low + next, high + next, high + i},
                          {uvId(r, 0, i), uvId(r, 0, i + 1), uvId(r, 1, i + 1), uvId(r, 1, i)});
        }
}

} // namespace

std::shared_ptr<const PolyMesh> polyPlane(const PlaneOptions& o, std::string* error) {
    const int nx = std::max(o.subdivisionsX, 1), ny = std::max(o.subdivisionsY, 1);
    if (!checkSize({o.width, o.height}, o.axis, (nx + 1.0) * (ny + 1.0), error)) return nullptr;
    Parts parts;
    for (int j = 0; j <= ny; ++j)
        for (int i = 0; i <= nx; ++i) {
            parts.points.emplace_back(along(o.width, i, nx), 0, -along(o.height, j, ny));
            parts.addUv(static_cast<double>(i) / nx, static_cast<double>(j) / ny);
        }
    for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i) {
            const int low = j * (nx + 1) + i, high = low + nx + 1;
            parts.addQuad({low, low + 1, high + 1, high}, {low, low + 1, high + 1, high});
        }
    const auto isHard = [nx, ny](int a, int b) { // both at the same side of the border
        const int ax = a % (nx + 1), ay = a / (nx + 1), bx = b % (nx + 1), by = b / (nx + 1);
        return (ax == bx && (ax == 0 || ax == nx)) || (ay == by && (ay == 0 || ay == ny));
    };
    return finish(std::move(parts), o.axis, isHard);
}

std::shared_ptr<const PolyMesh> polyCube(const CubeOptions& o, std::string* error) {
    const int nx = std::max(o.subdivisionsX, 1), ny = std::max(o.subdivisionsY, 1), nz = std::max(o.subdivisionsZ, 1);
    const double rowsWanted = 2.0 * ny + 2.0 * nz;
    if (!checkSize({o.width, o.height, o.depth}, o.axis, rowsWanted * (nx + 1.0) + 2 * (ny - 1.0) * (nz - 1.0), error))
        return nullptr;
    const int rows = 2 * (ny + nz), columns = nx + 1;
    Parts parts;
    // The band around X. Its UVs do not close: there is one row more of them, over four quarters of the V range.
    for (int r = 0; r <= rows; ++r) {
        double y = -o.height / 2, z = o.depth / 2, v = 0;
        if (r < ny) {
            y = along(o.height, r, ny);
            v = 0.25 * r / ny;
        } else if (r < ny + nz) {
            y = o.height / 2;
            z = -along(o.depth, r - ny, nz);
            v = 0.25 + 0.25 * (r - ny) / nz;
        } else if (r < 2 * ny + nz) {
            y = -along(o.height, r - ny - nz, ny);
            z = -o.depth / 2;
            v = 0.5 + 0.25 * (r - ny - nz) / ny;
        } else {
            z = along(o.depth, r - 2 * ny - nz, nz);
            v = 0.75 + 0.25 * (r - 2 * ny - nz) / nz;
        }
        for (int i = 0; i <= nx; ++i) {
            if (r < rows) parts.points.emplace_back(along(o.width, i, nx), y, z);
            parts.addUv(0.375 + 0.25 * i / nx, v);
        }
    }
    for (int r = 0; r < rows; ++r)
        for (int i = 0; i < nx; ++i) {
            const int low = r * columns + i, high = (r + 1) % rows * columns + i, highUv = low + columns;
            parts.addQuad({low, low + 1, high + 1, high}, {low, low + 1, highUv + 1, highUv});
        }
    // The right and the left side: a counts up, b from front to back. The border is the band's.
    for (const bool right : {true, false}) {
        const int inner = static_cast<int>(parts.points.size()), innerUv = static_cast<int>(parts.u.size());
        const int column = right ? nx : 0;
        const double x = right ? o.width / 2 : -o.width / 2;
        for (int a = 1; a < ny; ++a)
            for (int b = 1; b < nz; ++b) parts.points.emplace_back(x, along(o.height, a, ny), -along(o.depth, b, nz));
        const auto vertex = [&](int a, int b) {
            int row = 0;
            if (b == 0)
                row = a;
            else if (a == ny)
                row = ny + b;
            else if (b == nz)
                row = 2 * ny + nz - a;
            else if (a == 0)
                row = (2 * ny + 2 * nz - b) % rows;
            else
                return inner + (a - 1) * (nz - 1) + b - 1;
            return row * columns + column;
        };
        // UV columns run along +U: on the right away from the front, on the left towards it, which it joins.
        for (int a = 0; a <= ny; ++a)
            for (int k = 0; k < nz; ++k)
                parts.addUv(right ? 0.625 + 0.25 * (k + 1) / nz : 0.125 + 0.25 * k / nz, 0.25 * a / ny);
        const auto uv = [&](int a, int b) {
            if (b == 0) return a * columns + column;
            return innerUv + a * nz + (right ? b - 1 : nz - b);
        };
        for (int a = 0; a < ny; ++a)
            for (int k = 0; k < nz; ++k) {
                const int b = right ? k : nz - k, next = right ? k + 1 : nz - k - 1;
                parts.addQuad({vertex(a, b), vertex(a, next), vertex(a + 1, next), vertex(a + 1, b)},
                              {uv(a, b), uv(a, next), uv(a + 1, next), uv(a + 1, b)});
            }
    }
    const std::vector<Imath::V3d> corners = parts.points;
    const Imath::V3d half(o.width / 2, o.height / 2, o.depth / 2);
    return finish(std::move(parts), o.axis,
                  [&](int a, int b) { return sharedEnds(corners[a], corners[b], half) >= 2; });
}

std::shared_ptr<const PolyMesh> polySphere(const SphereOptions& o, std::string* error) {
    const int around = std::max(o.subdivisionsAxis, 3), up = std::max(o.subdivisionsHeight, 3);
    if (!checkSize({o.radius}, o.axis, static_cast<double>(around) * (up - 1.0) + 2, error)) return nullptr;
    Parts parts;
    std::vector<Ring> rings;
    for (int j = 1; j < up; ++j) {
        const double angle = std::numbers::pi * j / up;
        rings.push_back({o.radius * std::sin(angle), -o.radius * std::cos(angle)});
        for (int i = 0; i <= around; ++i) parts.addUv(static_cast<double>(i) / around, static_cast<double>(j) / up);
    }
    addRings(parts, rings, around);
    const int south = static_cast<int>(parts.points.size()), north = south + 1, top = south - around;
    parts.points.emplace_back(0, -o.radius, 0);
    parts.points.emplace_back(0, o.radius, 0);
    const int southUv = static_cast<int>(parts.u.size()), northUv = southUv + around;
    for (const double v : {0.0, 1.0})
        for (int i = 0; i < around; ++i) parts.addUv((i + 0.5) / around, v);
    addStrips(parts, up - 1, around, [&](int strip, int upper, int i) { return (strip + upper) * (around + 1) + i; });
    for (int i = 0; i < around; ++i) parts.addTriangle({(i + 1) % around, i, south}, {i + 1, i, southUv + i});
    const int topUv = (up - 2) * (around + 1);
    for (int i = 0; i < around; ++i)
        parts.addTriangle({top + i, top + (i + 1) % around, north}, {topUv + i, topUv + i + 1, northUv + i});
    return finish(std::move(parts), o.axis, [](int, int) { return false; });
}

std::shared_ptr<const PolyMesh> polyCylinder(const CylinderOptions& o, std::string* error) {
    const int around = std::max(o.subdivisionsAxis, 3), up = std::max(o.subdivisionsHeight, 1);
    const bool centres = o.subdivisionsCaps > 0;
    const int caps = std::max(o.subdivisionsCaps, 1); // rings of UVs of a cap; its outermost ring is the side's
    if (!checkSize({o.radius, o.height}, o.axis, around * (up + 1.0 + 2 * (caps - 1.0)) + 2, error)) return nullptr;

    // The UV layout: the side a band across the middle, the caps discs below and above it.
    constexpr double kDisc = 0.15625, kLow = 0.3125, kHigh = 1 - kLow;
    Parts parts;
    std::vector<Ring> rings;
    for (int k = 1; k < caps; ++k) rings.push_back({o.radius * k / caps, -o.height / 2});
    for (int j = 0; j <= up; ++j) rings.push_back({o.radius, along(o.height, j, up)});
    for (int k = caps - 1; k >= 1; --k) rings.push_back({o.radius * k / caps, o.height / 2});
    addRings(parts, rings, around);
    const int numRings = static_cast<int>(rings.size()), lowRim = caps - 1, highRim = caps - 1 + up;

    const auto addDiscUvs = [&](int k, double v, double sign) {
        for (int i = 0; i < around; ++i) {
            const double angle = 2 * std::numbers::pi * ((i + 1) % around) / around, r = kDisc * k / caps;
            parts.addUv(0.5 + r * std::cos(angle), v + sign * r * std::sin(angle));
        }
    };
    for (int k = 1; k <= caps; ++k) addDiscUvs(k, kDisc, -1);
    const int sideUv = static_cast<int>(parts.u.size());
    for (int j = 0; j <= up; ++j)
        for (int i = 0; i <= around; ++i) parts.addUv(0.375 + 0.25 * i / around, kLow + (kHigh - kLow) * j / up);
    const int topUv = static_cast<int>(parts.u.size());
    for (int k = caps; k >= 1; --k) addDiscUvs(k, 1 - kDisc, 1);
    const int centreUv = static_cast<int>(parts.u.size());

    const auto uvId = [=](int strip, int upper, int i) {
        const int ring = strip + upper;
        if (strip < lowRim) return ring * around + i % around;
        if (strip < highRim) return sideUv + (ring - lowRim) * (around + 1) + i;
        return topUv + (ring - highRim) * around + i % around;
    };
    addStrips(parts, numRings, around, uvId);
    const int top = (numRings - 1) * around;
    if (centres) {
        const int low = static_cast<int>(parts.points.size());
        parts.points.emplace_back(0, -o.height / 2, 0);
        parts.points.emplace_back(0, o.height / 2, 0);
        parts.addUv(0.5, kDisc);
        parts.addUv(0.5, 1 - kDisc);
        for (int i = 0; i < around; ++i) parts.addTriangle({(i + 1) % around, i, low}, {(i + 1) % around, i, centreUv});
        for (int i = 0; i < around; ++i)
            parts.addTriangle({top + i, top + (i + 1) % around, low + 1},
                              {uvId(numRings - 1, 0, i), uvId(numRings - 1, 0, i + 1), centreUv + 1});
    } else {
        parts.counts.insert(parts.counts.end(), 2, around);
        for (int i = 0; i < around; ++i) {
            const int corner = (around - i) % around; // the bottom is seen from below
            parts.connects.push_back(corner);
            parts.uvIds.push_back(corner);
        }
        for (int i = 0; i < around; ++i) {
            parts.connects.push_back(top + i);
            parts.uvIds.push_back(topUv + i);
        }
    }
    return finish(std::move(parts), o.axis, [=](int a, int b) {
        const int ring = a / around;
        return ring == b / around && (ring == lowRim || ring == highRim);
    });
}

} // namespace host::mesh
