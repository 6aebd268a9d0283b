#include "values/RotationMath.h"

#include <maya/MVector.h>

#include <array>
#include <cmath>

namespace host {
namespace {

// A direction across `a`; any direction for a zero vector.
MVector across(const MVector& a) {
    const bool mostlyX = std::abs(a.x) > 0.9 * a.length();
    const MVector axis = a ^ (mostlyX ? MVector::yAxis : MVector::xAxis);
    return a.length() > 0.0 ? axis.normal() : MVector::xAxis;
}

// Residues this small beside the row they come from are rounding, not direction.
constexpr double negligible = 1.0e-14;

} // namespace

LinearParts linearParts(const MMatrix& m) {
    const std::array<MVector, 3> row{MVector(m[0]), MVector(m[1]), MVector(m[2])};
    std::array<MVector, 3> axis;
    LinearParts parts{};

    double& sx = parts.scale[0];
    sx = row[0].length();
    if (sx > 0.0)
        axis[0] = row[0] / sx;
    else if ((row[1] ^ row[2]).length() > 0.0)
        axis[0] = (row[1] ^ row[2]).normal();
    else
        axis[0] = across(row[1].length() > 0.0 ? row[1] : row[2]);

    const double xy = axis[0] * row[1];
    const MVector second = row[1] - axis[0] * xy;
    double& sy = parts.scale[1];
    sy = second.length();
    if (sy > negligible * row[1].length()) {
        axis[1] = second / sy;
        parts.shear[0] = xy / sy;
    } else {
        sy = 0.0;
        const MVector third = row[2] ^ axis[0];
        axis[1] = third.length() > negligible * row[2].length() ? third.normal() : across(axis[0]);
    }

    const double xz = axis[0] * row[2];
    const double yz = axis[1] * row[2];
    const MVector third = row[2] - axis[0] * xz - axis[1] * yz;
    double& sz = parts.scale[2];
    sz = third.length();
    if (sz > negligible * row[2].length()) {
        axis[2] = third / sz;
        parts.shear[1] = xz / sz;
        parts.shear[2] = yz / sz;
    } else {
        sz = 0.0;
        axis[2] = axis[0] ^ axis[1];
    }

    if ((axis[0] ^ axis[1]) * axis[2] < 0.0) {
        for (int i = 0; i < 3; ++i) {
            axis[i] = -axis[i];
            parts.scale[i] = -parts.scale[i];
        }
    }
    for (int i = 0; i < 3; ++i) axis[i].get(parts.rotation[i]);
    return parts;
}

} // namespace host
