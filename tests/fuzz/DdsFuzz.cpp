#include "Common/DdsImage.h"

#include <cstdlib>
#include <span>

/// Any bytes as a DDS file: no more is read than there is, reading does not hang on the flip flag, and a level turned
/// twice is as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvo::nv_dds;
    CTexture plain, turned;
    const bool read = plain.read(std::span(data, size), false);
    if (turned.read(std::span(data, size), true) != read || plain.isValid() != read) std::abort();
    if (plain.images().size() != (!read ? 0u : plain.isCubeMap() ? 6u : 1u)) std::abort();
    std::size_t total = 0;
    for (std::size_t i = 0; i < plain.images().size(); ++i) {
        CSurface image = turned.images()[i];
        if (image.mipmaps.size() != plain.images()[i].mipmaps.size()) std::abort();
        total += image.size();
        for (const CSurface& level : image.mipmaps) total += level.size();
        if (plain.isCubeMap()) continue;
        image.flip(plain.format());
        if (image.pixels != plain.images()[i].pixels) std::abort();
    }
    if (total > size) std::abort();
    return 0;
}
