#include "Failure.h"
#include "inspect/InspectionText.h"
#include "kit/TemporaryFolder.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

/// The inspection of any bytes: the text up to the first zero byte is the file, what follows it is the cloud data
/// beside it; without a zero byte there are none. A file is refused with a message for people, or told of in full.
namespace {

namespace fs = std::filesystem;

void require(bool condition) {
    if (!condition) std::abort();
}

void write(const fs::path& path, std::string_view bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    require(out.good());
}

/// Nothing that steers a terminal may come through.
void requirePlain(std::string_view text) {
    require(std::ranges::none_of(text, [](unsigned char c) { return (c < 0x20 && c != '\n') || c == 0x7f; }));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvosky::inspect;
    static const orvo::test::TemporaryFolder folder;
    const fs::path scene = folder / "sky.atmos", vertices = folder / "sky.cdata";
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::size_t end = bytes.find('\0');
    write(scene, bytes.substr(0, end));
    if (end == bytes.npos)
        fs::remove(vertices);
    else
        write(vertices, bytes.substr(end + 1));
    try {
        const Inspection found = inspectFile(scene.string());
        require(found.problems.texts().size() == std::min<std::size_t>(found.problems.count(), 100));
        requirePlain(asText(found));
        const auto json = nlohmann::json::parse(asJson(found));
        require(json["ok"] == (found.problems.count() == 0) && json["elements"].size() == found.elements.size());
        for (const std::string& text : found.problems.texts()) requirePlain(text);
    } catch (const orvosky::Failure& e) {
        require(*e.what() != '\0');
        requirePlain(e.what());
    }
    return 0;
}
