#include "Common/TargaImage.h"

#include <cstdlib>
#include <span>

/// Any bytes as a TGA file: what is read has the size that it claims, and comes back as it was from the file written
/// of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orvo::CTargaImage picture;
    if (!picture.read(std::span(data, size))) {
        if (!picture.pixels().empty()) std::abort();
        return 0;
    }
    const auto count = static_cast<std::size_t>(picture.width()) * static_cast<std::size_t>(picture.height());
    if (picture.pixels().size() != count * static_cast<std::size_t>(picture.bytesPerPixel())) std::abort();
    orvo::CTargaImage again;
    if (!again.read(picture.encode()) || again.pixels() != picture.pixels() || again.width() != picture.width())
        std::abort();
    picture.convert(4);
    picture.convert(3);
    if (picture.pixels().size() != count * 3) std::abort();
    return 0;
}
