#include "Near.h"

#include <maya/MFloatMatrix.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

#include <gtest/gtest.h>

#include <random>

namespace {

// The plain formula, multiplied out element by element.
MMatrix translation(const MVector& v) {
    MMatrix m;
    v.get(m[3]);
    return m;
}

// Fault: a factor of the documented product missing, inverted or in another place.
TEST(TransformationMatrix, IsTheDocumentedProduct) {
    const double scale[]{2.0, 3.0, -0.5};
    const double shear[]{0.1, 0.2, 0.3};
    const double angles[]{0.4, 0.5, 0.6};
    const MVector sp(1, 2, 3), st(4, 5, 6), rp(-1, 2, -3), rt(7, 8, 9), t(10, 20, 30);
    const MQuaternion ro(0.7, MVector(1, 1, 0));
    MTransformationMatrix tm;
    EXPECT_TRUE(tm.setScale(scale, MSpace::kTransform));
    EXPECT_TRUE(tm.setShear(shear, MSpace::kTransform));
    EXPECT_TRUE(tm.setRotation(angles, MTransformationMatrix::kZXY));
    tm.setRotationOrientation(ro);
    EXPECT_TRUE(tm.setScalePivot(sp, MSpace::kTransform, false));
    EXPECT_TRUE(tm.setScalePivotTranslation(st, MSpace::kTransform));
    EXPECT_TRUE(tm.setRotatePivot(rp, MSpace::kTransform, false));
    EXPECT_TRUE(tm.setRotatePivotTranslation(rt, MSpace::kTransform));
    EXPECT_TRUE(tm.setTranslation(t, MSpace::kTransform));

    const double s[4][4]{{2, 0, 0, 0}, {0, 3, 0, 0}, {0, 0, -0.5, 0}, {0, 0, 0, 1}};
    const double sh[4][4]{{1, 0, 0, 0}, {0.1, 1, 0, 0}, {0.2, 0.3, 1, 0}, {0, 0, 0, 1}};
    const MMatrix r = MQuaternion(0.6, MVector::zAxis).asMatrix() * MQuaternion(0.4, MVector::xAxis).asMatrix() *
                      MQuaternion(0.5, MVector::yAxis).asMatrix();
    const MMatrix scaled = translation(-sp) * MMatrix(s) * MMatrix(sh) * translation(sp) * translation(st);
    const MMatrix rotated = scaled * translation(-rp) * ro.asMatrix() * r * translation(rp) * translation(rt);
    expectNear(tm.asScaleMatrix(), scaled);
    expectNear(tm.asRotateMatrix(), rotated);
    expectNear(tm.asMatrix(), rotated * translation(t));
    expectNear(tm.asMatrix() * tm.asMatrixInverse(), MMatrix::identity);
    expectNear(tm.asMatrix(1.0), tm.asMatrix());
    expectNear(tm.asMatrix(0.0), MMatrix::identity);
    expectNear(tm.rotatePivot(MSpace::kWorld), MPoint(rp + rt + t));
    expectNear(tm.scalePivot(MSpace::kWorld), MPoint(sp) * tm.asMatrix());
}

// Fault: a moved pivot moves the object although it should be balanced.
TEST(TransformationMatrix, BalancedPivotsKeepTheMatrix) {
    const double scale[]{2.0, 3.0, 4.0};
    MTransformationMatrix tm;
    EXPECT_TRUE(tm.setScale(scale, MSpace::kTransform));
    tm.rotateTo(MEulerRotation(0.1, 0.2, 0.3));
    const MMatrix before = tm.asMatrix();
    EXPECT_TRUE(tm.setScalePivot(MPoint(1, 2, 3), MSpace::kTransform, true));
    EXPECT_TRUE(tm.setRotatePivot(MPoint(4, 5, 6), MSpace::kTransform, true));
    expectNear(tm.asMatrix(), before);
    EXPECT_FALSE(tm.scalePivotTranslation(MSpace::kTransform).isEquivalent(MVector::zero));
    EXPECT_TRUE(tm.setRotatePivot(MPoint(4, 5, 6), MSpace::kTransform, false));
    EXPECT_TRUE(tm.setRotatePivot(MPoint(0, 0, 0), MSpace::kTransform, false));
    EXPECT_FALSE(tm.asMatrix().isEquivalent(before));
}

// Fault: scale, shear or rotation lost or mixed up when a matrix is taken apart.
TEST(TransformationMatrix, TakesRandomMatricesApart) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> any(-3.0, 3.0), positive(0.1, 5.0);
    for (int i = 0; i < 300; ++i) {
        const double mirrored = i % 2 ? -1.0 : 1.0;
        const double scale[]{mirrored * positive(random), mirrored * positive(random), mirrored * positive(random)};
        const double shear[]{any(random), any(random), any(random)};
        MTransformationMatrix tm;
        EXPECT_TRUE(tm.setScale(scale, MSpace::kTransform));
        EXPECT_TRUE(tm.setShear(shear, MSpace::kTransform));
        tm.rotateTo(MEulerRotation(any(random), any(random), any(random)));
        EXPECT_TRUE(tm.setTranslation(MVector(any(random), any(random), any(random)), MSpace::kTransform));

        const MTransformationMatrix parts(tm.asMatrix());
        double gotScale[3], gotShear[3];
        EXPECT_TRUE(parts.getScale(gotScale, MSpace::kTransform));
        EXPECT_TRUE(parts.getShear(gotShear, MSpace::kTransform));
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(gotScale[k], scale[k], 1.0e-9);
            EXPECT_NEAR(gotShear[k], shear[k], 1.0e-8);
        }
        expectNear(parts.rotation().asMatrix(), tm.rotation().asMatrix(), 1.0e-8);
        expectNear(parts.asMatrix(), tm.asMatrix(), 1.0e-8);
    }
}

