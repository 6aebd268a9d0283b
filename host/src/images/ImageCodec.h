#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace host::images {

/// Pixels in memory: rows of 8-bit or float channels side by side, without padding.
struct PixelRows {
    int width = 0, height = 0, channels = 0;
    bool floats = false;
    const void* data = nullptr;
};

/// An image file that is open for reading.
class ImageReader {
public:
    virtual ~ImageReader() = default;

    int width = 0, height = 0, depth = 0, channels = 0;
    bool floats = false; ///< whether the file stores fractions

    /// Reads the first `count` channels of all pixels, as bytes or floats. The file's top left pixel goes to `to`; the
    /// steps are in bytes. Empty when all went well, else a text of one line. Throws std::exception.
    virtual std::string read(int count, bool asFloats, void* to, std::ptrdiff_t pixelStep, std::ptrdiff_t rowStep) = 0;
};

/// Image files of all formats. Alpha is kept apart from the colours: neither is multiplied by the other.
class ImageCodec {
public:
    virtual ~ImageCodec() = default;

    /// Null with a text of one line when the file cannot be opened as an image. Throws std::exception.
    virtual std::unique_ptr<ImageReader> open(const std::string& path, std::string& error) = 0;

    enum class Alpha { Kept, Dropped };
    /// Whether files whose names end as `path` does can be written, and whether those have alpha. Formats whose writers
    /// misbehave on a full disk do not count as known.
    virtual bool canWrite(const std::string& path, Alpha& alpha) = 0;
    /// Makes the bytes of a file named `path`, which must be one that can be written; of 4 channels the last is left
    /// out where there is no alpha, as of 2. Empty when all went well, else a text of one line. Throws std::exception.
    virtual std::string encode(const std::string& path, const PixelRows& pixels, std::vector<unsigned char>& file) = 0;

    /// Resamples all of `from` to width x height pixels at `to`, with a filter that does not ring. Throws
    /// std::exception.
    virtual bool resize(const PixelRows& from, int width, int height, void* to, std::ptrdiff_t pixelStep,
                        std::ptrdiff_t rowStep) = 0;
};

/// The one codec. It lives in a module beside this library, which is loaded on first use: what it depends on takes far
/// longer to load than everything else. Throws std::runtime_error when the module is missing or broken.
ImageCodec& imageCodec();

} // namespace host::images
