#pragma once

#include <algorithm>
#include <cmath>
#include <string>

/// What the plain C++ twins of the shaders share: vectors, and the direction that a pixel looks in.
namespace twin {

struct V3 {
    double x = 0, y = 0, z = 0;
};
inline V3 operator*(const V3& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
inline V3 operator*(const V3& a, const V3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline V3 operator+(const V3& a, const V3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline double dot(const V3& a, const V3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline V3 unit(const V3& a) { return a * (1.0 / std::sqrt(dot(a, a))); }
inline double saturate(double v) { return std::clamp(v, 0.0, 1.0); }
inline std::string triple(const V3& v) {
    return std::to_string(v.x) + " " + std::to_string(v.y) + " " + std::to_string(v.z);
}

/// A camera as a test sets it: rotation about X, then Y (degrees), no roll.
struct PixelCamera {
    V3 eye;
    double pitch = 0, yaw = 0;
    double focalLength = 35;
    int width = 96, height = 54;

    /// The unit direction through the centre of a pixel, counted from the top left. The film gate is 36 mm wide
    /// and as wide as the port.
    V3 direction(int column, int row) const {
        constexpr double degree = 3.14159265358979323846 / 180;
        const double h = 18 / focalLength, v = h * height / width;
        const V3 local{((column + 0.5) / width * 2 - 1) * h, (1 - (row + 0.5) / height * 2) * v, -1};
        const double cp = std::cos(pitch * degree), sp = std::sin(pitch * degree);
        const V3 tilted{local.x, local.y * cp - local.z * sp, local.y * sp + local.z * cp};
        const double cy = std::cos(yaw * degree), sy = std::sin(yaw * degree);
        return unit({tilted.x * cy + tilted.z * sy, tilted.y, -tilted.x * sy + tilted.z * cy});
    }
};

} // namespace twin
