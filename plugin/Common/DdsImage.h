#pragma once

#include "GlFunctions.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Pictures from DDS files (DirectDraw surfaces).
namespace orvo::nv_dds {

/// One image, with its smaller levels when it is the top one. Rows follow each other without padding, slices of a
/// volume too; compressed images are rows of blocks of 4 by 4 pixels.
struct CSurface {
    std::uint32_t width = 0, height = 0, depth = 1;
    std::vector<std::uint8_t> pixels;
    std::vector<CSurface> mipmaps;

    std::size_t size() const { return pixels.size(); }
    /// Turns this level (not its mipmaps) upside down. Blocks change their rows and the rows within. A height above 4
    /// that is no multiple of 4 cannot be turned without decompressing, since rows would have to change their
    /// block: the padded picture is turned then, which shifts the rows up by what the last row of blocks lacks.
    /// @return whether the result is exact
    bool flip(GLenum format);
};

/// A picture of one image, or of six for a cube map.
class CTexture {
public:
    /// The longest side that is read, in pixels.
    static constexpr std::uint32_t maxSide = 32768;

    /// Decodes the bytes of a file. `flip` turns an image and its levels upside down, so that the bottom row comes
    /// first; a cube map's faces stay as they are, but the second and the third (+Y and -Y) change places.
    /// Levels end with the one of a single pixel, whatever count the header gives. False, with the picture empty and
    /// not valid, for a file that is no DDS file, has another pixel format than
    ///   - DXT1 (3 components), DXT3, DXT5 (4)
    ///   - 32 bits a pixel with flags 0x40 or 0x41 (GL_BGRA_EXT, 4), 24 with 0x40 (GL_BGR_EXT, 3), 8 (GL_LUMINANCE, 1)
    /// or a side of 0 or above maxSide; and, with `problem` (when given) set, for one with more than orvo::maxPixels in
    /// an image, slices of a volume counted together, or (`badRead`) with fewer bytes than its header asks for. No more
    /// is allocated than the file holds.
    bool read(std::span<const std::uint8_t> file, bool flip, std::string* problem = nullptr);
    /// The same for the file at `path`; `problem` is also set for one of more than orvo::maxFileBytes.
    bool load(const std::string& path, bool flip, std::string* problem = nullptr);

    /// Whether the file at `path` begins as a cube map in DXT1, DXT3 or DXT5, which are the formats that GL takes as
    /// they are. Only its header is read.
    static bool isBlockCubeMap(const std::string& path);

    bool isValid() const { return valid_; }
    bool isCompressed() const { return compressed_; }
    bool isCubeMap() const { return cubeMap_; }
    bool isVolume() const { return volume_; }
    /// False when the top level could only be turned with an offset (CSurface::flip).
    bool isExact() const { return exact_; }
    /// GL_BGR_EXT, GL_BGRA_EXT, GL_LUMINANCE or a GL_COMPRESSED_RGBA_S3TC_* format.
    GLenum format() const { return format_; }
    int components() const { return components_; }
    /// One, or six in the order +X, -X, +Y, -Y, +Z, -Z; none while the picture is not valid.
    const std::vector<CSurface>& images() const { return images_; }

private:
    bool decode(std::span<const std::uint8_t> file, bool flip, std::string* problem);
    bool takeFormat(std::span<const std::uint8_t> header);
    std::uint64_t sizeOf(const CSurface& surface) const;

    bool valid_ = false, compressed_ = false, cubeMap_ = false, volume_ = false, exact_ = true;
    GLenum format_ = 0;
    int components_ = 0;
    std::vector<CSurface> images_;
};

} // namespace orvo::nv_dds
