#include "base/Modules.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace host {

std::filesystem::path hostFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&hostFolder), &info) == 0 || !info.dli_fname) return {};
    return std::filesystem::path(info.dli_fname).parent_path();
}

void* moduleFunction(const char* purpose, const char* module, const char* function) {
    const std::filesystem::path file = hostFolder() / module;
    void* loaded = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!loaded) throw std::runtime_error(std::string(purpose) + " without the host's module: " + dlerror());
    void* found = dlsym(loaded, function);
    if (!found) throw std::runtime_error(std::string(purpose) + ": " + file.string() + " is not the host's module");
    return found;
}

} // namespace host
