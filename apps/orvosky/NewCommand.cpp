#include "Session.h"

#include "base/Letters.h"
#include "base/Messages.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace orvosky {
namespace {

namespace fs = std::filesystem;

/// A preset's name as it is compared and listed: "Golden Hour", "golden-hour" and the file "2_golden_hour", whose
/// number is its place on the window's page, are one.
std::string plainName(std::string name) {
    if (const auto number = name.find_first_not_of("0123456789");
        number > 0 && number < name.size() && name[number] == '_')
        name.erase(0, number + 1);
    for (char& c : name) c = c == ' ' || c == '-' ? '_' : host::lowerCase(c);
    return name;
}

/// The scene of a preset. Throws Failure that lists those that there are.
fs::path presetScene(const std::string& name) {
    std::vector<std::string> known;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(toolRoot() / "presets", none)) {
        if (entry.path().extension() != ".ma") continue;
        if (plainName(entry.path().stem()) == plainName(name)) return entry.path();
        known.push_back(plainName(entry.path().stem()));
    }
    std::ranges::sort(known);
    std::string list;
    for (const std::string& one : known) list += (list.empty() ? "" : ", ") + one;
    throw Failure(fmt::format("There is no preset {}; there are {}.", name, list.empty() ? "none" : list));
}

/// A folder that takes its place when all of it is there, and is gone otherwise.
class NewFolder {
public:
    explicit NewFolder(const fs::path& place) : place_(place) {
        std::string pattern = (place.parent_path() / ".part-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw fs::filesystem_error("", place, std::error_code(errno, std::generic_category()));
        path_ = pattern;
        fs::permissions(path_, fs::perms(0755));
    }
    ~NewFolder() {
        std::error_code none;
        if (!path_.empty()) fs::remove_all(path_, none);
    }
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;

    const fs::path& path() const { return path_; }
    void moveIntoPlace() {
        fs::rename(path_, place_); // over an empty folder, too
        path_.clear();
    }

private:
    fs::path place_, path_;
};

constexpr const char* workspaceText = "//Maya 2010 Project Definition\n\n"
                                      "workspace -fr \"mayaAscii\" \"scenes\";\n"
                                      "workspace -fr \"scene\" \"scenes\";\n"
                                      "workspace -fr \"images\" \"images\";\n"
                                      "workspace -fr \"sourceImages\" \"sourceimages\";\n"
                                      "workspace -fr \"mel\" \"scripts\";\n";

} // namespace

int newCommand(const NewOptions& options) {
    return reported([&] {
        const fs::path scene = presetScene(options.preset);
        fs::path place = fs::absolute(options.folder).lexically_normal();
        if (!place.has_filename()) place = place.parent_path();
        std::error_code failed;
        if (fs::exists(fs::symlink_status(place, failed)) &&
            !(fs::is_directory(place, failed) && fs::is_empty(place, failed)))
            throw Failure(fmt::format("Nothing was made: {} is there already.", options.folder));
        try {
            fs::create_directories(place.parent_path());
            NewFolder made(place);
            for (const char* folder : {"scenes", "scripts", "images", "sourceimages"})
                fs::create_directory(made.path() / folder);
            // Where presets look for what they use.
            fs::create_directory(made.path() / "build");
            fs::copy(toolRoot() / "presets" / "files", made.path() / "build" / "orvosky");
            fs::copy_file(scene, made.path() / "scenes" / "sky.ma");
            std::ofstream workspace(made.path() / "workspace.mel");
            workspace << workspaceText;
            workspace.close();
            if (!workspace) throw fs::filesystem_error("", made.path(), std::make_error_code(std::errc::io_error));
            made.moveIntoPlace();
        } catch (const fs::filesystem_error& e) {
            throw Failure(fmt::format("Cannot make {}: {}.", options.folder, e.code().message()));
        }
        host::showInfo(
            fmt::format("Made {} with the sky \"{}\": scenes/sky.ma.", options.folder, scene.stem().string()));
    });
}

} // namespace orvosky
