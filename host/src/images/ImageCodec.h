#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace host::images {

/// What is read: no file may take the memory or the time of the process.
inline constexpr std::uint64_t kMostFileBytes = std::uint64_t{512} << 20;
inline constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 27; ///< 16384 x 8192
inline constexpr int kLongestSide = 32768;                           ///< in pixels

/// Whether a file of that many bytes can hold so many pixels. The densest codings in use reach a few thousand to one;
/// small pictures are not worth the doubt.
constexpr bool credible(std::uint64_t fileBytes, std::uint64_t pixels) {
    return pixels <= (1u << 22) || pixels / 16384 <= fileBytes;
}

/// One line about a picture, in a file that holds more than pixels.
struct Note {
    std::string name, text; ///< as "Software" and the program's name; a name is letters alone
};

/// Pixels in memory: rows of 8-bit or float channels side by side, without padding.
struct PixelRows {
    int width = 0, height = 0, channels = 0;
    bool floats = false;
    const void* data = nullptr;
    std::span<const Note> notes{}; ///< written where values are floats, whose meaning a file does not tell: exr and hdr
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

/// Files of still images. The ending of the name, in any case, tells the format, and no other is tried: bmp, dds, exr,
/// hdr, jpg, png, pnm (pbm, pgm, ppm, pfm), tga, tif and their other spellings. Alpha is kept apart from the colours:
/// neither is multiplied by the other.
class ImageCodec {
public:
    virtual ~ImageCodec() = default;

    /// The formats that can be read, as in "bmp, dds, ..."; empty when a file named `path` is of one of them.
    virtual std::string otherFormats(const std::string& path) = 0;
    /// Opens the bytes of a file named `path`. Null with a text of one line when they are no image of its format.
    /// Throws std::exception.
    virtual std::unique_ptr<ImageReader> open(const std::string& path, std::vector<unsigned char> file,
                                              std::string& error) = 0;

    enum class Alpha { Kept, Dropped };
    /// Whether files whose names end as `path` does can be written, and whether those have alpha. Formats whose writers
    /// misbehave on a full disk do not count as known.
    virtual bool canWrite(const std::string& path, Alpha& alpha) = 0;
    /// Makes the bytes of a file named `path`, which must be one that can be written; of 4 channels the last is left
    /// out where there is no alpha, as of 2. Floats go into exr files as 16 bits where all fit into them. Empty when
    /// all went well, else a text of one line. Throws std::exception.
    virtual std::string encode(const std::string& path, const PixelRows& pixels, std::vector<unsigned char>& file) = 0;

    /// Resamples all of `from` to width x height pixels at `to`, with a filter that does not ring. Throws
    /// std::exception.
    virtual bool resize(const PixelRows& from, int width, int height, void* to, std::ptrdiff_t pixelStep,
                        std::ptrdiff_t rowStep) = 0;
};

/// The one codec. It lives in a module beside this library, which is loaded on first use: what it depends on takes far
/// longer to load than everything else. Throws std::runtime_error when the module is missing or broken.
ImageCodec& imageCodec();

/// Opens a file that keeps to the limits above and whose size is credible for so many pixels: one flat image, of at
/// least one channel. Null with a text of one line, which names a limit that is exceeded. Throws std::exception.
std::unique_ptr<ImageReader> openImage(const std::string& path, std::string& error);
/// The same for the bytes of a file of that name.
std::unique_ptr<ImageReader> openImage(const std::string& path, std::vector<unsigned char> file, std::string& error);

} // namespace host::images
