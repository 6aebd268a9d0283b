#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host::images {

/// The bytes of a DDS file of a cube map: six faces of `size` x `size` pixels without smaller levels, each pixel blue,
/// green, red and alpha in 8 bits, which is not multiplied in. The faces are RGB or RGBA, top row first, in the order
/// +X, -X, +Y, -Y, +Z, -Z.
std::vector<unsigned char> ddsCube(int size, int channels, const std::array<const std::uint8_t*, 6>& faces);

/// Whether a file is one of ddsCube's, of that size, to its last byte.
bool isWholeDdsCube(const std::string& path, int size);

} // namespace host::images
