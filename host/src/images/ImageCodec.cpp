#include "images/ImageCodec.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace host::images {
namespace {

constexpr const char* kModule = "orvohost_images.so";

/// The folder of the library that this function is in.
std::filesystem::path ownFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&imageCodec), &info) == 0 || !info.dli_fname) return {};
    return std::filesystem::path(info.dli_fname).parent_path();
}

ImageCodec& load() {
    const std::filesystem::path file = ownFolder() / kModule;
    // Never unloaded: libraries below it do not stand that.
    void* module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) throw std::runtime_error(std::string("no images without the host's module: ") + dlerror());
    const auto codec = reinterpret_cast<ImageCodec* (*)()>(dlsym(module, "orvohost_imageCodec"));
    if (!codec) throw std::runtime_error(file.string() + " is not the host's module for images");
    return *codec();
}

std::string reasonAgainst(const ImageReader& image, std::uint64_t fileBytes) {
    if (image.width < 1 || image.height < 1 || image.channels < 1 || image.depth > 1)
        return fmt::format("its size of {} x {} x {} pixels and {} channels is not one of a flat picture", image.width,
                           image.height, image.depth, image.channels);
    const std::uint64_t pixels = static_cast<std::uint64_t>(image.width) * static_cast<std::uint64_t>(image.height);
    if (image.width > kLongestSide || image.height > kLongestSide || pixels > kMostPixels)
        return fmt::format("it has {} x {} pixels; at most {} in all and {} a side are read", image.width, image.height,
                           kMostPixels, kLongestSide);
    if (!credible(fileBytes, pixels))
        return fmt::format("it is too short for the {} x {} pixels that it claims", image.width, image.height);
    return {};
}

} // namespace

ImageCodec& imageCodec() {
    static ImageCodec& codec = load();
    return codec;
}

std::unique_ptr<ImageReader> openImage(const std::string& path, std::string& error) {
    namespace fs = std::filesystem;
    const auto fail = [&](std::string reason) {
        error = std::move(reason);
        return nullptr;
    };
    std::error_code code;
    if (!fs::is_regular_file(path, code)) return fail("there is no such file");
    if (const std::string formats = imageCodec().otherFormats(path); !formats.empty())
        return fail("its name does not end as one of the images that are read: " + formats);
    const std::uint64_t size = fs::file_size(path, code);
    if (code) return fail(code.message());
    if (size > kMostFileBytes)
        return fail(fmt::format("it has {} bytes; at most {} are read of an image", size, kMostFileBytes));
    std::ifstream in(path, std::ios::binary);
    std::vector<unsigned char> file(static_cast<std::size_t>(size));
    if (!in.read(reinterpret_cast<char*>(file.data()), static_cast<std::streamsize>(size)))
        return fail("it cannot be read");
    return openImage(path, std::move(file), error);
}

std::unique_ptr<ImageReader> openImage(const std::string& path, std::vector<unsigned char> file, std::string& error) {
    const std::uint64_t size = file.size();
    if (size == 0) {
        error = "it is empty";
        return nullptr;
    }
    auto image = imageCodec().open(path, std::move(file), error);
    if (!image) return nullptr;
    error = reasonAgainst(*image, size);
    return error.empty() ? std::move(image) : nullptr;
}

} // namespace host::images
