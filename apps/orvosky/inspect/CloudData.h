#pragma once

#include "Inspection.h"

#include <span>

namespace orvosky::inspect {

/// Checks the ParticleCloud elements of a scene against the bytes of its data file, and adds to each what its sprites
/// are like: how its records lie in the file, the box of their centres in metres, their opacity.
/// @param clouds in the order of the file
/// @param bytes the whole file, end mark included
void checkCloudData(std::span<Element*> clouds, std::span<const unsigned char> bytes, Inspection& found);

} // namespace orvosky::inspect
