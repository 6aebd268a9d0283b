#include "Near.h"

#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace {

constexpr double tolerance = 1.0e-12;

// Quarter turns by hand. About x: y -> z, z -> -y; about y: z -> x, x -> -z; about z: x -> y, y -> -x.
struct OrderCase {
    MEulerRotation::RotationOrder order;
    MVector angles, from, to;
    friend void PrintTo(const OrderCase& c, std::ostream* out) {
        *out << "order " << c.order << ", " << c.angles << ": " << c.from << " to " << c.to;
    }
};

class EulerOrder : public testing::TestWithParam<OrderCase> {};

// Fault: axes applied in another order, or turned the other way round.
TEST_P(EulerOrder, TurnsKnownVectors) {
    const OrderCase& c = GetParam();
    const MEulerRotation e(c.angles, c.order);
    expectNear(c.from * e.asMatrix(), c.to, tolerance);
    expectNear(c.from.rotateBy(e), c.to, tolerance);
    expectNear(c.from.rotateBy(e.asQuaternion()), c.to, tolerance);
    const double angles[]{c.angles.x, c.angles.y, c.angles.z};
    expectNear(c.from.rotateBy(angles, static_cast<MTransformationMatrix::RotationOrder>(c.order + 1)), c.to,
               tolerance);
}

const MVector X(1, 0, 0), Y(0, 1, 0), Z(0, 0, 1);
const MVector XY(quarter, quarter, 0), YZ(0, quarter, quarter), ZX(quarter, 0, quarter);

// Two quarter turns tell every pair of axes, and so each order, apart: Y by x then y: y -> z -> x.
INSTANTIATE_TEST_SUITE_P(
    Orders, EulerOrder,
    testing::Values(OrderCase{MEulerRotation::kXYZ, XY, Y, X}, OrderCase{MEulerRotation::kXYZ, YZ, Z, Y},
                    OrderCase{MEulerRotation::kXYZ, ZX, Y, Z}, OrderCase{MEulerRotation::kYZX, XY, Y, Z},
                    OrderCase{MEulerRotation::kYZX, YZ, Z, Y}, OrderCase{MEulerRotation::kYZX, ZX, X, Z},
                    OrderCase{MEulerRotation::kZXY, XY, Y, X}, OrderCase{MEulerRotation::kZXY, YZ, X, Y},
                    OrderCase{MEulerRotation::kZXY, ZX, X, Z}, OrderCase{MEulerRotation::kXZY, XY, Y, X},
                    OrderCase{MEulerRotation::kXZY, YZ, Y, Z}, OrderCase{MEulerRotation::kXZY, ZX, Y, Z},
                    OrderCase{MEulerRotation::kYXZ, XY, X, Y}, OrderCase{MEulerRotation::kYXZ, YZ, Z, Y},
                    OrderCase{MEulerRotation::kYXZ, ZX, Y, Z}, OrderCase{MEulerRotation::kZYX, XY, X, Y},
                    OrderCase{MEulerRotation::kZYX, YZ, X, Y}, OrderCase{MEulerRotation::kZYX, ZX, X, Z}));

class EulerRoundTrip : public testing::TestWithParam<int> {};

// Fault: extraction with a wrong sign or axis for some order, also where the middle angle is a quarter turn.
TEST_P(EulerRoundTrip, AnglesOfAMatrixGiveItBack) {
    const auto order = static_cast<MEulerRotation::RotationOrder>(GetParam());
    std::mt19937 random(7);
    std::uniform_real_distribution<double> angle(-3.0, 3.0);
    for (int i = 0; i < 200; ++i) {
        MEulerRotation e(angle(random), angle(random), angle(random), order);
        if (i % 10 == 0) {
            const char* middle = "yzxzxy"; // of XYZ YZX ZXY XZY YXZ ZYX
            e[static_cast<unsigned int>(middle[order] - 'x')] = i % 20 ? quarter : -quarter;
        }
        const MMatrix m = e.asMatrix();
        expectNear(MEulerRotation::decompose(m, order).asMatrix(), m, 1.0e-9);
        expectNear(e.asQuaternion().asMatrix(), m, 1.0e-9);
        expectNear(e.inverse().asMatrix() * m, MMatrix::identity, 1.0e-9);
        expectNear(e.alternateSolution().asMatrix(), m, 1.0e-9);
        for (int other = 0; other < 6; ++other)
            expectNear(e.reorder(static_cast<MEulerRotation::RotationOrder>(other)).asMatrix(), m, 1.0e-9);
        MQuaternion q;
        q = m;
        expectNear(q.asMatrix(), m, 1.0e-9);
    }
}

INSTANTIATE_TEST_SUITE_P(AllOrders, EulerRoundTrip, testing::Range(0, 6));

