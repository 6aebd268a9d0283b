#include "Textures.h"

#include "DdsImage.h"
#include "FileBytes.h"
#include "FileSystem.h"
#include "HostText.h"
#include "Messages.h"
#include "TargaImage.h"

#include <maya/MImage.h>

#include <algorithm>
#include <climits>
#include <new>
#include <utility>
#include <vector>

namespace orvo {
namespace {

constexpr std::size_t checkerSide = 128;

std::uint64_t budgetLimit = TextureBudget::usual, budgetUsed = 0;

/// Makes rows of pixels follow each other without padding while it lives, as all pictures here do.
class UnpackScope {
public:
    UnpackScope() {
        for (Setting& s : settings_) {
            glGetIntegerv(s.name, &s.before);
            glPixelStorei(s.name, s.name == GL_UNPACK_ALIGNMENT ? 1 : 0);
        }
    }
    ~UnpackScope() {
        for (const Setting& s : settings_) glPixelStorei(s.name, s.before);
    }
    UnpackScope(const UnpackScope&) = delete;
    UnpackScope& operator=(const UnpackScope&) = delete;

private:
    struct Setting {
        GLenum name;
        GLint before = 0;
    };
    std::array<Setting, 5> settings_{Setting{GL_UNPACK_ALIGNMENT}, Setting{GL_UNPACK_ROW_LENGTH},
                                     Setting{GL_UNPACK_SKIP_ROWS}, Setting{GL_UNPACK_SKIP_PIXELS},
                                     Setting{GL_UNPACK_SWAP_BYTES}};
};

void setParameter(GLenum target, GLenum name, GLenum value) {
    glTexParameteri(target, name, static_cast<GLint>(value));
}

/// Level 0 of one image, by the format: bytes as they are or compressed.
void putImage(GLenum target, int width, int height, const void* pixels, GLenum format, int byteSize) {
    if (format == GL_RGBA || format == GL_RGB)
        glTexImage2D(target, 0, static_cast<GLint>(format), width, height, 0, format, GL_UNSIGNED_BYTE, pixels);
    else
        gl().compressedTexImage2D(target, 0, format, width, height, 0, byteSize, pixels);
}

/// What one image takes in the GL's memory, about.
std::uint64_t bytesOf(int width, int height, GLenum format, int byteSize) {
    if (format != GL_RGBA && format != GL_RGB) return static_cast<std::uint64_t>(std::max(byteSize, 0));
    return static_cast<std::uint64_t>(std::max(width, 0)) * static_cast<std::uint64_t>(std::max(height, 0)) * 4;
}

/// With all smaller levels.
std::uint64_t bytesWithLevels(std::uint64_t bytes, bool mipmaps) { return mipmaps ? bytes + bytes / 3 : bytes; }

/// Gives the handle a new, bound 2D texture and fills it with `put`; `bytes` is for level 0.
template <class Put>
bool upload2D(TextureHandle& handle, const void* pixels, std::uint64_t bytes, const TextureSampling& sampling,
              const Put& put) {
    handle.release();
    if (!pixels) return false;
    forgetGlErrors();
    if (!handle.generate(bytesWithLevels(bytes, sampling.mipmaps))) return false;
    glBindTexture(GL_TEXTURE_2D, handle.name());
    const GLenum filter = sampling.linear ? GL_LINEAR : GL_NEAREST;
    const GLenum mipmapFilter = sampling.linear ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_NEAREST;
    setParameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, sampling.repeatS ? GL_REPEAT : GL_CLAMP_TO_EDGE);
    setParameter(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, sampling.repeatT ? GL_REPEAT : GL_CLAMP_TO_EDGE);
    setParameter(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    setParameter(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, sampling.mipmaps ? mipmapFilter : filter);
    if (sampling.mipmaps) setParameter(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
    {
        const UnpackScope scope;
        put();
    }
    if (glGetError() == GL_NO_ERROR) return true;
    handle.release();
    return false;
}

/// The text behind the last dot of the file's name, in lower case; empty without one.
std::string extensionOf(const std::string& path) {
    const std::size_t dot = path.find_last_of(".\\/");
    if (dot == std::string::npos || path[dot] != '.') return {};
    std::string extension = path.substr(dot + 1);
    for (char& c : extension)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return extension;
}

void reportProblem(const std::string& path, const std::string& problem) {
    if (problem == badRead)
        reportError("%s", problem);
    else
        reportError("%s: %s.", path, problem);
}

bool exceeds(const std::string& problem) { return !problem.empty() && problem != badRead; }

/// Whether the budget has room for a texture; says so when it has not.
bool affordable(const std::string& path, std::uint64_t bytes) {
    if (bytes <= budgetLimit && budgetUsed <= budgetLimit - bytes) return true;
    reportError("%s: it takes %d bytes as a texture, and the others of the scene %d; at most %d in all are loaded.",
                path, bytes, budgetUsed, budgetLimit);
    return false;
}

enum class Loaded { Yes, No, Refused /* the file is beyond a limit, for whatever reads it */ };

/// Uploads a DDS picture as it is. No for one that is not of `channels` components or that the GL refuses.
Loaded loadDds(TextureHandle& handle, const std::string& path, const TextureSampling& sampling, int channels) {
    nv_dds::CTexture picture;
    std::string problem;
    const bool read = picture.load(path, true, &problem);
    if (!problem.empty()) reportProblem(path, problem);
    if (!read) return exceeds(problem) ? Loaded::Refused : Loaded::No;
    if (picture.isCubeMap()) return Loaded::No;
    const nv_dds::CSurface& top = picture.images().front();
    if (top.depth != 1 || picture.components() != channels || top.width == 0 || top.height == 0) return Loaded::No;
    // The host's reader shows a picture in its place where turning the blocks would shift it.
    if (!picture.isExact() || top.size() > INT_MAX) return Loaded::No;
    if (!affordable(path, bytesWithLevels(top.size(), sampling.mipmaps))) return Loaded::Refused;
    const bool uploaded = uploadTexture2D(handle, static_cast<int>(top.width), static_cast<int>(top.height),
                                          top.pixels.data(), sampling, picture.format(), static_cast<int>(top.size()));
    return uploaded ? Loaded::Yes : Loaded::No;
}

bool affordableRgba(const std::string& path, int width, int height, const TextureSampling& sampling) {
    return affordable(path, bytesWithLevels(bytesOf(width, height, GL_RGBA, 0), sampling.mipmaps));
}

bool loadTarga(TextureHandle& handle, const std::string& path, const TextureSampling& sampling, int channels) {
    CTargaImage picture;
    std::string problem;
    if (!picture.load(path, &problem)) {
        if (exceeds(problem)) reportProblem(path, problem);
        return false;
    }
    if (!affordableRgba(path, picture.width(), picture.height(), sampling)) return false;
    picture.convert(channels);
    return uploadTexture2D(handle, picture.width(), picture.height(), picture.pixels().data(), sampling,
                           channels == 4 ? GL_RGBA : GL_RGB, 0);
}

bool loadByHost(TextureHandle& handle, const std::string& path, const TextureSampling& sampling, int channels) {
    const auto place = existingPath(path);
    MImage picture;
    unsigned int width = 0, height = 0;
    if (!place || !fileExists(*place)) return false; // an empty path is that of the project's folder
    const auto state = fileState(*place);
    if (!state) return false;
    // The host's own limits may be wider.
    std::string problem;
    if (!fewEnoughBytes(state->size, &problem)) {
        reportProblem(path, problem);
        return false;
    }
    if (picture.readFromFile(hostText(*place)).error() || picture.getSize(width, height).error()) return false;
    const unsigned char* rgba = picture.pixels();
    if (!rgba || width > INT_MAX || height > INT_MAX) return false;
    const int w = static_cast<int>(width), h = static_cast<int>(height);
    if (!fewEnoughPixels(width, height, &problem)) {
        reportProblem(path, problem);
        return false;
    }
    if (!affordableRgba(path, w, h, sampling)) return false;
    if (channels == 4) return uploadTexture2DRgba(handle, w, h, rgba, sampling);
    const std::size_t count = std::size_t{width} * height;
    std::vector<unsigned char> rgb(count * 3);
    for (std::size_t i = 0; i < count; ++i) std::copy_n(rgba + i * 4, 3, rgb.data() + i * 3);
    return uploadTexture2DRgb(handle, w, h, rgb.data(), sampling);
}

bool loadTexture(TextureHandle& handle, const std::string& path, const TextureSampling& sampling, int channels) {
    handle.release();
    try {
        const std::string extension = extensionOf(path);
        if (extension == "tga") return loadTarga(handle, path, sampling, channels);
        if (extension == "dds") {
            const Loaded loaded = loadDds(handle, path, sampling, channels);
            if (loaded != Loaded::No) return loaded == Loaded::Yes;
        }
        return loadByHost(handle, path, sampling, channels);
    } catch (const std::bad_alloc&) {
        handle.release();
        return false;
    }
}

/// The checkerboard with four bytes a pixel; channels beyond `channels` are full.
std::vector<unsigned char> checkerPixels(int channels, const CheckerChannels& values) {
    std::vector<unsigned char> pixels(checkerSide * checkerSide * 4, 255);
    for (std::size_t y = 0; y < checkerSide; ++y)
        for (std::size_t x = 0; x < checkerSide; ++x) {
            const int pattern = (x % 16 < 8) == (y % 16 < 8) ? 32 : 255;
            for (std::size_t c = 0; c < static_cast<std::size_t>(channels); ++c)
                pixels[(y * checkerSide + x) * 4 + c] =
                    static_cast<unsigned char>(values[c] < 0 ? pattern : std::min(values[c], 255));
        }
    return pixels;
}

} // namespace

void TextureHandle::release() {
    if (name_ != 0) glDeleteTextures(1, &name_);
    name_ = 0;
    budgetUsed -= bytes_;
    bytes_ = 0;
}

std::uint32_t TextureHandle::generate(std::uint64_t bytes) {
    release();
    glGenTextures(1, &name_);
    if (name_ != 0) budgetUsed += bytes_ = bytes;
    return name_;
}

std::uint64_t TextureBudget::used() { return budgetUsed; }
std::uint64_t TextureBudget::limit() { return budgetLimit; }
std::uint64_t TextureBudget::setLimit(std::uint64_t bytes) { return std::exchange(budgetLimit, bytes); }

bool uploadTexture2D(TextureHandle& handle, int width, int height, const void* pixels, const TextureSampling& sampling,
                     GLenum format, int byteSize) {
    return upload2D(handle, pixels, bytesOf(width, height, format, byteSize), sampling,
                    [&] { putImage(GL_TEXTURE_2D, width, height, pixels, format, byteSize); });
}

bool uploadTexture2DRgba(TextureHandle& handle, int width, int height, const void* pixels,
                         const TextureSampling& sampling) {
    return uploadTexture2D(handle, width, height, pixels, sampling, GL_RGBA, 0);
}

bool uploadTexture2DRgb(TextureHandle& handle, int width, int height, const void* pixels,
                        const TextureSampling& sampling) {
    return uploadTexture2D(handle, width, height, pixels, sampling, GL_RGB, 0);
}

bool uploadTexture2DFloatRgb(TextureHandle& handle, int width, int height, const float* pixels,
                             const TextureSampling& sampling) {
    return upload2D(handle, pixels, bytesOf(width, height, GL_RGBA, 0) * 2, sampling,
                    [&] { glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB16F_ARB, width, height, 0, GL_RGB, GL_FLOAT, pixels); });
}

bool uploadCubeMap(TextureHandle& handle, int size, const std::array<const void*, 6>& faces, bool linear, GLenum format,
                   int byteSize) {
    handle.release();
    if (std::find(faces.begin(), faces.end(), nullptr) != faces.end()) return false;
    forgetGlErrors();
    if (!handle.generate(faces.size() * bytesOf(size, size, format, byteSize))) return false;
    glBindTexture(GL_TEXTURE_CUBE_MAP, handle.name());
    for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        setParameter(GL_TEXTURE_CUBE_MAP, wrap, GL_CLAMP_TO_EDGE);
    for (const GLenum filter : {GL_TEXTURE_MAG_FILTER, GL_TEXTURE_MIN_FILTER})
        setParameter(GL_TEXTURE_CUBE_MAP, filter, linear ? GL_LINEAR : GL_NEAREST);
    const UnpackScope scope;
    for (GLenum face = 0; face < faces.size(); ++face) {
        putImage(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, size, size, faces[face], format, byteSize);
        if (glGetError() == GL_NO_ERROR) continue;
        handle.release();
        return false;
    }
    return true;
}

bool loadTextureRgb(TextureHandle& handle, const std::string& path, bool repeatS, bool repeatT, bool mipmaps) {
    return loadTexture(handle, path, {repeatS, repeatT, mipmaps, true}, 3);
}

bool loadTextureRgba(TextureHandle& handle, const std::string& path, bool repeatS, bool repeatT, bool mipmaps) {
    return loadTexture(handle, path, {repeatS, repeatT, mipmaps, true}, 4);
}

bool loadCubeMap(TextureHandle& handle, const std::string& path) {
    handle.release();
    try {
        nv_dds::CTexture picture;
        if (extensionOf(path).empty()) return false;
        std::string problem;
        const bool read = picture.load(path, false, &problem);
        if (!problem.empty()) reportProblem(path, problem);
        if (!read || !picture.isCubeMap()) return false;
        const nv_dds::CSurface& first = picture.images().front();
        if (first.width != first.height || first.depth != 1 || first.size() > INT_MAX) return false;
        if (!affordable(path, 6 * std::uint64_t{first.size()})) return false;
        std::array<const void*, 6> faces{};
        for (std::size_t i = 0; i < faces.size(); ++i) faces[i] = picture.images()[i].pixels.data();
        return uploadCubeMap(handle, static_cast<int>(first.width), faces, true, picture.format(),
                             static_cast<int>(first.size()));
    } catch (const std::bad_alloc&) {
        handle.release();
        return false;
    }
}

std::unique_ptr<TextureHandle> checkerboard(int channels, bool repeatS, bool repeatT, const CheckerChannels& values) {
    if (channels < 1 || channels > 4) return nullptr;
    auto handle = std::make_unique<TextureHandle>();
    const auto pixels = checkerPixels(channels, values);
    if (!uploadTexture2DRgba(*handle, checkerSide, checkerSide, pixels.data(), {repeatS, repeatT, true, true}))
        handle.reset();
    return handle;
}

std::unique_ptr<TextureHandle> checkerboardCubeMap(int channels, const CheckerChannels& values) {
    if (channels < 1 || channels > 4) return nullptr;
    auto handle = std::make_unique<TextureHandle>();
    const auto pixels = checkerPixels(channels, values);
    std::array<const void*, 6> faces;
    faces.fill(pixels.data());
    if (!uploadCubeMap(*handle, checkerSide, faces, true, GL_RGBA, static_cast<int>(pixels.size()))) handle.reset();
    return handle;
}

} // namespace orvo
