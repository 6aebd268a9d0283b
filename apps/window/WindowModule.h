#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// The window is a module of its own, so that only `edit` loads Qt.
namespace orvosky::window {

/// What the program lends to the window. The functions throw std::exception with a text for the user; an empty one has
/// been told already.
struct WindowStart {
    std::filesystem::path scene;    ///< to be opened; empty: the start page
    std::filesystem::path toolRoot; ///< holds scripts, icons and presets
    std::string version;            ///< of the program

    /// Starts the host. Called once there is a display and OpenGL, before anything else below.
    std::function<void()> begin;
    /// Empties the scene while OpenGL is still there.
    std::function<void()> end;
    /// Opens a scene, or runs the script that builds one.
    std::function<void(const std::filesystem::path&)> open;
    /// Brings sky nodes up to date. What goes wrong with one is reported; answers a failure that no message told of.
    std::function<std::string()> bringUpToDate;
    /// Writes the open scene's sky as `orvosky export` does.
    std::function<void(const std::filesystem::path& target)> exportSky;
    /// What an exported file holds, in a few words, and what does not fit in it.
    struct Findings {
        std::string holds;
        std::vector<std::string> warnings, problems;
    };
    std::function<Findings(const std::filesystem::path& file)> inspect;
    /// Told once the window shows its first frame; may be empty.
    std::function<void()> shown;
};

/// Opens the window and works until it is closed. @return the program's exit status
using WindowFunction = int (*)(const WindowStart&);

inline constexpr const char* kWindowModule = "orvosky_window.so";
inline constexpr const char* kWindowFunction = "orvosky_window";

} // namespace orvosky::window
