#pragma once

#include "ScatteringTables.h"

#include <span>

namespace orvo {

/// A ray of the scattering tables: from the eye, in the plane z = 0, to where it leaves the atmosphere.
struct TableRay {
    double x = 0, y = 0; ///< unit direction
    double exit = 0;
};

/// A ray's integral, and bounds of its difference from integrateRay's relative to its own size. A bound that is
/// infinite or not a number says that nothing is known.
struct NearScattering {
    RayScattering value, error;
};

/// integrateRay for several rays at once, in vector registers: the same steps and sums in the same order, with vector
/// exponentials in place of the C library's. From (0, eyeHeight, 0), measured from the planet's centre.
/// @return false, with nothing written, when the model's numbers are out of the range in which the bounds hold
bool integrateRays(const AtmosphereModel& model, double eyeHeight, std::span<const TableRay> rays,
                   std::span<NearScattering> results);

} // namespace orvo
