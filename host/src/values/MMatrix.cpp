#include <maya/MMatrix.h>

#include "base/NumberText.h"
#include "values/MatrixMath.h"

using Math = host::MatrixMath<MMatrix, double>;

MMatrix::MMatrix() { setToIdentity(); }
MMatrix::MMatrix(const MMatrix& src) { Math::copy(*this, src.matrix); }
MMatrix::MMatrix(const double src_matrix[4][4]) { Math::copy(*this, src_matrix); }
MMatrix::MMatrix(const float src_matrix[4][4]) { Math::copy(*this, src_matrix); }

MMatrix& MMatrix::operator=(const MMatrix& src) {
    Math::copy(*this, src.matrix);
    return *this;
}

MStatus MMatrix::get(double dest[4][4]) const {
    Math::copyTo(*this, dest);
    return MStatus::kSuccess;
}

MStatus MMatrix::get(float dest[4][4]) const {
    Math::copyTo(*this, dest);
    return MStatus::kSuccess;
}

MMatrix MMatrix::transpose() const { return Math::fromLibrary(Math::toLibrary(*this).transposed()); }

MMatrix& MMatrix::setToIdentity() {
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) matrix[r][c] = static_cast<double>(r == c);
    return *this;
}

MMatrix& MMatrix::setToProduct(const MMatrix& left, const MMatrix& right) { return *this = Math::product(left, right); }

MMatrix MMatrix::operator+(const MMatrix& right) const {
    return Math::combined(*this, right, [](auto a, auto b) { return a + b; });
}

MMatrix MMatrix::operator-(const MMatrix& right) const {
    return Math::combined(*this, right, [](auto a, auto b) { return a - b; });
}

MMatrix& MMatrix::operator+=(const MMatrix& right) { return *this = *this + right; }
MMatrix& MMatrix::operator-=(const MMatrix& right) { return *this = *this - right; }
MMatrix& MMatrix::operator*=(const MMatrix& right) { return *this = Math::product(*this, right); }
MMatrix MMatrix::operator*(const MMatrix& right) const { return Math::product(*this, right); }
MMatrix& MMatrix::operator*=(double factor) { return *this = Math::scaled(*this, factor); }
MMatrix MMatrix::operator*(double factor) const { return Math::scaled(*this, factor); }
bool MMatrix::operator==(const MMatrix& other) const { return Math::equal(*this, other); }
bool MMatrix::operator!=(const MMatrix& other) const { return !Math::equal(*this, other); }

MMatrix MMatrix::inverse() const { return isSingular() ? MMatrix() : Math::inverse(*this); }
MMatrix MMatrix::adjoint() const { return Math::adjoint(*this); }
MMatrix MMatrix::homogenize() const { return Math::homogenized(*this); }
double MMatrix::det4x4() const { return Math::det4x4(*this); }
double MMatrix::det3x3() const { return Math::det3x3(*this); }

bool MMatrix::isEquivalent(const MMatrix& other, double tolerance) const {
    return Math::equivalent(*this, other, tolerance);
}

bool MMatrix::isSingular() const {
    // The determinant is judged against the product of the rows' lengths, its largest possible amount, so that small
    // scales do not count as singular. A translation has no part in the question.
    const bool affine = matrix[0][3] == 0.0 && matrix[1][3] == 0.0 && matrix[2][3] == 0.0 && matrix[3][3] == 1.0;
    const int size = affine ? 3 : 4;
    MMatrix unit(*this);
    for (int r = 0; r < size; ++r) {
        double length = 0.0;
        for (int c = 0; c < size; ++c) length = std::hypot(length, matrix[r][c]);
        if (!(length > 0.0) || !std::isfinite(length)) return true;
        for (int c = 0; c < size; ++c) unit.matrix[r][c] /= length;
    }
    return !(std::abs(affine ? unit.det3x3() : unit.det4x4()) > 1.0e-15);
}

const MMatrix MMatrix::identity;

const char* MMatrix::className() { return "MMatrix"; }

MMatrix operator*(double factor, const MMatrix& right) { return right * factor; }

std::ostream& operator<<(std::ostream& os, const MMatrix& m) {
    os << '[';
    for (int r = 0; r < 4; ++r) host::writeList(os << (r ? ", " : ""), m.matrix[r], 4, '[', ']');
    return os << ']';
}
