#include "DdsImage.h"

#include "FileBytes.h"
#include "FileSystem.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace orvo::nv_dds {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t headerSize = 124;
// Places in the header (behind the signature), and the bits that matter of two of its words.
constexpr std::size_t atHeight = 8, atWidth = 12, atDepth = 20, atLevels = 24, atFormatFlags = 76, atFourCode = 80,
                      atBits = 84, atCaps2 = 108;
constexpr std::uint32_t hasFourCode = 0x4, cubeMapBit = 0x200, volumeBit = 0x200000;

std::uint32_t wordAt(Bytes bytes, std::size_t at) {
    return bytes[at] | std::uint32_t{bytes[at + 1]} << 8 | std::uint32_t{bytes[at + 2]} << 16 |
           std::uint32_t{bytes[at + 3]} << 24;
}

bool isBlockFormat(GLenum format) {
    return format >= GL_COMPRESSED_RGB_S3TC_DXT1_EXT && format <= GL_COMPRESSED_RGBA_S3TC_DXT5_EXT;
}

/// The bytes of one block of 4 by 4 pixels.
std::size_t blockSize(GLenum format) { return format == GL_COMPRESSED_RGBA_S3TC_DXT1_EXT ? 8 : 16; }

/// Turns the first `rows` rows of a block of DXT5's alpha: two end values, then 16 indices of 3 bits, 12 bits a row.
void flipAlphaIndices(std::uint8_t* block, std::size_t rows) {
    std::uint64_t bits = 0, turned = 0;
    for (unsigned i = 0; i < 6; ++i) bits |= std::uint64_t{block[2 + i]} << (8 * i);
    for (std::size_t row = 0; row < 4; ++row) {
        const std::size_t source = row < rows ? rows - 1 - row : row;
        turned |= (bits >> (12 * source) & 0xfff) << (12 * row);
    }
    for (unsigned i = 0; i < 6; ++i) block[2 + i] = static_cast<std::uint8_t>(turned >> (8 * i));
}

void flipBlock(std::uint8_t* block, GLenum format, std::size_t rows) {
    std::uint8_t* colour = block;
    if (format == GL_COMPRESSED_RGBA_S3TC_DXT3_EXT) {
        // 16 alpha values of 4 bits: two bytes a row.
        for (std::size_t row = 0; row < rows / 2; ++row)
            std::swap_ranges(block + 2 * row, block + 2 * row + 2, block + 2 * (rows - 1 - row));
        colour += 8;
    } else if (format == GL_COMPRESSED_RGBA_S3TC_DXT5_EXT) {
        flipAlphaIndices(block, rows);
        colour += 8;
    }
    // Two end colours, then 16 indices of 2 bits: one byte a row.
    std::reverse(colour + 4, colour + 4 + rows);
}

} // namespace

bool CSurface::flip(GLenum format) {
    const bool blocks = isBlockFormat(format);
    const std::size_t slices = depth, rows = blocks ? (std::size_t{height} + 3) / 4 : height;
    if (slices == 0 || rows == 0) return true;
    const std::size_t rowSize = pixels.size() / slices / rows;
    for (std::size_t slice = 0; slice < slices; ++slice) {
        std::uint8_t* start = pixels.data() + slice * rows * rowSize;
        for (std::size_t y = 0; y < rows / 2; ++y)
            std::swap_ranges(start + y * rowSize, start + (y + 1) * rowSize, start + (rows - 1 - y) * rowSize);
    }
    if (!blocks) return true;
    for (std::size_t at = 0; at + blockSize(format) <= pixels.size(); at += blockSize(format))
        flipBlock(pixels.data() + at, format, std::min(std::size_t{height}, std::size_t{4}));
    return height < 4 || height % 4 == 0;
}

std::uint64_t CTexture::sizeOf(const CSurface& surface) const {
    const std::uint64_t width = surface.width, height = surface.height;
    const std::uint64_t slice = compressed_ ? (width + 3) / 4 * ((height + 3) / 4) * blockSize(format_)
                                            : width * height * static_cast<std::uint64_t>(components_);
    return slice * surface.depth;
}

