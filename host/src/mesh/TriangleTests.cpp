#include "mesh/TriangleTests.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace host::mesh {

using Imath::V3d;

RayTest::RayTest(const V3d& origin, const V3d& direction) : origin_(origin) {
    const V3d size(std::abs(direction.x), std::abs(direction.y), std::abs(direction.z));
    z_ = size.x > size.y ? (size.x > size.z ? 0 : 2) : (size.y > size.z ? 1 : 2);
    x_ = (z_ + 1) % 3;
    y_ = (x_ + 1) % 3;
    alongZ_ = direction[z_];
    shearX_ = direction[x_] / alongZ_;
    shearY_ = direction[y_] / alongZ_;
}

bool RayTest::meets(const V3d& a, const V3d& b, const V3d& c, double tolerance, Hit& hit) const {
    const V3d corners[3] = {a - origin_, b - origin_, c - origin_};
    double x[3], y[3];
    for (int i = 0; i < 3; ++i) {
        x[i] = corners[i][x_] - shearX_ * corners[i][z_];
        y[i] = corners[i][y_] - shearY_ * corners[i][z_];
    }
    // Twice the areas that the ray cuts off; the same edge walked the other way gives exactly the negative.
    double w[3] = {x[2] * y[1] - y[2] * x[1], x[0] * y[2] - y[0] * x[2], x[1] * y[0] - y[1] * x[0]};
    double area = w[0] + w[1] + w[2];
    if (area < 0) {
        area = -area;
        for (double& weight : w) weight = -weight;
    }
    const double least = -tolerance * area;
    if (!(area > 0) || !(w[0] >= least && w[1] >= least && w[2] >= least)) return false;
    // Measured from the corner that counts most, so that corners and level triangles suffer no rounding.
    const int most = w[0] >= w[1] ? (w[0] >= w[2] ? 0 : 2) : (w[1] >= w[2] ? 1 : 2);
    const int second = (most + 1) % 3, third = (most + 2) % 3;
    const double base = corners[most][z_];
    const double z = base + (w[second] * (corners[second][z_] - base) + w[third] * (corners[third][z_] - base)) / area;
    hit.param = z / alongZ_;
    for (int i = 0; i < 3; ++i) hit.weights[i] = w[i] / area;
    return true;
}

namespace {

V3d nearestOnSegment(const V3d& p, V3d a, V3d b) {
    if (std::tie(b.x, b.y, b.z) < std::tie(a.x, a.y, a.z)) std::swap(a, b); // the same from both sides
    const V3d along = b - a;
    const double t = (p - a).dot(along) / along.dot(along);
    if (!(t > 0)) return a;
    return t < 1 ? a + along * t : b;
}

double squared(const V3d& v) { return v.dot(v); }

} // namespace

V3d nearestOnTriangle(const V3d& p, const V3d& a, const V3d& b, const V3d& c) {
    const V3d normal = (b - a).cross(c - a);
    const double length2 = squared(normal);
    const auto inside = [&](const V3d& from, const V3d& to) { return normal.dot((to - from).cross(p - from)) >= 0; };
    if (length2 > 0 && inside(a, b) && inside(b, c) && inside(c, a)) return p - normal * (normal.dot(p - a) / length2);
    V3d best = nearestOnSegment(p, a, b);
    for (const V3d& q : {nearestOnSegment(p, b, c), nearestOnSegment(p, c, a)})
        if (squared(q - p) < squared(best - p)) best = q;
    return best;
}

void weightsAt(const V3d& p, const V3d& a, const V3d& b, const V3d& c, double weights[3]) {
    const V3d normal = (b - a).cross(c - a);
    const double length2 = squared(normal);
    if (length2 > 0) {
        weights[0] = std::clamp(normal.dot((c - b).cross(p - b)) / length2, 0.0, 1.0);
        weights[1] = std::clamp(normal.dot((a - c).cross(p - c)) / length2, 0.0, 1.0 - weights[0]);
        weights[2] = 1 - weights[0] - weights[1];
        return;
    }
    const V3d corners[3] = {a, b, c};
    int from = 0;
    for (int i = 1; i < 3; ++i) // the longest edge is the whole triangle
        if (squared(corners[(i + 1) % 3] - corners[i]) > squared(corners[(from + 1) % 3] - corners[from])) from = i;
    const int to = (from + 1) % 3;
    const V3d along = corners[to] - corners[from];
    const double edge2 = squared(along);
    std::fill_n(weights, 3, 0.0);
    weights[to] = edge2 > 0 ? std::clamp((p - corners[from]).dot(along) / edge2, 0.0, 1.0) : 0;
    weights[from] = 1 - weights[to];
}

} // namespace host::mesh
