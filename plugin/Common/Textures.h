#pragma once

#include "GlFunctions.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

/// Textures of the viewport previews. Drawing thread only, with the viewport's context current.
namespace orvo {

/// The name of one GL texture, deleted with its holder; 0 when empty.
class TextureHandle {
public:
    TextureHandle() = default;
    ~TextureHandle() { release(); }
    TextureHandle(const TextureHandle&) = delete;
    TextureHandle& operator=(const TextureHandle&) = delete;

    std::uint32_t name() const { return name_; }
    explicit operator bool() const { return name_ != 0; }
    /// Deletes the texture, if there is one.
    void release();
    /// Releases, then makes and holds a new texture name, for pixels that take `bytes`.
    std::uint32_t generate(std::uint64_t bytes = 0);
    /// What the pixels take in the GL's memory, about: with mipmaps, four bytes for each RGB pixel.
    std::uint64_t bytes() const { return bytes_; }

private:
    std::uint32_t name_ = 0;
    std::uint64_t bytes_ = 0;
};

/// What all textures that live at one time, those of a scene, may take together. The loaders below keep to it.
class TextureBudget {
public:
    static constexpr std::uint64_t usual = std::uint64_t{2} << 30;

    /// The bytes of all textures now.
    static std::uint64_t used();
    static std::uint64_t limit();
    /// @return the limit before
    static std::uint64_t setLimit(std::uint64_t bytes);
};

/// How a 2D texture is sampled.
struct TextureSampling {
    bool repeatS = false, repeatT = false, mipmaps = false, linear = true;
};

/// @name Uploads
/// Each releases what the handle held, leaves the new texture bound and answers true; without pixels and after a GL
/// error (a side above GL_MAX_TEXTURE_SIZE among them) the handle is empty and the answer false. Pixels follow each
/// other without padding, the bottom row first; how the caller unpacks pixels is left as it was.
/// @{
/// GL_RGBA and GL_RGB as bytes; any other format as compressed data of `byteSize` bytes.
bool uploadTexture2D(TextureHandle& handle, int width, int height, const void* pixels, const TextureSampling& sampling,
                     GLenum format, int byteSize);
bool uploadTexture2DRgba(TextureHandle& handle, int width, int height, const void* pixels,
                         const TextureSampling& sampling);
bool uploadTexture2DRgb(TextureHandle& handle, int width, int height, const void* pixels,
                        const TextureSampling& sampling);
/// Three floats a pixel, kept as half floats.
bool uploadTexture2DFloatRgb(TextureHandle& handle, int width, int height, const float* pixels,
                             const TextureSampling& sampling);
/// Faces in the order +X, -X, +Y, -Y, +Z, -Z.
bool uploadCubeMap(TextureHandle& handle, int size, const std::array<const void*, 6>& faces, bool linear, GLenum format,
                   int byteSize);
/// @}

/// @name Loaders: an image file by its extension (tga, dds, anything else by the host's reader), linearly filtered
/// `path` is a full path, its extension in any case. Pictures come out right side up (the bottom row first), whatever
/// their file's order; a DDS picture that cannot go up as it is goes through the host's reader. False, with an empty
/// handle, when the file cannot be read or uploaded. A file of more than maxFileBytes, a picture of more than maxPixels
/// (FileBytes.h) and one for which the budget does not suffice are refused with an error that names file and limit.
/// @{
bool loadTextureRgb(TextureHandle& handle, const std::string& path, bool repeatS, bool repeatT, bool mipmaps);
bool loadTextureRgba(TextureHandle& handle, const std::string& path, bool repeatS, bool repeatT, bool mipmaps);
/// A DDS cube map of square faces, whatever its extension, in the file's order: +X, -X, +Y (overhead), -Y, +Z, -Z.
bool loadCubeMap(TextureHandle& handle, const std::string& path);
/// @}

/// One value per channel, 0 to 255, or -1 for the pattern.
using CheckerChannels = std::array<int, 4>;
/// A checkerboard of 128 by 128 pixels in fields of 8, of 32 and 255. `channels`, 1 to 4, is how many of `values` are
/// taken; the others are 255. Null when the upload fails.
std::unique_ptr<TextureHandle> checkerboard(int channels, bool repeatS, bool repeatT, const CheckerChannels& values);
std::unique_ptr<TextureHandle> checkerboardCubeMap(int channels, const CheckerChannels& values);

} // namespace orvo
