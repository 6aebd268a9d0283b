#pragma once

#include "CloudGeneration.h"
#include "Common/RandomGenerator.h"

/// The vector code of cloud generation, for the widest unit that the machine has. There are two kinds of it:
/// - exact: every lane does the very operations of the plain code in their order, none of them fused, but for divisions
///   by one number, which are put together of faster operations that give the same bits;
/// - estimates: a shorter way, with fused operations and sums in any order, and a bound on how far that may be from
///   what the plain code works out. Where all numbers within the bound round to one float, that float is the plain
///   code's. Where they do not, the exact code has the word.
/// So no result differs in any bit.
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
    double nearest = 0.0;    ///< how many strides from the start the row comes nearest to the shape's centre
    double gap[3] = {};      ///< from that centre to the row there, in unit space
};

/// The shapes that may be felt in a row of boxes, in their order: outside the spans none is.
void spansOfShapes(const ShapeTable& shapes, const RowDirection& direction, const Vector3& start, int count,
                   std::vector<ShapeSpan>& spans);

/// What is alike for all candidates of a cloud.
struct Scatter {
    Vector3 boundCentre;
    double boundRadius = 0.0, step = 0.0;
    bool groundFade = false;
    double fadeEnd = 0.0;
};

constexpr double placementRadius = 1.2, placementCap = 0.3; ///< of the shapes in unit space; of a shape's weight

/// A cloud's shapes as candidates are weighed against them: one after the other, their unit spaces shrunk so that a
/// shape is felt within 1 of its centre.
class CandidateTable {
public:
    CandidateTable(const ShapeTable& shapes, const Scatter& scatter);

    struct Shape {
        double matrix[12]; ///< by rows, its first three columns
        double density, opacity;
        double rounding; ///< a bound on what rounding does to a weight
    };
    const Shape& shape(std::uint32_t i) const { return shapes_[i]; }
    double maxDensity() const { return maxDensity_; } ///< of either sign
    double maxOpacity() const { return maxOpacity_; } ///< the same

private:
    double maxDensity_, maxOpacity_;
    std::vector<Shape> shapes_;
};

/// A row of boxes, with one candidate each, from its corner on.
struct CandidateRow {
    double x = 0.0, y = 0.0;
    const double* z = nullptr; ///< of each box, with rowPadding more numbers behind the last
    int last = 0;              ///< the last box in which a shape may be felt
};
constexpr std::size_t rowPadding = 8;

/// The candidates that became sprites.
struct KeptSprites {
    std::vector<Vector3> positions;
    std::vector<float> opacities;
    bool full() const { return positions.size() == maxSprites; }
};

/// Draws the candidates of a row from box k on, and keeps those that the plain code keeps, by estimates, until the row
/// ends, the cloud is full, or a candidate comes whose estimate is not good enough to tell.
/// @param found all shapes that may be felt in the row
/// @return the box of that candidate, which is not drawn yet, else row.last + 1
int keepCandidates(const CandidateTable& table, const Scatter& scatter, const std::vector<ShapeSpan>& found,
                   const CandidateRow& row, int k, RandomGenerator& random, KeptSprites& kept);

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

/// The rays towards the light from the samples of any sprite, in the unit spaces of a cloud's shapes, shrunk so that a
/// shape is felt within 1 of its centre.
class RayTable {
public:
    RayTable(const ShapeTable& shapes, const RowDirection& direction, const LightMarch& march);

    /// False when there is a shape in whose unit space the rays stand still, or a fade that begins all at once: the
    /// bounds do not hold for these.
    bool usable() const { return usable_; }

    /// What sample s adds to component i of the middle ray's place against shape s: how far back along the ray its
    /// nearest point lies, and the three components of how the ray passes the shape's centre there.
    const double* offsets(std::uint32_t shape, int i) const {
        return &offsets_[(std::size_t{shape} * components + static_cast<std::size_t>(i)) * shadowSamples];
    }
    static constexpr int back = 0, gap = 1, components = 4;

    struct Shape {
        double pace = 0.0;     ///< the length of a step
        double density = 0.0;  ///< of the shape
        double rounding = 0.0; ///< a bound on what rounding does to a weight, in step k times (k + 48)
    };
    const Shape& shape(std::uint32_t i) const { return shapes_[i]; }
    double maxDensity() const { return maxDensity_; } ///< of either sign
    /// A bound on what rounding does to the fade, in step k times (k + 48).
    double fadeRounding() const { return fadeRounding_; }

private:
    bool usable_;
    double maxDensity_, fadeRounding_ = 0.0;
    std::vector<double> offsets_;
    std::vector<Shape> shapes_;
};

/// Marches from sprite after sprite of a cloud. What it is made of must outlive it.
class SpriteMarcher {
public:
    SpriteMarcher(const ShapeTable& shapes, const LightMarch& march);

    /// The optical depths at the eight samples of a sprite, sample s on the positive side of axis i when bit i of s is
    /// set.
    /// @return false, with no depths, when a sample needs what only the plain march does: an entry from outside the
    ///   cloud's surroundings, or steps beyond counting
    bool depthsAt(const Vector3& centre, double (&depths)[shadowSamples]);

    /// Estimates of the same, each at most its bound away from the very depth.
    /// @return false, with no depths, when the estimate is not good enough to tell, or not to be had
    bool estimatesAt(const Vector3& centre, double (&depths)[shadowSamples], double (&bounds)[shadowSamples]);

    /// The depths as floats, by estimates where these will do.
    /// @return false as depthsAt does
    bool floatsAt(const Vector3& centre, float (&depths)[shadowSamples]);

private:
    const ShapeTable& shapes_;
    const LightMarch& march_;
    RowDirection direction_;
    RayTable rays_;
    std::vector<ShapeSpan> spans_;
};

} // namespace orvo
