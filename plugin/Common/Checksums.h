#pragma once

#include <cstddef>
#include <cstdint>

namespace orvo {

/// CRC-32 of ISO 3309 and zip: polynomial 0x04C11DB7 reflected, initial value and final complement all ones.
std::uint32_t Crc32(const void* bytes, std::size_t length);
/// Of a text up to its terminating zero; 0 for a missing one.
std::uint32_t Crc32(const char* text);

/// CRC-16 with the CCITT polynomial 0x1021, not reflected, initial value 0x1D0F, without a final complement.
std::uint16_t Crc16(const void* bytes, std::size_t length);

} // namespace orvo
