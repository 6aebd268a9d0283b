#pragma once

#include "Failure.h"
#include "Frames.h"
#include "ReportWatch.h"
#include "RunLog.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvosky {

/// The folder of the program's own tools: shaders, scripts, presets.
std::filesystem::path toolRoot();

/// The program's exit statuses.
enum ExitStatus : int { kWorked = 0, kFailed = 1, kWrongUsage = 2 };

/// What all subcommands take.
struct CommonOptions {
    std::string project;               ///< workspace root; empty: found from the scene or the current folder upward
    bool noPlugin = false;             ///< run the bare host
    std::vector<std::string> settings; ///< for applySettings, after a scene was opened
    LogOptions log = {};
};

/// The host as the program runs it: workspace and search paths set, plug-in loaded, userSetup.mel sourced.
class Session {
public:
    /// `scene` is what will be opened, where that is known: its project serves when none is named. Throws Failure when
    /// the workspace or the plug-in cannot be had.
    explicit Session(const CommonOptions& options, const std::filesystem::path& scene = {});
    /// Empties the scene, so that nodes free what they hold while that is still possible.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Opens a Maya ASCII scene, or runs a MEL script that builds one; then applies the settings. Throws Failure.
    void openScene(const std::filesystem::path& scene);
    /// Runs a script file. Throws Failure with the place of the error.
    void runScript(const std::filesystem::path& script, const std::vector<std::string>& arguments);
    /// Runs script text that comes from `source`: "-e" for the command line.
    void runText(const std::string& text, const std::vector<std::string>& arguments, const std::string& source = "-e");
    /// Applies the settings to every scene that a script opens from now on; what is wrong with one fails the script.
    void applySettingsToOpenedScenes();
    /// Throws Failure when there are settings, and no scene was opened for them.
    void requireSettingsApplied() const;
    /// Calls a command or procedure with text arguments. Throws Failure.
    void call(const std::string& name, const std::vector<std::string>& arguments);
    /// Brings the scene's sky nodes up to date, as they have to be before they are exported or drawn. What goes wrong
    /// with one is reported and leaves it as it is. @return the text of a failure, which is mostly told already; else
    /// empty
    std::string bringUpToDate();

private:
    std::vector<std::string> settings_;
    bool applied_ = false;
};

/// Runs a subcommand's work: reports a Failure, and whatever else is thrown, as an error.
template <class Work>
int reported(Work&& work);

/// @name Subcommands; each answers the exit status
/// @{
struct RunOptions {
    std::string script, text;
    std::vector<std::string> arguments;
};
int runCommand(const CommonOptions& common, const RunOptions& options);

struct ExportOptions {
    std::string scene, target;
    TimeOptions when = {};
    ReportOptions reports = {};
};
int exportCommand(const CommonOptions& common, const ExportOptions& options, const std::vector<Shot>& shots);

/// Writes the sky of the scene that is open. Throws Failure.
void exportOpenScene(Session& session, const ExportOptions& options);

/// What a picture shows: a camera's view, all directions by azimuth and elevation, or the six faces of a cube.
enum class PictureKind { View, Panorama, Cube };

struct RenderOptions {
    std::string scene, picture, camera = "persp";
    PictureKind kind = PictureKind::View;
    int width = 0, height = 0; ///< pixels; of one face of a cube
    int samplesAside = 1;      ///< of a square of samples for each pixel
    bool alpha = false;        ///< with how much of the ground is covered
    TimeOptions when = {};
    bool helpers = false; ///< with the aids that locators draw for the artist
    /// Degrees: the azimuth, 0 along -Z, clockwise as seen from above, and the elevation above the horizon.
    std::optional<std::array<double, 2>> look;
    std::optional<double> fov; ///< horizontal, degrees
    ReportOptions reports = {};
};
int renderCommand(const CommonOptions& common, const RenderOptions& options, const std::vector<Shot>& shots);

struct BatchOptions {
    std::vector<std::string> scenes; ///< and files that list scenes
    std::string folder = ".";        ///< for what is made
    std::string format = "png";      ///< of the pictures: the ending of their names
    std::string size;                ///< as render takes it; empty for its own
    bool exports = true, renders = true;
    int processes = 0; ///< at a time; 0: one for each processor
    bool json = false; ///< for tools
    ReportOptions reports = {};
};
int batchCommand(const CommonOptions& common, const BatchOptions& options);

struct InspectOptions {
    std::string file;
    std::string other;      ///< to be compared with it
    bool diff = false;      ///< tell what the two hold differently
    bool summary = false;   ///< in a few lines
    bool listFiles = false; ///< the files that it names alone; of a scene, too
    std::string project;    ///< where the files lie that the file names; empty: the project that the file lies in
    bool json = false;      ///< for tools
    bool strict = false;    ///< warnings count as errors
};
/// Needs neither workspace nor plug-in, but for the files of a scene.
int inspectCommand(const CommonOptions& common, const InspectOptions& options);

/// `name` may be a pattern; empty for all commands.
int commandsCommand(const CommonOptions& common, const std::string& name);

struct EditOptions {
    std::string scene; ///< empty: the start page
};
int editCommand(const CommonOptions& common, const EditOptions& options);

struct NodesOptions {
    std::string type; ///< empty for all of the plug-in's
    bool json = false, markdown = false;
};
int nodesCommand(const CommonOptions& common, const NodesOptions& options);

struct NewOptions {
    std::string folder, preset = "valley";
};
int newCommand(const NewOptions& options);
/// @}

/// Shows the failure that is being handled, as the program's error.
int reportCurrentFailure();

template <class Work>
int reported(Work&& work) {
    try {
        work();
        return kWorked;
    } catch (...) {
        return reportCurrentFailure();
    }
}

} // namespace orvosky