// Fault: solutions a whole or half turn away from the nearest one.
TEST(EulerRotation, ClosestAnglesAndBounds) {
    const double turn = 2.0 * std::numbers::pi;
    const MEulerRotation e(0.1 + turn, -0.2 - turn, 3.0 * turn);
    EXPECT_TRUE(e.bound().isEquivalent(MEulerRotation(0.1, -0.2, 0.0), 1.0e-9));
    EXPECT_TRUE(MEulerRotation(0.1, -0.2, 0.0).closestCut(e).isEquivalent(e, 1.0e-9));
    // By hand: (x + half, half - y, z + half) is the same rotation.
    const double half = std::numbers::pi;
    const MEulerRotation far(0.3 + half, half - 0.4, 0.5 + half);
    EXPECT_TRUE(far.closestSolution(MEulerRotation(0.3, 0.4, 0.5)).isEquivalent(MEulerRotation(0.3, 0.4, 0.5), 1.0e-9));
    EXPECT_TRUE(MEulerRotation(0.1, 0.2, 0.3).isZero(0.3));
    EXPECT_FALSE(MEulerRotation(0.1, 0.2, 0.3).isZero(0.25));
}

// Fault: the product in Hamilton's order, or a quaternion's matrix transposed.
TEST(Quaternion, ProductRotatesByTheLeftFactorFirst) {
    const MQuaternion aboutX(quarter, MVector::xAxis);
    const MQuaternion aboutY(quarter, MVector::yAxis);
    expectNear(Y.rotateBy(aboutX * aboutY), X);
    expectNear((aboutX * aboutY).asMatrix(), aboutX.asMatrix() * aboutY.asMatrix());
    MQuaternion product(aboutX);
    product *= aboutY;
    EXPECT_TRUE(product.isEquivalent(MQuaternion(0.5, 0.5, -0.5, 0.5), tolerance)) << product;
}

// Fault: exp, log, inverse and the axis not fitting together.
TEST(Quaternion, Identities) {
    const MQuaternion q(1.2, MVector(1, 2, 3));
    EXPECT_TRUE(q.log().exp().isEquivalent(q, tolerance));
    EXPECT_TRUE((2.0 * q * (2.0 * q).inverse()).isEquivalent(MQuaternion::identity, tolerance));
    EXPECT_TRUE((q * q.conjugate()).isEquivalent(MQuaternion::identity, tolerance));
    expectNear((3.0 * q).asMatrix(), q.asMatrix());
    expectNear(MMatrix(q), q.asMatrix());
    MVector axis;
    double angle = 0.0;
    EXPECT_TRUE(q.getAxisAngle(axis, angle));
    EXPECT_NEAR(angle, 1.2, tolerance);
    expectNear(axis, MVector(1, 2, 3) / std::sqrt(14.0));
    EXPECT_FALSE(MQuaternion::identity.getAxisAngle(axis, angle));
    EXPECT_EQ(MQuaternion(0, 0, 0, 0).asMatrix(), MMatrix::identity);
}

struct TurnCase {
    MVector from, to;
    friend void PrintTo(const TurnCase& c, std::ostream* out) { *out << c.from << " to " << c.to; }
};

class QuaternionBetween : public testing::TestWithParam<TurnCase> {};

// Fault: no axis for opposite directions, or a rotation the wrong way.
TEST_P(QuaternionBetween, TakesOneDirectionToTheOther) {
    const auto& [from, to] = GetParam();
    const MQuaternion q(from, to);
    expectNear(from.normal().rotateBy(q), to.normal(), 1.0e-9);
    const MQuaternion half(from, to, 0.5);
    expectNear(from.normal().rotateBy(half * half), to.normal(), 1.0e-9);
    expectNear(from.rotateBy(from.rotateTo(to)).normal(), to.normal(), 1.0e-9);
}

INSTANTIATE_TEST_SUITE_P(Directions, QuaternionBetween,
                         testing::Values(TurnCase{{1, 0, 0}, {0, 2, 0}}, TurnCase{{1, 2, 3}, {-3, 1, 4}},
                                         TurnCase{{1, 0, 0}, {-1, 0, 0}}, TurnCase{{0, 0, 5}, {0, 0, -1}},
                                         TurnCase{{0.3, 0.4, 0.5}, {0.3, 0.4, 0.5}}));

// Fault: the long way round, or uneven speed. A third of 90 degrees about z is 30 degrees.
TEST(Quaternion, Interpolation) {
    const MQuaternion p(0.0, MVector::zAxis);
    const MQuaternion q(quarter, MVector::zAxis);
    const MVector expected(std::cos(quarter / 3.0), std::sin(quarter / 3.0), 0.0);
    expectNear(X.rotateBy(slerp(p, q, 1.0 / 3.0)), expected);
    expectNear(X.rotateBy(slerp(p, -q, 1.0 / 3.0)), expected);
    expectNear(X.rotateBy(slerp(p, q, 1.0, 1)), Y);
    EXPECT_TRUE(slerp(q, q, 0.4).isEquivalent(q, tolerance));
    // With keys at even steps the control point is the key itself.
    const MQuaternion r(2.0 * quarter, MVector::zAxis);
    EXPECT_TRUE(squadPt(p, q, r).isEquivalent(q, tolerance));
    EXPECT_TRUE(squad(p, p, q, q, 1.0).isEquivalent(q, tolerance));
    EXPECT_TRUE(squad(p, p, q, q, 0.0).isEquivalent(p, tolerance));
}

} // namespace
