#include "Matrix44.h"

namespace orvo {
namespace {

/// The minor of element (row, column), with the sign of its place.
double cofactor(const Matrix44& a, int row, int column) {
    constexpr double sign[4] = {1.0, -1.0, 1.0, -1.0};
    int r[3], c[3];
    for (int i = 0; i < 3; ++i) {
        r[i] = i < row ? i : i + 1;
        c[i] = i < column ? i : i + 1;
    }
    const auto e = [&](int i, int j) { return a.m[r[i]][c[j]]; };
    const double minor = e(0, 0) * (e(1, 1) * e(2, 2) - e(1, 2) * e(2, 1)) -
                         e(0, 1) * (e(1, 0) * e(2, 2) - e(1, 2) * e(2, 0)) +
                         e(0, 2) * (e(1, 0) * e(2, 1) - e(1, 1) * e(2, 0));
    return minor * (sign[row] * sign[column]);
}

template <class Element>
Matrix44 matrixOf(Element&& element) {
    Matrix44 result;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) result.m[r][c] = element(r, c);
    return result;
}

} // namespace

Matrix44 MatrixScale(const Matrix44& a, double s) {
    return matrixOf([&](int r, int c) { return a.m[r][c] * s; });
}

Matrix44 MatrixMultiply(const Matrix44& a, const Matrix44& b) {
    return matrixOf([&](int r, int c) {
        return a.m[r][0] * b.m[0][c] + a.m[r][1] * b.m[1][c] + a.m[r][2] * b.m[2][c] + a.m[r][3] * b.m[3][c];
    });
}

Matrix44 MatrixTranspose(const Matrix44& a) {
    return matrixOf([&](int r, int c) { return a.m[c][r]; });
}

double MatrixDeterminant(const Matrix44& a) {
    double determinant = 0.0;
    for (int c = 0; c < 4; ++c) determinant += a.m[0][c] * cofactor(a, 0, c);
    return determinant;
}

Matrix44 MatrixInverse(const Matrix44& a, double tolerance, bool* invertible) {
    const double determinant = MatrixDeterminant(a);
    const bool can = std::abs(determinant) > tolerance;
    if (invertible) *invertible = can;
    if (!can) return {};
    return matrixOf([&](int r, int c) { return cofactor(a, c, r) / determinant; });
}

} // namespace orvo
