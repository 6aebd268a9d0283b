#pragma once

#include <ImathMatrix.h>

#include <algorithm>
#include <cmath>

namespace host {

/// What the double and the single precision matrix classes have in common; `Matrix` has a public matrix[4][4].
template <class Matrix, class Number>
struct MatrixMath {
    using Library = Imath::Matrix44<Number>;

    static Library toLibrary(const Matrix& m) { return Library(m.matrix); }

    template <class Source>
    static void copy(Matrix& m, const Source& source) {
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) m.matrix[r][c] = static_cast<Number>(source[r][c]);
    }

    template <class Target>
    static void copyTo(const Matrix& m, Target (*target)[4]) {
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) target[r][c] = static_cast<Target>(m.matrix[r][c]);
    }

    static Matrix fromLibrary(const Library& source) {
        Matrix m;
        copy(m, source.x);
        return m;
    }

    template <class Operation>
    static Matrix combined(const Matrix& a, const Matrix& b, Operation operation) {
        Matrix m;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) m.matrix[r][c] = operation(a.matrix[r][c], b.matrix[r][c]);
        return m;
    }

    static Matrix scaled(const Matrix& a, Number factor) {
        return combined(a, a, [factor](Number x, Number) { return x * factor; });
    }

    static Matrix product(const Matrix& left, const Matrix& right) {
        return fromLibrary(toLibrary(left) * toLibrary(right));
    }

    static bool equal(const Matrix& a, const Matrix& b) { return toLibrary(a) == toLibrary(b); }

    static bool equivalent(const Matrix& a, const Matrix& b, Number tolerance) {
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                if (!(std::abs(a.matrix[r][c] - b.matrix[r][c]) <= tolerance)) return false;
        return true;
    }

    static Matrix inverse(const Matrix& m) {
        const Matrix result = fromLibrary(toLibrary(m).inverse());
        for (const auto& row : result.matrix)
            for (const Number x : row)
                if (!std::isfinite(x)) return Matrix();
        return result;
    }

    static Matrix adjoint(const Matrix& m) {
        const Library source = toLibrary(m);
        Matrix result;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                result.matrix[c][r] = source.minorOf(r, c) * static_cast<Number>((r + c) % 2 ? -1 : 1);
        return result;
    }

    static Matrix homogenized(const Matrix& m) {
        const Number w = m.matrix[3][3];
        return w == Number(0) ? m : combined(m, m, [w](Number x, Number) { return x / w; });
    }

    static Number det4x4(const Matrix& m) { return toLibrary(m).determinant(); }
    static Number det3x3(const Matrix& m) { return toLibrary(m).fastMinor(0, 1, 2, 0, 1, 2); }
};

} // namespace host
