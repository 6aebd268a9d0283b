#pragma once

#include <maya/MStatus.h>

#include <iosfwd>

#define MMatrix_kTol 1.0e-10

/// A 4 by 4 matrix of doubles. Points are row vectors that are multiplied from the left, p' = p * M, so that a
/// translation stands in row 3 and A * B applies A first.
class OPENMAYA_EXPORT MMatrix {
public:
    /// The identity.
    MMatrix();
    MMatrix(const MMatrix& src);
    MMatrix(const double src_matrix[4][4]);
    MMatrix(const float src_matrix[4][4]);
    MMatrix& operator=(const MMatrix& src);

    inline double operator()(unsigned int row, unsigned int col) const { return matrix[row][col]; }
    inline const double* operator[](unsigned int row) const { return matrix[row]; }
    inline double& operator()(unsigned int row, unsigned int col) { return matrix[row][col]; }
    inline double* operator[](unsigned int row) { return matrix[row]; }

    MStatus get(double dest[4][4]) const;
    MStatus get(float dest[4][4]) const;

    MMatrix transpose() const;
    MMatrix& setToIdentity();
    MMatrix& setToProduct(const MMatrix& left, const MMatrix& right);

    MMatrix& operator+=(const MMatrix& right);
    MMatrix operator+(const MMatrix& right) const;
    MMatrix& operator-=(const MMatrix& right);
    MMatrix operator-(const MMatrix& right) const;
    MMatrix& operator*=(const MMatrix& right);
    MMatrix operator*(const MMatrix& right) const;
    MMatrix& operator*=(double factor);
    MMatrix operator*(double factor) const;
    bool operator==(const MMatrix& other) const;
    bool operator!=(const MMatrix& other) const;

    /// The inverse; of a singular matrix the identity.
    MMatrix inverse() const;
    /// The transposed matrix of cofactors: M * adjoint = det4x4 * identity.
    MMatrix adjoint() const;
    /// The matrix divided by its element [3][3], unless that is 0.
    MMatrix homogenize() const;
    double det4x4() const;
    /// Determinant of the upper left 3 by 3 part.
    double det3x3() const;

    /// Whether no element differs by more than the tolerance.
    bool isEquivalent(const MMatrix& other, double tolerance = MMatrix_kTol) const;
    /// Whether the matrix has no inverse within the accuracy of its elements.
    bool isSingular() const;
    static const char* className();

    static const MMatrix identity;

    /// Elements by row and column.
    double matrix[4][4];
};

OPENMAYA_EXPORT MMatrix operator*(double factor, const MMatrix& right);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MMatrix& m);