// Fault: a mirroring of one axis, or a flat scale, does not come back.
TEST(TransformationMatrix, TakesMirroringAndFlatMatricesApart) {
    for (int axis = 0; axis < 3; ++axis)
        for (const double size : {-2.0, 0.0}) {
            MMatrix m = MEulerRotation(0.3, 0.4, 0.5).asMatrix();
            for (int c = 0; c < 3; ++c) m[axis][c] *= size;
            expectNear(MTransformationMatrix(m).asMatrix(), m);
        }
    double zero[4][4]{};
    zero[3][3] = 1.0;
    expectNear(MTransformationMatrix(MMatrix(zero)).asMatrix(), MMatrix(zero));
}

// Fault: a space that turns the new rotation or translation about the wrong axes. By hand, with R a quarter turn about
// z and scale 2: object x is world y.
TEST(TransformationMatrix, SpacesOfAddedParts) {
    const double scale[]{2.0, 2.0, 2.0};
    MTransformationMatrix base;
    base.rotateTo(MEulerRotation(0.0, 0.0, quarter));
    EXPECT_TRUE(base.setScale(scale, MSpace::kTransform));

    MTransformationMatrix tm(base);
    EXPECT_TRUE(tm.addTranslation(MVector::xAxis, MSpace::kObject));
    EXPECT_TRUE(tm.getTranslation(MSpace::kWorld).isEquivalent(MVector(0, 2, 0)));
    EXPECT_TRUE(tm.getTranslation(MSpace::kObject).isEquivalent(MVector(1, 0, 0)));
    EXPECT_TRUE(tm.addTranslation(MVector::xAxis, MSpace::kWorld));
    EXPECT_TRUE(tm.translation(MSpace::kTransform).isEquivalent(MVector(1, 2, 0)));

    const double turn[]{quarter, 0.0, 0.0};
    MTransformationMatrix world(base), object(base);
    EXPECT_TRUE(world.addRotation(turn, MTransformationMatrix::kXYZ, MSpace::kWorld));
    EXPECT_TRUE(object.addRotation(turn, MTransformationMatrix::kXYZ, MSpace::kObject));
    expectNear(MPoint(1, 0, 0) * world.asMatrix(), MPoint(0, 0, 2));  // x -> y -> z
    expectNear(MPoint(1, 0, 0) * object.asMatrix(), MPoint(0, 2, 0)); // x -> x -> y

    EXPECT_EQ(tm.setScale(scale, MSpace::kInvalid), MStatus::kInvalidParameter);
    EXPECT_EQ(tm.setRotation(turn, MTransformationMatrix::kInvalid), MStatus::kInvalidParameter);
    double angles[3];
    MTransformationMatrix::RotationOrder order;
    EXPECT_TRUE(tm.reorderRotation(MTransformationMatrix::kZYX));
    EXPECT_TRUE(tm.getRotation(angles, order));
    EXPECT_EQ(order, MTransformationMatrix::kZYX);
    EXPECT_NEAR(angles[2], quarter, 1.0e-12);
}