bool CTexture::takeFormat(Bytes header) {
    const std::uint32_t flags = wordAt(header, atFormatFlags), bits = wordAt(header, atBits);
    const auto take = [this](GLenum format, int components) {
        format_ = format;
        components_ = components;
        return true;
    };
    if (flags & hasFourCode) {
        compressed_ = true;
        const auto isCode = [&](const char* code) { return std::memcmp(header.data() + atFourCode, code, 4) == 0; };
        if (isCode("DXT1")) return take(GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, 3);
        if (isCode("DXT3")) return take(GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, 4);
        if (isCode("DXT5")) return take(GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, 4);
        return false;
    }
    if ((flags == 0x41 || flags == 0x40) && bits == 32) return take(GL_BGRA_EXT, 4);
    if (flags == 0x40 && bits == 24) return take(GL_BGR_EXT, 3);
    return bits == 8 && take(GL_LUMINANCE, 1);
}

bool CTexture::read(Bytes file, bool flip, std::string* problem) {
    *this = {};
    const bool whole = decode(file, flip, problem);
    if (!whole) *this = {};
    valid_ = whole;
    return whole;
}

bool CTexture::load(const std::string& path, bool flip, std::string* problem) {
    *this = {};
    const auto bytes = readFileBytes(path, problem);
    return bytes && read(*bytes, flip, problem);
}

bool CTexture::isBlockCubeMap(const std::string& path) {
    std::array<std::uint8_t, 4 + headerSize> begin{};
    std::FILE* file = openFile(path, "rb");
    if (!file) return false;
    const bool whole = std::fread(begin.data(), begin.size(), 1, file) == 1;
    std::fclose(file);
    if (!whole || std::memcmp(begin.data(), "DDS ", 4) != 0) return false;
    const Bytes header = Bytes(begin).subspan(4);
    CTexture picture;
    return (wordAt(header, atCaps2) & cubeMapBit) && picture.takeFormat(header) && picture.isCompressed();
}

bool CTexture::decode(Bytes file, bool flip, std::string* problem) {
    const auto tooShort = [problem] {
        if (problem) *problem = badRead;
        return false;
    };
    if (file.size() < 4 || std::memcmp(file.data(), "DDS ", 4) != 0) return false;
    if (file.size() < 4 + headerSize) return tooShort();
    const Bytes header = file.subspan(4, headerSize);
    Bytes data = file.subspan(4 + headerSize);

    CSurface top;
    top.width = wordAt(header, atWidth);
    top.height = wordAt(header, atHeight);
    cubeMap_ = wordAt(header, atCaps2) & cubeMapBit;
    volume_ = (wordAt(header, atCaps2) & volumeBit) && wordAt(header, atDepth) > 0;
    top.depth = volume_ ? wordAt(header, atDepth) : 1;
    const std::uint32_t levels = std::max(wordAt(header, atLevels), std::uint32_t{1});
    for (const std::uint32_t side : {top.width, top.height, top.depth})
        if (side < 1 || side > maxSide) return false;
    if (!fewEnoughPixels(top.width, std::uint64_t{top.height} * top.depth, problem)) return false;
    if (!takeFormat(header)) return false;

    const bool flips = flip && !cubeMap_;
    const auto take = [&](CSurface& surface, bool isTop) {
        const std::uint64_t size = sizeOf(surface);
        if (size > data.size()) return tooShort();
        surface.pixels.assign(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
        data = data.subspan(static_cast<std::size_t>(size));
        if (flips && !surface.flip(format_) && isTop) exact_ = false;
        return true;
    };
    for (int face = 0; face < (cubeMap_ ? 6 : 1); ++face) {
        CSurface image = top;
        if (!take(image, true)) return false;
        for (std::uint32_t level = 1; level < levels; ++level) {
            const std::uint32_t width = level < 32 ? top.width >> level : 0,
                                height = level < 32 ? top.height >> level : 0;
            if (width == 0 && height == 0) break;
            CSurface mipmap;
            mipmap.width = std::max(width, std::uint32_t{1});
            mipmap.height = std::max(height, std::uint32_t{1});
            mipmap.depth = std::max(top.depth >> level, std::uint32_t{1});
            if (!take(mipmap, false)) return false;
            image.mipmaps.push_back(std::move(mipmap));
        }
        images_.push_back(std::move(image));
    }
    if (cubeMap_ && flip) std::swap(images_[2], images_[3]);
    return true;
}

} // namespace orvo::nv_dds
