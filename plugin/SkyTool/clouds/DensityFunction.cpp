#include "DensityFunction.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace orvo {
namespace {

/// Perlin's reference permutation.
constexpr std::uint8_t reference[256] = {
    151, 160, 137, 91,  90,  15,  131, 13,  201, 95,  96,  53,  194, 233, 7,   225, 140, 36,  103, 30,  69,  142,
    8,   99,  37,  240, 21,  10,  23,  190, 6,   148, 247, 120, 234, 75,  0,   26,  197, 62,  94,  252, 219, 203,
    117, 35,  11,  32,  57,  177, 33,  88,  237, 149, 56,  87,  174, 20,  125, 136, 171, 168, 68,  175, 74,  165,
    71,  134, 139, 48,  27,  166, 77,  146, 158, 231, 83,  111, 229, 122, 60,  211, 133, 230, 220, 105, 92,  41,
    55,  46,  245, 40,  244, 102, 143, 54,  65,  25,  63,  161, 1,   216, 80,  73,  209, 76,  132, 187, 208, 89,
    18,  169, 200, 196, 135, 130, 116, 188, 159, 86,  164, 100, 109, 198, 173, 186, 3,   64,  52,  217, 226, 250,
    124, 123, 5,   202, 38,  147, 118, 126, 255, 82,  85,  212, 207, 206, 59,  227, 47,  16,  58,  17,  182, 189,
    28,  42,  223, 183, 170, 213, 119, 248, 152, 2,   44,  154, 163, 70,  221, 153, 101, 155, 167, 43,  172, 9,
    129, 22,  39,  253, 19,  98,  108, 110, 79,  113, 224, 232, 178, 185, 112, 104, 218, 246, 97,  228, 251, 34,
    242, 193, 238, 210, 144, 12,  191, 179, 162, 241, 81,  51,  145, 235, 249, 14,  239, 107, 49,  192, 214, 31,
    181, 199, 106, 157, 184, 84,  204, 176, 115, 121, 50,  45,  127, 4,   150, 254, 138, 236, 205, 93,  222, 114,
    67,  29,  24,  72,  243, 141, 128, 195, 78,  66,  215, 61,  156, 180};

/// The permutation, repeated.
int hashed(int index) { return reference[index & 255]; }

/// The cell below a coordinate: the nearest integer to just less than a half below it, read from the lower half of
/// the bits of a double whose unit is 1.
std::int32_t cellOf(double x) {
    const double shifted = (x - 0.499999999986) + 6755399441055744.0;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(shifted)));
}

double gradient(int hash, double x, double y, double z) {
    const int h = hash & 15;
    const double u = h < 8 ? x : y, v = h < 4 ? y : h == 12 || h == 14 ? x : z;
    return (h & 1 ? -u : u) + (h & 2 ? -v : v);
}

double fade(double t) { return t * t * t * (t * (t * 6.0 - 15.0) + 10.0); }

double blend(double t, double a, double b) { return (1.0 - t) * a + t * b; }

} // namespace

double gradientNoise(const Vector3& p) {
    const std::int32_t cx = cellOf(p.x), cy = cellOf(p.y), cz = cellOf(p.z);
    const int X = cx & 255, Y = cy & 255, Z = cz & 255;
    const Vector3 f{p.x - cx, p.y - cy, p.z - cz};
    const auto corner = [&](int dx, int dy, int dz) {
        const int hash = hashed(hashed(hashed(X + dx) + Y + dy) + Z + dz);
        return gradient(hash, f.x - dx, f.y - dy, f.z - dz);
    };
    const double u = fade(f.x), v = fade(f.y), w = fade(f.z);
    const auto layer = [&](int dz) {
        return blend(v, blend(u, corner(0, 0, dz), corner(1, 0, dz)), blend(u, corner(0, 1, dz), corner(1, 1, dz)));
    };
    return blend(w, layer(0), layer(1));
}

double cellularNoise(const Vector3& p) {
    const std::int32_t cx = cellOf(p.x), cy = cellOf(p.y), cz = cellOf(p.z);
    const int X = cx & 255, Y = cy & 255, Z = cz & 255;
    const Vector3 f{p.x - cx, p.y - cy, p.z - cz};
    double best = 1e50;
    for (int dx = -1; dx <= 1; ++dx)
        for (int dy = -1; dy <= 1; ++dy)
            for (int dz = -1; dz <= 1; ++dz) {
                const int i = (X + dx) & 255, j = (Y + dy) & 255, k = (Z + dz) & 255;
                const int a = hashed(hashed(hashed(i) + j) + k), b = hashed(hashed(hashed(i + j) + j) + k);
                const int c = hashed(hashed(hashed(hashed(i) + j) + k) + i);
                const Vector3 feature{dx + a / 255.0, dy + b / 255.0, dz + c / 255.0}, gap = f - feature;
                best = std::min(best, dot(gap, gap));
            }
    return best * 0.33333333333;
}

MonoFractalDensity::MonoFractalDensity(std::uint32_t noiseType, double scale, double offset, double gain,
                                       std::int32_t octaves, double roughness)
    : noiseType_(noiseType), invScale_(1.0 / scale), octaves_(std::max(octaves, 1)), offset_(offset), gain_(gain) {
    weights_.reserve(static_cast<std::size_t>(octaves_));
    for (std::int32_t i = 0; i < octaves_; ++i)
        weights_.push_back(std::pow(2.217, -i * (1.0 / (0.8 * roughness + 0.2) - 1.0)));
}

double MonoFractalDensity::Evaluate(Vector3 p) const {
    constexpr double c = 0.540302305, s = 0.841470984; // of one radian
    p = p * invScale_;
    double sum = 0.0;
    for (std::int32_t i = 0; i < octaves_; ++i) {
        if (i > 0) {
            p = p * 2.217;
            p = {p.x * c + p.y * s, -p.x * s + p.y * c, p.z};
            p = {p.x, p.y * c + p.z * s, -p.y * s + p.z * c};
        }
        sum += (noiseType_ == cellularNoise ? orvo::cellularNoise(p) : gradientNoise(p)) *
               weights_[static_cast<std::size_t>(i)];
    }
    return sum * gain_ + offset_;
}

double SoftObjectVolumeDensity::Evaluate(Vector3 point) const {
    double sum = 0.0;
    for (const Matrix44& matrix : matrices_) {
        const Vector3 q = MatrixTransformPoint(matrix, point);
        const double squared = dot(q, q);
        if (!(squared <= radius_ * radius_)) continue;
        // Objects of radius 1 need no square root.
        double part = squared;
        if (radius_ != 1.0) {
            const double u = std::sqrt(squared) / radius_;
            part = u * u;
        }
        sum += (1.0 - part) * (1.0 - part);
    }
    return sum < 1.0 ? sum : 1.0;
}

} // namespace orvo