// Fault: wrong cofactor signs, determinant or division. Worked out by hand for the upper 2 by 2 block.
TEST(Matrix, InverseAdjointAndDeterminant) {
    const double elements[4][4]{{1, 2, 0, 0}, {3, 4, 0, 0}, {0, 0, 2, 0}, {5, 6, 7, 1}};
    const MMatrix m(elements);
    EXPECT_DOUBLE_EQ(m.det3x3(), -4.0);
    EXPECT_DOUBLE_EQ(m.det4x4(), -4.0);
    expectNear(m * m.inverse(), MMatrix::identity);
    EXPECT_NEAR(m.inverse()[0][0], -2.0, 1.0e-12);
    EXPECT_NEAR(m.inverse()[0][1], 1.0, 1.0e-12);
    expectNear(m * m.adjoint(), -4.0 * MMatrix::identity);
    EXPECT_DOUBLE_EQ((2.0 * m).homogenize()[3][0], 5.0);
    expectNear(m.transpose().transpose(), m);
    const MFloatMatrix f(elements);
    EXPECT_TRUE((f * f.inverse()).isEquivalent(MFloatMatrix(), 1.0e-5f));
    EXPECT_FLOAT_EQ(f.det4x4(), -4.0f);
}

// Fault: a singular matrix gives infinities, or a small or far matrix counts as singular.
TEST(Matrix, SingularMatrices) {
    const double dependent[4][4]{{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}, {1, 1, 1, 1}};
    double third[4][4]{{0.1, 0.2, 0.3, 0}, {0.4, 0.5, 0.6, 0}, {0.5, 0.7, 0.9, 0}, {0, 0, 0, 1}};
    for (const MMatrix& m : {MMatrix(dependent), MMatrix(third), 0.0 * MMatrix()}) {
        EXPECT_TRUE(m.isSingular()) << m;
        EXPECT_EQ(m.inverse(), MMatrix::identity);
    }
    MMatrix tiny = 1.0e-6 * MMatrix();
    tiny[3][3] = 1.0;
    tiny[3][0] = 1.0e12;
    EXPECT_FALSE(tiny.isSingular());
    EXPECT_NEAR(tiny.inverse()[0][0], 1.0e6, 1.0e-6);
}

// Fault: column vectors where rows are meant; translations acting on vectors; normals transformed as vectors.
TEST(Matrix, TimesPointsAndVectors) {
    const double elements[4][4]{{2, 0, 0, 0}, {0, 0, 3, 0}, {0, 1, 0, 0}, {10, 20, 30, 1}};
    const MMatrix m(elements);
    EXPECT_EQ(MPoint(1, 2, 3) * m, MPoint(12, 23, 36));
    EXPECT_EQ(MVector(1, 2, 3) * m, MVector(2, 3, 6));
    EXPECT_EQ(m * MVector(1, 2, 3), MVector(2, 9, 2));
    EXPECT_EQ(m * MPoint(1, 2, 3), MPoint(2, 9, 2, 141));
    EXPECT_TRUE(MVector(1, 0, 0).transformAsNormal(m).isEquivalent(MVector(0.5, 0, 0)));
    EXPECT_TRUE(MVector(0, 1, 0).transformAsNormal(m).isEquivalent(MVector(0, 0, 1.0 / 3.0)));
}

} // namespace
