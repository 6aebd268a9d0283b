#include "images/DdsCube.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace host::images {
namespace {

constexpr std::size_t kHeaderBytes = 128;

/// The header, by the published layout: 4 letters and 31 words.
std::array<unsigned char, kHeaderBytes> headerOf(int size) {
    std::array<unsigned char, kHeaderBytes> header{'D', 'D', 'S', ' '};
    const auto put = [&](std::size_t at, std::uint32_t word) {
        for (std::size_t i = 0; i < 4; ++i) header[at + i] = static_cast<unsigned char>(word >> 8 * i);
    };
    const auto side = static_cast<std::uint32_t>(size);
    put(4, 124);
    put(8, 0x100f); // caps, height, width, pitch and pixel format are there
    put(12, side);
    put(16, side);
    put(20, side * 4);
    put(76, 32);
    put(80, 0x41); // RGB with alpha
    put(88, 32);
    put(92, 0xff0000);
    put(96, 0xff00);
    put(100, 0xff);
    put(104, 0xff000000);
    put(108, 0x1008); // a texture, of more than one surface
    put(112, 0xfe00); // a cube map with all of its faces
    return header;
}

std::size_t bytesOf(int size) {
    return std::size_t{4} * static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
}

} // namespace

std::vector<unsigned char> ddsCube(int size, int channels, const std::array<const std::uint8_t*, 6>& faces) {
    std::vector<unsigned char> file;
    file.reserve(kHeaderBytes + 6 * bytesOf(size));
    const auto header = headerOf(size);
    file.insert(file.end(), header.begin(), header.end());
    for (const std::uint8_t* face : faces) {
        const std::uint8_t* const end = face + bytesOf(size) / 4 * static_cast<std::size_t>(channels);
        for (const std::uint8_t* p = face; p != end; p += channels) {
            const unsigned char pixel[] = {p[2], p[1], p[0], channels == 4 ? p[3] : std::uint8_t{255}};
            file.insert(file.end(), std::begin(pixel), std::end(pixel));
        }
    }
    return file;
}

bool isWholeDdsCube(const std::string& path, int size) {
    std::error_code none;
    if (std::filesystem::file_size(path, none) != kHeaderBytes + 6 * bytesOf(size) || none) return false;
    std::array<unsigned char, kHeaderBytes> header{};
    std::ifstream in(path, std::ios::binary);
    return in.read(reinterpret_cast<char*>(header.data()), kHeaderBytes) && header == headerOf(size);
}

} // namespace host::images
