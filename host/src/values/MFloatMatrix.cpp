#include <maya/MFloatMatrix.h>

#include "base/NumberText.h"
#include "values/MatrixMath.h"

using Math = host::MatrixMath<MFloatMatrix, float>;

MFloatMatrix::MFloatMatrix() { setToIdentity(); }
MFloatMatrix::MFloatMatrix(const MFloatMatrix& src) { Math::copy(*this, src.matrix); }
MFloatMatrix::MFloatMatrix(const double src_matrix[4][4]) { Math::copy(*this, src_matrix); }
MFloatMatrix::MFloatMatrix(const float src_matrix[4][4]) { Math::copy(*this, src_matrix); }

MFloatMatrix& MFloatMatrix::operator=(const MFloatMatrix& src) {
    Math::copy(*this, src.matrix);
    return *this;
}

MStatus MFloatMatrix::get(double dest[4][4]) const {
    Math::copyTo(*this, dest);
    return MStatus::kSuccess;
}

MStatus MFloatMatrix::get(float dest[4][4]) const {
    Math::copyTo(*this, dest);
    return MStatus::kSuccess;
}

MFloatMatrix MFloatMatrix::transpose() const { return Math::fromLibrary(Math::toLibrary(*this).transposed()); }

MFloatMatrix& MFloatMatrix::setToIdentity() {
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) matrix[r][c] = static_cast<float>(r == c);
    return *this;
}

MFloatMatrix& MFloatMatrix::setToProduct(const MFloatMatrix& left, const MFloatMatrix& right) {
    return *this = Math::product(left, right);
}

MFloatMatrix MFloatMatrix::operator+(const MFloatMatrix& right) const {
    return Math::combined(*this, right, [](auto a, auto b) { return a + b; });
}

MFloatMatrix MFloatMatrix::operator-(const MFloatMatrix& right) const {
    return Math::combined(*this, right, [](auto a, auto b) { return a - b; });
}

MFloatMatrix& MFloatMatrix::operator+=(const MFloatMatrix& right) { return *this = *this + right; }
MFloatMatrix& MFloatMatrix::operator-=(const MFloatMatrix& right) { return *this = *this - right; }
MFloatMatrix& MFloatMatrix::operator*=(const MFloatMatrix& right) { return *this = Math::product(*this, right); }
MFloatMatrix MFloatMatrix::operator*(const MFloatMatrix& right) const { return Math::product(*this, right); }
MFloatMatrix& MFloatMatrix::operator*=(float factor) { return *this = Math::scaled(*this, factor); }
MFloatMatrix MFloatMatrix::operator*(float factor) const { return Math::scaled(*this, factor); }
bool MFloatMatrix::operator==(const MFloatMatrix& other) const { return Math::equal(*this, other); }
bool MFloatMatrix::operator!=(const MFloatMatrix& other) const { return !Math::equal(*this, other); }

MFloatMatrix MFloatMatrix::inverse() const { return Math::inverse(*this); }
MFloatMatrix MFloatMatrix::adjoint() const { return Math::adjoint(*this); }
MFloatMatrix MFloatMatrix::homogenize() const { return Math::homogenized(*this); }
float MFloatMatrix::det4x4() const { return Math::det4x4(*this); }
float MFloatMatrix::det3x3() const { return Math::det3x3(*this); }

bool MFloatMatrix::isEquivalent(const MFloatMatrix& other, float tolerance) const {
    return Math::equivalent(*this, other, tolerance);
}

const char* MFloatMatrix::className() { return "MFloatMatrix"; }

MFloatMatrix operator*(float factor, const MFloatMatrix& right) { return right * factor; }

std::ostream& operator<<(std::ostream& os, const MFloatMatrix& m) {
    os << '[';
    for (int r = 0; r < 4; ++r) host::writeList(os << (r ? ", " : ""), m.matrix[r], 4, '[', ']');
    return os << ']';
}
