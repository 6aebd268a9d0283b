#include "images/DdsHeader.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace host::images {
namespace {

// Places in the file, and flags of the pixel format.
constexpr std::size_t kFlags = 80, kCode = 84, kBits = 88, kMasks = 92, kHeaderEnd = 128;
constexpr std::uint32_t kAlpha = 0x1, kAlphaOnly = 0x2, kFourCode = 0x4, kRgb = 0x40, kLuminance = 0x20000;
constexpr std::uint32_t kDxt2 = 0x32545844, kDxt4 = 0x34545844; // "DXT2", "DXT4"

using Masks = std::array<std::uint32_t, 4>; // red, green, blue, alpha

std::uint32_t wordAt(std::span<const unsigned char> file, std::size_t at) {
    return file[at] | std::uint32_t{file[at + 1]} << 8 | std::uint32_t{file[at + 2]} << 16 |
           std::uint32_t{file[at + 3]} << 24;
}

void put(std::span<unsigned char> file, std::size_t at, std::uint32_t word) {
    for (std::size_t i = 0; i < 4; ++i) file[at + i] = static_cast<unsigned char>(word >> (8 * i));
}

/// Whether every channel that the flags ask for has bits side by side, of its own, within the pixel.
bool sound(std::uint32_t flags, std::uint32_t bits, const Masks& masks) {
    const bool rgb = (flags & kRgb) != 0, grey = (flags & kLuminance) != 0, alphaOnly = (flags & kAlphaOnly) != 0;
    if (rgb + grey + alphaOnly != 1 || bits < 8 || bits > 32 || bits % 8 != 0) return false;
    const std::array<bool, 4> asked{rgb || grey, rgb, rgb, alphaOnly || (flags & kAlpha) != 0};
    std::uint32_t taken = bits == 32 ? 0 : ~std::uint32_t{0} << bits;
    for (std::size_t i = 0; i < masks.size(); ++i) {
        if (!asked[i]) continue;
        const std::uint32_t run = masks[i] == 0 ? 0 : masks[i] >> std::countr_zero(masks[i]);
        if (run == 0 || (run & (run + 1)) != 0 || (taken & masks[i]) != 0) return false;
        taken |= masks[i];
    }
    return true;
}

} // namespace

bool mendDdsHeader(std::span<unsigned char> file) {
    if (file.size() < kHeaderEnd) return true;
    std::uint32_t flags = wordAt(file, kFlags);
    const std::uint32_t bits = wordAt(file, kBits);
    if ((flags & kFourCode) != 0) {
        const std::uint32_t code = wordAt(file, kCode);
        return code != kDxt2 && code != kDxt4;
    }
    Masks masks;
    for (std::size_t i = 0; i < masks.size(); ++i) masks[i] = wordAt(file, kMasks + 4 * i);
    if (sound(flags, bits, masks)) return true;
    if (bits == 8) {
        flags = kLuminance;
        masks = {0xff, 0, 0, 0};
    } else if ((bits == 32 && (flags == kRgb || flags == (kRgb | kAlpha))) || (bits == 24 && flags == kRgb)) {
        masks = {0xff0000, 0xff00, 0xff, bits == 32 ? 0xff000000 : 0};
    } else {
        return false;
    }
    put(file, kFlags, flags);
    for (std::size_t i = 0; i < masks.size(); ++i) put(file, kMasks + 4 * i, masks[i]);
    return true;
}

} // namespace host::images
