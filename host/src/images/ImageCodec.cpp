#include "images/ImageCodec.h"

#include <dlfcn.h>

#include <filesystem>
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

} // namespace

ImageCodec& imageCodec() {
    static ImageCodec& codec = load();
    return codec;
}

} // namespace host::images
