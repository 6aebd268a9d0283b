#pragma once

#include "Vector3.h"

namespace orvo {

/// 4 by 4 doubles by rows, for row vectors: the translation stands in row 3, as in the host.
struct Matrix44 {
    double m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    bool operator==(const Matrix44&) const = default;
};

/// The point (w = 1, no division) mapped by the matrix.
inline Vector3 MatrixTransformPoint(const Matrix44& a, const Vector3& p) {
    return {p.x * a.m[0][0] + p.y * a.m[1][0] + p.z * a.m[2][0] + a.m[3][0],
            p.x * a.m[0][1] + p.y * a.m[1][1] + p.z * a.m[2][1] + a.m[3][1],
            p.x * a.m[0][2] + p.y * a.m[1][2] + p.z * a.m[2][2] + a.m[3][2]};
}

/// The direction mapped by the matrix, without its translation.
inline Vector3 transformDirection(const Matrix44& a, const Vector3& d) {
    return {d.x * a.m[0][0] + d.y * a.m[1][0] + d.z * a.m[2][0], d.x * a.m[0][1] + d.y * a.m[1][1] + d.z * a.m[2][1],
            d.x * a.m[0][2] + d.y * a.m[1][2] + d.z * a.m[2][2]};
}

/// Every element multiplied by the scalar.
Matrix44 MatrixScale(const Matrix44& a, double s);
/// Exact comparison of all 16 elements.
inline bool MatrixEqual(const Matrix44& a, const Matrix44& b) { return a == b; }
inline bool MatrixNotEqual(const Matrix44& a, const Matrix44& b) { return !(a == b); }
/// First a, then b, as row vectors are mapped: a x b.
Matrix44 MatrixMultiply(const Matrix44& a, const Matrix44& b);
Matrix44 MatrixTranspose(const Matrix44& a);
/// By cofactor expansion along the first row.
double MatrixDeterminant(const Matrix44& a);
/// The adjugate over the determinant. A determinant that is not greater than the tolerance in size, or is not a
/// number, gives the identity and clears the flag.
Matrix44 MatrixInverse(const Matrix44& a, double tolerance, bool* invertible = nullptr);
/// Moves by the vector.
inline Matrix44 translationMatrix(const Vector3& t) {
    return {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {t.x, t.y, t.z, 1}}};
}

} // namespace orvo
