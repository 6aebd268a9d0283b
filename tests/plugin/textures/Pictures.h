#pragma once

#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// The pictures of tests/data/textures; make.sh there tells what they show.
namespace pictures {

using Bytes = std::vector<std::uint8_t>;
using Pixel = std::array<int, 4>;

enum class Kind { Colour, Alpha, Grey };

inline std::string path(const std::string& name) { return orvo::test::testData("textures/" + name); }

inline Bytes bytesOf(const std::string& name) {
    const std::string bytes = orvo::test::content(path(name));
    return {bytes.begin(), bytes.end()};
}

/// The pixel at column x of row y from the bottom of the 8 x 8 picture.
inline Pixel at(Kind kind, int x, int y) {
    const int quarter = (y >= 5 ? 0 : 2) + (x >= 4 ? 1 : 0);
    constexpr Pixel colours[]{{255, 0, 0, 255}, {0, 255, 0, 136}, {0, 0, 255, 68}, {255, 255, 0, 204}};
    constexpr int greys[]{0, 85, 170, 255};
    if (kind == Kind::Grey) return {greys[quarter], greys[quarter], greys[quarter], 255};
    Pixel pixel = colours[quarter];
    if (kind == Kind::Colour) pixel[3] = 255;
    return pixel;
}

} // namespace pictures
