#pragma once

#include <span>

namespace host::images {

/// Makes sense of the pixel layout in the header of an uncompressed DDS file. Masks that name sound places for all
/// channels are left as they are. Where they do not, the usual layout of that many bits is put in: blue, green, red and
/// alpha (32 bits, flags 0x40 or 0x41), blue, green, red (24, flags 0x40), grey (8). False when there is none, and the
/// masks must not be followed: some readers look for the end of an empty mask for ever. False also for DXT2 and DXT4,
/// whose colours are multiplied by alpha: those readers divide by it, also where it is 0. True for any other file.
bool mendDdsHeader(std::span<unsigned char> file);

} // namespace host::images
