#include "NamedFiles.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <fstream>

namespace orvosky::inspect {
namespace {

namespace fs = std::filesystem;

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::equal(a, b, {}, lower, lower);
}

/// The project's root: beside "artsource" when that is the workspace. Empty when there is none.
fs::path projectRoot(const fs::path& named, const fs::path& file) {
    std::error_code failed;
    if (!named.empty()) {
        fs::path root = fs::absolute(named, failed).lexically_normal();
        if (!root.has_filename()) root = root.parent_path();
        if (equalIgnoringCase(root.filename().string(), "artsource")) root = root.parent_path();
        return fs::is_directory(root, failed) ? root : fs::path();
    }
    const fs::path start = fs::absolute(file, failed).lexically_normal().parent_path();
    for (fs::path at = start;; at = at.parent_path()) {
        if (fs::exists(at / "workspace.mel", failed))
            return equalIgnoringCase(at.filename().string(), "artsource") ? at.parent_path() : at;
        if (fs::exists(at / "artsource/workspace.mel", failed)) return at;
        if (at == at.parent_path()) return {};
    }
}

/// Whether a DDS file's header tells of a cube map in DXT1, DXT3 or DXT5.
bool isCubeMapForGl(const fs::path& file) {
    char header[128] = {};
    if (!std::ifstream(file, std::ios::binary).read(header, sizeof header) || std::memcmp(header, "DDS ", 4) != 0)
        return false;
    const bool isCubeMap = static_cast<unsigned char>(header[113]) & 0x02, hasCode = header[80] & 0x04;
    const std::string_view code(header + 84, 4);
    return isCubeMap && hasCode && (code == "DXT1" || code == "DXT3" || code == "DXT5");
}

} // namespace

fs::path fileMeant(const fs::path& folder, std::string path) {
    std::ranges::replace(path, '\\', '/');
    std::error_code failed;
    if (fs::path(path).is_absolute() && fs::is_regular_file(path, failed)) return path;
    fs::path at = folder;
    for (const fs::path& part : fs::path(path).relative_path()) {
        if (fs::exists(at / part, failed)) {
            at /= part;
            continue;
        }
        fs::path best;
        for (fs::directory_iterator i(at, failed), end; !failed && i != end; i.increment(failed)) {
            const fs::path name = i->path().filename();
            if (equalIgnoringCase(name.string(), part.string()) && (best.empty() || name < best)) best = name;
        }
        if (best.empty()) return {};
        at /= best;
    }
    return fs::is_regular_file(at, failed) ? at : fs::path();
}

std::vector<NamedFile> namedFiles(const Inspection& found, const fs::path& project) {
    std::vector<NamedFile> files;
    const fs::path root = projectRoot(project, found.file);
    for (const Element& element : found.elements)
        for (const char* name : {"gradientTexture", "texture", "spriteTexture", "shading_tex_filepath"}) {
            const auto path = element.get<std::string>(name);
            if (!path || path->empty()) continue;
            const bool inBuild = std::string_view(name) != "shading_tex_filepath";
            files.push_back(
                {&element, name, *path, root.empty() ? fs::path() : fileMeant(inBuild ? root / "build" : root, *path)});
        }
    return files;
}

void checkNamedFiles(Inspection& found, const fs::path& project) {
    if (projectRoot(project, found.file).empty()) return;
    for (const NamedFile& named : namedFiles(found, project)) {
        const auto warn = [&](std::string_view what) {
            found.warnings.push_back(fmt::format("{} line {}, {}: {} {}: {}", printable(found.file),
                                                 named.element->line, named.element->described(), named.attribute, what,
                                                 printable(named.path)));
        };
        if (named.file.empty())
            warn("names a file that is not there");
        else if (named.element->name == "TexturedSky" && !isCubeMapForGl(named.file))
            warn("names a file that OpenGL cannot take, since it is no DDS cube map in DXT1, DXT3 or DXT5");
    }
}

} // namespace orvosky::inspect
