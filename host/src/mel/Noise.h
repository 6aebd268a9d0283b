#pragma once

namespace host::mel {

/// Perlin's improved noise: smooth, 0 at whole coordinates, within -1 and 1, the same everywhere and always. It repeats
/// every 256. Coordinates that are not finite give 0.
double noise(double x, double y = 0, double z = 0);

} // namespace host::mel
