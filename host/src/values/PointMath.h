#pragma once

#include <algorithm>
#include <cmath>

namespace host {

/// A row vector (x, y, z, w) times a matrix of the same precision, without division by the resulting w.
template <class Point, class Matrix>
Point rowTimes(const Point& p, const Matrix& m) {
    const auto column = [&](int c) {
        return p.x * m.matrix[0][c] + p.y * m.matrix[1][c] + p.z * m.matrix[2][c] + p.w * m.matrix[3][c];
    };
    return Point(column(0), column(1), column(2), column(3));
}

/// A matrix times a column vector (x, y, z, w).
template <class Point, class Matrix>
Point timesColumn(const Matrix& m, const Point& p) {
    const auto row = [&](int r) {
        return m.matrix[r][0] * p.x + m.matrix[r][1] * p.y + m.matrix[r][2] * p.z + m.matrix[r][3] * p.w;
    };
    return Point(row(0), row(1), row(2), row(3));
}

/// A row vector (x, y, z) times the upper left 3 by 3 part of a matrix.
template <class Vector, class Matrix>
Vector directionTimes(const Vector& v, const Matrix& m) {
    const auto column = [&](int c) { return v.x * m.matrix[0][c] + v.y * m.matrix[1][c] + v.z * m.matrix[2][c]; };
    return Vector(column(0), column(1), column(2));
}

template <class Vector, class Matrix>
Vector timesDirection(const Matrix& m, const Vector& v) {
    const auto row = [&](int r) { return m.matrix[r][0] * v.x + m.matrix[r][1] * v.y + m.matrix[r][2] * v.z; };
    return Vector(row(0), row(1), row(2));
}

/// The angle between vectors in radians. Unlike the arc cosine it stays accurate for nearly parallel vectors.
template <class Vector>
auto angleBetween(const Vector& a, const Vector& b) {
    return std::atan2((a ^ b).length(), a * b);
}

template <class Vector, class Number>
bool parallel(const Vector& a, const Vector& b, Number tolerance) {
    const Number size = a.length() * b.length();
    return size > Number(0) && std::abs(std::abs(a * b) / size - Number(1)) <= tolerance;
}

/// The three forms of a homogeneous point; a point at infinity (w = 0) stays as it is.
template <class Point>
Point& toCartesian(Point& p) {
    if (p.w != 0) p = Point(p.x / p.w, p.y / p.w, p.z / p.w, 1);
    return p;
}

template <class Point>
Point& toRational(Point& p) {
    if (p.w != 0) p = Point(p.x / p.w, p.y / p.w, p.z / p.w, p.w);
    return p;
}

template <class Point>
Point& toHomogeneous(Point& p) {
    if (p.w != 0) p = Point(p.x * p.w, p.y * p.w, p.z * p.w, p.w);
    return p;
}

} // namespace host
