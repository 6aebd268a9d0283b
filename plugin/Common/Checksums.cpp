#include "Checksums.h"

#include <array>
#include <cstring>

namespace orvo {
namespace {

constexpr std::array<std::uint32_t, 256> crc32Table = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t crc = i;
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (crc & 1 ? 0xEDB88320u : 0u);
        table[i] = crc;
    }
    return table;
}();

constexpr std::array<std::uint16_t, 256> crc16Table = [] {
    std::array<std::uint16_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t crc = i << 8;
        for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ (crc & 0x8000u ? 0x1021u : 0u);
        table[i] = static_cast<std::uint16_t>(crc);
    }
    return table;
}();

} // namespace

std::uint32_t Crc32(const void* bytes, std::size_t length) {
    const auto* p = static_cast<const unsigned char*>(bytes);
    std::uint32_t crc = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < length; ++i) crc = crc32Table[(crc ^ p[i]) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

std::uint32_t Crc32(const char* text) { return text ? Crc32(text, std::strlen(text)) : 0; }

std::uint16_t Crc16(const void* bytes, std::size_t length) {
    const auto* p = static_cast<const unsigned char*>(bytes);
    std::uint16_t crc = 0x1D0F;
    for (std::size_t i = 0; i < length; ++i)
        crc = static_cast<std::uint16_t>(crc16Table[(crc >> 8) ^ p[i]] ^ (crc << 8));
    return crc;
}

} // namespace orvo
