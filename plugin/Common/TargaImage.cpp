#include "TargaImage.h"

#include "FileBytes.h"
#include "OutputFile.h"

#include <algorithm>
#include <cstddef>

namespace orvo {
namespace {

using Bytes = std::span<const std::uint8_t>;

// Image types, and the bits of the descriptor (the last byte of the header).
constexpr int trueColour = 2, grey = 3, runLength = 8;
constexpr int fromRight = 0x10, fromTop = 0x20;
constexpr std::size_t headerSize = 18, longestPacket = 128;

std::size_t wordAt(Bytes bytes, std::size_t at) { return bytes[at] | static_cast<std::size_t>(bytes[at + 1]) << 8; }

/// Unpacks into the whole of `pixels`. False when the packets end early or do not end with the last pixel.
bool unpack(Bytes packets, std::size_t pixelSize, std::span<std::uint8_t> pixels) {
    std::size_t from = 0, to = 0;
    while (to < pixels.size()) {
        if (from == packets.size()) return false;
        const std::uint8_t head = packets[from++];
        const bool isRun = head & 0x80;
        const std::size_t size = ((head & 0x7fu) + 1) * pixelSize, stored = isRun ? pixelSize : size;
        if (size > pixels.size() - to || stored > packets.size() - from) return false;
        for (std::size_t i = 0; i < size; i += stored)
            std::copy_n(packets.begin() + static_cast<std::ptrdiff_t>(from), stored,
                        pixels.begin() + static_cast<std::ptrdiff_t>(to + i));
        from += stored;
        to += size;
    }
    return true;
}

void swapRedAndBlue(std::vector<std::uint8_t>& pixels, std::size_t pixelSize) {
    if (pixelSize < 3) return;
    for (std::size_t i = 0; i < pixels.size(); i += pixelSize) std::swap(pixels[i], pixels[i + 2]);
}

} // namespace

bool CTargaImage::read(Bytes file, std::string* problem) {
    *this = {};
    const bool whole = decode(file, problem);
    if (!whole) *this = {};
    return whole;
}

bool CTargaImage::load(const std::string& path, std::string* problem) {
    *this = {};
    const auto bytes = readFileBytes(path, problem);
    return bytes && read(*bytes, problem);
}

bool CTargaImage::decode(Bytes file, std::string* problem) {
    if (file.size() < headerSize) return false;
    const int type = file[2], kind = type & ~runLength, descriptor = file[17];
    const std::size_t bits = file[16], pixelSize = bits / 8;
    const std::size_t width = wordAt(file, 12), height = wordAt(file, 14);
    if ((kind != trueColour && kind != grey) || (bits != 8 && bits != 24 && bits != 32)) return false;
    if (width < 1 || width > maxSide || height < 1 || height > maxSide) return false;
    if (!fewEnoughPixels(width, height, problem)) return false;

    // The identification, then a palette that a true-colour file may carry for displays that need one.
    const std::size_t palette = file[1] ? wordAt(file, 5) * ((file[7] + std::size_t{7}) / 8) : 0;
    const std::size_t start = headerSize + file[0] + palette;
    if (start > file.size()) return false;
    const Bytes data = file.subspan(start);

    // A packet of one pixel's bytes and its head yields 128 pixels at most.
    const std::uint64_t size = std::uint64_t{width} * height * pixelSize;
    const bool packed = type & runLength;
    const std::uint64_t most = packed ? data.size() / (pixelSize + 1) * longestPacket * pixelSize : data.size();
    if (size > most) return false;
    pixels_.resize(static_cast<std::size_t>(size));
    if (!packed)
        std::copy_n(data.begin(), pixels_.size(), pixels_.begin());
    else if (!unpack(data, pixelSize, pixels_))
        return false;

    width_ = static_cast<int>(width);
    height_ = static_cast<int>(height);
    bytesPerPixel_ = static_cast<int>(pixelSize);
    swapRedAndBlue(pixels_, pixelSize);
    const std::size_t rowSize = width * pixelSize;
    if (descriptor & fromTop)
        for (std::size_t y = 0; y < height / 2; ++y)
            std::swap_ranges(pixels_.begin() + static_cast<std::ptrdiff_t>(y * rowSize),
                             pixels_.begin() + static_cast<std::ptrdiff_t>((y + 1) * rowSize),
                             pixels_.begin() + static_cast<std::ptrdiff_t>((height - 1 - y) * rowSize));
    if (descriptor & fromRight)
        for (std::size_t row = 0; row < pixels_.size(); row += rowSize)
            for (std::size_t x = 0; x < width / 2; ++x)
                std::swap_ranges(pixels_.begin() + static_cast<std::ptrdiff_t>(row + x * pixelSize),
                                 pixels_.begin() + static_cast<std::ptrdiff_t>(row + (x + 1) * pixelSize),
                                 pixels_.begin() + static_cast<std::ptrdiff_t>(row + (width - 1 - x) * pixelSize));
    return true;
}

void CTargaImage::convert(int bytesPerPixel) {
    if (bytesPerPixel == bytesPerPixel_ || pixels_.empty() || (bytesPerPixel != 3 && bytesPerPixel != 4)) return;
    const auto from = static_cast<std::size_t>(bytesPerPixel_), to = static_cast<std::size_t>(bytesPerPixel);
    const std::size_t count = pixels_.size() / from;
    std::vector<std::uint8_t> converted(count * to, 255);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t c = 0; c < 3; ++c) converted[i * to + c] = pixels_[i * from + (from == 1 ? 0 : c)];
    pixels_ = std::move(converted);
    bytesPerPixel_ = bytesPerPixel;
}

bool CTargaImage::assign(int width, int height, int bytesPerPixel, std::vector<std::uint8_t> pixels) {
    if (width < 1 || width > maxSide || height < 1 || height > maxSide) return false;
    if (bytesPerPixel != 1 && bytesPerPixel != 3 && bytesPerPixel != 4) return false;
    if (pixels.size() != std::uint64_t(width) * std::uint64_t(height) * std::uint64_t(bytesPerPixel)) return false;
    width_ = width;
    height_ = height;
    bytesPerPixel_ = bytesPerPixel;
    pixels_ = std::move(pixels);
    return true;
}

std::vector<std::uint8_t> CTargaImage::encode() const {
    if (pixels_.empty()) return {};
    const auto pixelSize = static_cast<std::size_t>(bytesPerPixel_);
    const auto low = [](int word) { return static_cast<std::uint8_t>(word & 0xff); };
    const auto high = [](int word) { return static_cast<std::uint8_t>(word >> 8); };
    const int alphaBits = bytesPerPixel_ == 4 ? 8 : 0;
    std::vector<std::uint8_t> body = pixels_;
    swapRedAndBlue(body, pixelSize);
    std::vector<std::uint8_t> file(headerSize);
    file.reserve(headerSize + body.size());
    file[2] = low(bytesPerPixel_ == 1 ? grey : trueColour);
    file[12] = low(width_);
    file[13] = high(width_);
    file[14] = low(height_);
    file[15] = high(height_);
    file[16] = low(bytesPerPixel_ * 8);
    file[17] = low(alphaBits);
    file.insert(file.end(), body.begin(), body.end());
    return file;
}

bool CTargaImage::save(const std::string& path) const {
    const std::vector<std::uint8_t> file = encode();
    if (file.empty()) return false;
    OutputFile out(path, "wb");
    out.write(file.data(), file.size());
    return out.close();
}

} // namespace orvo
