#pragma once

#include <cmath>

namespace orvo {

/// Three doubles: a point, a direction or a colour.
struct Vector3 {
    double x = 0.0, y = 0.0, z = 0.0;
    bool operator==(const Vector3&) const = default;
};

inline Vector3 operator+(const Vector3& a, const Vector3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vector3 operator-(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vector3 operator*(const Vector3& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
inline double dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vector3 cross(const Vector3& a, const Vector3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(const Vector3& a) { return std::sqrt(dot(a, a)); }
/// The vector divided by its length; a zero vector gives the result of dividing by zero.
inline Vector3 normalised(const Vector3& a) {
    const double size = length(a);
    return {a.x / size, a.y / size, a.z / size};
}

} // namespace orvo
