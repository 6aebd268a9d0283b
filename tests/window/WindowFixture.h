#pragma once

#include "Document.h"
#include "Editor.h"
#include "MainWindow.h"
#include "ViewWidget.h"

#include "../../apps/orvosky/EditCommand.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvosky::window {

namespace fs = std::filesystem;

using orvo::test::content;
using orvo::test::write;

/// Runs `orvosky` with these words in the folder. @return exit status; what it said on both streams is in `said`
int runProgram(const fs::path& folder, const std::vector<std::string>& words, std::string* said = nullptr,
               const std::vector<std::pair<std::string, std::string>>& environment = {});

/// Presses a button of the next dialog of that name.
void answer(const char* dialog, const char* button);

/// A scene with a sky, settings, a height fog and a renderer, seen from a camera that looks ahead.
extern const char* const skyScene;

/// The window on an X server of the test's own, with the plug-in loaded and a project.
class Window : public testing::Test {
protected:
    Window();
    void SetUp() override;
    void TearDown() override;

    /// Opens the window and the scene of that text, when it has one.
    void open(const std::string& scene = skyScene);
    /// Ends the window; another one may be opened on the same project.
    void close();
    /// Lets the window do what is due.
    static void settle(int ms = 50) { QTest::qWait(ms); }
    /// Lets the window work until something holds; false when it does not come to pass in a minute.
    static bool until(const std::function<bool()>& holds) { return QTest::qWaitFor(holds, 60000); }

    MainWindow& window() { return *window_; }
    Editor& editor() { return window_->editor(); }
    /// A number of the scene, through MEL.
    double number(const std::string& mel) { return editor().ask(mel).toFloat(); }
    std::string text(const std::string& mel) { return editor().ask(mel).toString(); }
    /// What has been echoed since the window was opened.
    const std::vector<std::string>& echoed() const { return echoed_; }
    /// The scene as it would be saved.
    std::string saved();

    /// The project, empty at first. One folder for all tests of a process: the plug-in asks for the project's root
    /// once.
    const orvo::test::TemporaryFolder& folder_;
    std::vector<std::string> errors_;

private:
    CommonOptions common_;
    EditOptions options_;
    std::optional<Session> session_;
    WindowStart start_;
    std::unique_ptr<MainWindow> window_;
    std::vector<std::string> echoed_;
};

} // namespace orvosky::window
