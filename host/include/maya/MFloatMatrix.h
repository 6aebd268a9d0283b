#pragma once

#include <maya/MStatus.h>

#include <iosfwd>

#define MFloatMatrix_kTol 1.0e-5f

/// A 4 by 4 matrix of floats. Points are row vectors that are multiplied from the left, p' = p * M, so that a
/// translation stands in row 3 and A * B applies A first.
class OPENMAYA_EXPORT MFloatMatrix {
public:
    /// The identity.
    MFloatMatrix();
    MFloatMatrix(const MFloatMatrix& src);
    MFloatMatrix(const double src_matrix[4][4]);
    MFloatMatrix(const float src_matrix[4][4]);
    MFloatMatrix& operator=(const MFloatMatrix& src);

    inline float operator()(unsigned int row, unsigned int col) const { return matrix[row][col]; }
    inline const float* operator[](unsigned int row) const { return matrix[row]; }
    inline float& operator()(unsigned int row, unsigned int col) { return matrix[row][col]; }
    inline float* operator[](unsigned int row) { return matrix[row]; }

    MStatus get(double dest[4][4]) const;
    MStatus get(float dest[4][4]) const;

    MFloatMatrix transpose() const;
    MFloatMatrix& setToIdentity();
    MFloatMatrix& setToProduct(const MFloatMatrix& left, const MFloatMatrix& right);

    MFloatMatrix& operator+=(const MFloatMatrix& right);
    MFloatMatrix operator+(const MFloatMatrix& right) const;
    MFloatMatrix& operator-=(const MFloatMatrix& right);
    MFloatMatrix operator-(const MFloatMatrix& right) const;
    MFloatMatrix& operator*=(const MFloatMatrix& right);
    MFloatMatrix operator*(const MFloatMatrix& right) const;
    MFloatMatrix& operator*=(float factor);
    MFloatMatrix operator*(float factor) const;
    bool operator==(const MFloatMatrix& other) const;
    bool operator!=(const MFloatMatrix& other) const;

    /// The inverse; of a singular matrix the identity.
    MFloatMatrix inverse() const;
    /// The transposed matrix of cofactors: M * adjoint = det4x4 * identity.
    MFloatMatrix adjoint() const;
    /// The matrix divided by its element [3][3], unless that is 0.
    MFloatMatrix homogenize() const;
    float det4x4() const;
    /// Determinant of the upper left 3 by 3 part.
    float det3x3() const;

    /// Whether no element differs by more than the tolerance.
    bool isEquivalent(const MFloatMatrix& other, float tolerance = MFloatMatrix_kTol) const;

    static const char* className();

    /// Elements by row and column.
    float matrix[4][4];
};

OPENMAYA_EXPORT MFloatMatrix operator*(float factor, const MFloatMatrix& right);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MFloatMatrix& m);
