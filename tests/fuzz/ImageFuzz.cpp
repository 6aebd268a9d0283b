#include "images/ImageCodec.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <string>
#include <vector>

/// Any bytes as an image file for the host. The first byte, 'a' for the first, chooses the format. A file is refused
/// with a text of one line, or is a flat picture whose pixels go where they should and nowhere else.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace host::images;
    constexpr const char* endings[]{"bmp", "dds", "exr", "hdr", "jpg", "png", "ppm", "tga", "tif"};
    constexpr std::uint8_t untouched = 0xa5;
    const auto require = [](bool condition) {
        if (!condition) std::abort();
    };
    if (size == 0) return 0;
    const std::string name = std::string("picture.") + endings[(data[0] - std::size_t{'a'}) % std::size(endings)];
    try {
        std::string error;
        const auto image = openImage(name, std::vector<unsigned char>(data + 1, data + size), error);
        require(image ? error.empty() : !error.empty() && error.find('\n') == error.npos);
        if (!image) return 0;
        require(image->width > 0 && image->height > 0 && image->width <= kLongestSide && image->height <= kLongestSide);
        if (image->width * image->height > 1 << 16) return 0; // filling the memory would take all the time
        const bool floats = size % 2 == 0;
        const int count = std::min(image->channels, 4);
        const std::size_t pixelSize = 4 * (floats ? sizeof(float) : 1);
        const std::size_t rowSize = static_cast<std::size_t>(image->width) * pixelSize;
        std::vector<std::uint8_t> pixels(rowSize * static_cast<std::size_t>(image->height) + pixelSize, untouched);
        error = image->read(count, floats, pixels.data(), static_cast<std::ptrdiff_t>(pixelSize),
                            static_cast<std::ptrdiff_t>(rowSize));
        require(error.find('\n') == error.npos);
        for (std::size_t i = 1; i <= pixelSize; ++i) require(pixels[pixels.size() - i] == untouched);
    } catch (const std::exception&) { // what readers of damaged files may throw is the caller's to tell
    }
    return 0;
}
