#pragma once

#include "Inspection.h"
#include "PlainFile.h"

#include <span>

namespace orvosky::inspect {

/// Checks the ParticleCloud elements of a scene against the bytes of its data file, and adds to each what its sprites
/// are like: how its records lie in the file, the box of their centres in metres, their opacity.
/// @param clouds in the order of the file
/// @param data the file, end mark included; throws Failure when it cannot be read
void checkCloudData(std::span<Element*> clouds, PlainFile& data, Inspection& found);

} // namespace orvosky::inspect
