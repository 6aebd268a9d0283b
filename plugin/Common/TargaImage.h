#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvo {

/// A picture from a TGA file: bytes side by side, grey (1 a pixel), red-green-blue (3) or red-green-blue-alpha (4), the
/// bottom row first, each row from the left, without padding.
class CTargaImage {
public:
    /// The longest side that is read, in pixels.
    static constexpr int maxSide = 32768;

    int width() const { return width_; }
    int height() const { return height_; }
    int bytesPerPixel() const { return bytesPerPixel_; }
    const std::vector<std::uint8_t>& pixels() const { return pixels_; }

    /// Decodes the bytes of a file of type 2, 3, 10 or 11 (true colour or grey, plain or run-length) with 8, 24 or 32
    /// bits a pixel. A file whose descriptor puts the first pixel at the top or on the right is turned. False, with the
    /// picture empty, for anything else: other types, no pixels, a side longer than maxSide, too few bytes, or a
    /// packet that runs past the last pixel; and, with `problem` (when given) set, for more than orvo::maxPixels. Bytes
    /// behind the pixels are ignored. No more is allocated than the bytes can yield.
    bool read(std::span<const std::uint8_t> file, std::string* problem = nullptr);
    /// The same for the file at `path`; `problem` is also set for a short read and one of more than orvo::maxFileBytes.
    bool load(const std::string& path, std::string* problem = nullptr);

    /// Turns the pixels into 3 or 4 bytes each: grey is repeated, alpha is dropped or becomes 255.
    void convert(int bytesPerPixel);

    /// Takes a picture of 1, 3 or 4 bytes a pixel in the layout above. False, with nothing changed, when a size is not
    /// 1 to maxSide or `pixels` has another length.
    bool assign(int width, int height, int bytesPerPixel, std::vector<std::uint8_t> pixels);
    /// The picture as a TGA file of type 2, or 3 when it is grey, without compression, the bottom row first. Nothing
    /// for an empty picture.
    std::vector<std::uint8_t> encode() const;
    /// Writes that file. False when the picture is empty or not all of it reached the disk.
    bool save(const std::string& path) const;

private:
    bool decode(std::span<const std::uint8_t> file, std::string* problem);

    int width_ = 0, height_ = 0, bytesPerPixel_ = 0;
    std::vector<std::uint8_t> pixels_;
};

} // namespace orvo
