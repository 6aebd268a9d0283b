#pragma once

#include <maya/MMatrix.h>

#include <gtest/gtest.h>

#include <numbers>

inline constexpr double quarter = std::numbers::pi / 2.0; ///< of a turn, radians

/// For points, vectors and matrices.
template <class Value>
void expectNear(const Value& actual, const Value& expected, double within = 1.0e-9) {
    EXPECT_TRUE(actual.isEquivalent(expected, within)) << actual << " instead of " << expected;
}
