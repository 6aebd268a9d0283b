#pragma once

#include "CloudGeneration.h"

/// The vector code of cloud generation, for the widest unit that the machine has. Every lane does the very operations
/// of the plain code in their order, none of them fused, but for divisions by one number, which are put together of
/// faster operations that give the same bits: no result differs in any.
namespace orvo {

/// A cloud's shapes by component, and how far from a line each of them can be felt.
class ShapeTable {
public:
    explicit ShapeTable(const CloudShapeSet& set);

    /// False when a value is not finite, or so large or small that bounds on its rounding do not hold: such a cloud
    /// is left to the plain code.
    bool usable() const { return usable_; }

    /// Component i of shape s stands at i x stride + s: the matrix by rows, its first three columns; density and
    /// opacity; the most that a point moves in unit space when no coordinate moves by more than 1; a bound on rounding
    /// there.
    const double* component(int i) const { return &values_[static_cast<std::size_t>(i) * stride_]; }
    static constexpr int matrix = 0, density = 12, opacity = 13, reach = 14, slack = 15, components = 16;

    std::size_t count() const { return count_; }
    /// The number of shapes, filled up to a multiple of the widest vector.
    std::size_t stride() const { return stride_; }

private:
    std::size_t count_;
    std::size_t stride_;
    std::vector<double> values_;
    bool usable_;
};

/// Rows of boxes of one direction, in the unit spaces of a cloud's shapes: the points start + k x stride, k from 0, and
/// all points around each that are no farther off along any axis.
class RowDirection {
public:
    /// @param halfSide of a box
    /// @param shapeRadius of the shapes in unit space
    RowDirection(const ShapeTable& shapes, const Vector3& stride, double halfSide, double shapeRadius);

    /// Component i of shape s stands at i x stride + s of the table: the stride in unit space; one through its squared
    /// length; the square of how far off a box's centre may be; 1 where there is a stride to speak of, else 0.
    const double* component(int i) const { return &values_[static_cast<std::size_t>(i) * stride_]; }
    static constexpr int step = 0, inverse = 3, reach2 = 4, moves = 5, components = 6;

private:
    std::size_t stride_;
    std::vector<double> values_;
};

/// The boxes of a row in which a shape may be felt.
struct ShapeSpan {
    std::uint32_t shape = 0;
    int first = 0, last = 0; ///< inclusive
};

/// The shapes that may be felt in a row of boxes, in their order: outside the spans none is.
void spansOfShapes(const ShapeTable& shapes, const RowDirection& direction, const Vector3& start, int count,
                   std::vector<ShapeSpan>& spans);

/// Some of a cloud's shapes side by side, to be weighed at point after point.
class ShapeSelection {
public:
    /// Takes the shapes of the spans, in their order.
    void select(const ShapeTable& shapes, const std::vector<ShapeSpan>& spans);

    /// Sums over the selected shapes, before they are turned into means: shapes reach as far as shapeRadius in unit
    /// space, and none weighs more than cap.
    CloudSample sums(const Vector3& point, double shapeRadius, double cap) const;

    const double* component(int i) const { return &values_[static_cast<std::size_t>(i) * stride_]; }
    std::size_t count() const { return count_; }
    std::size_t stride() const { return stride_; }

private:
    std::size_t count_ = 0, stride_ = 0;
    std::vector<double> values_; ///< components as in the table, up to opacity
};

/// What the march towards the light is like for all samples of a cloud.
struct LightMarch {
    Vector3 boundCentre, lightDirection;
    double boundRadius = 0.0, stepLength = 0.0;
    bool groundFade = false;
    double fadeStart = 0.0, fadeEnd = 0.0;
    double sampleOffset = 0.0; ///< of the eight samples from a sprite's centre, along each axis
};

constexpr int shadowSamples = 8;
constexpr double marchRadius = 1.8; ///< of the shapes in unit space, for the march

/// Marches from sprite after sprite of a cloud. What it is made of must outlive it.
class SpriteMarcher {
public:
    SpriteMarcher(const ShapeTable& shapes, const LightMarch& march);

    /// The optical depths at the eight samples of a sprite, sample s on the positive side of axis i when bit i of s is
    /// set.
    /// @return false, with no depths, when a sample needs what only the plain march does: an entry from outside the
    ///   cloud's surroundings, or steps beyond counting
    bool depthsAt(const Vector3& centre, double (&depths)[shadowSamples]);

private:
    const ShapeTable& shapes_;
    const LightMarch& march_;
    RowDirection direction_;
    std::vector<ShapeSpan> spans_;
};

} // namespace orvo
