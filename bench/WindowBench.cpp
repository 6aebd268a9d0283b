// The window, each beside a plain version of the same work in the same run:
//   from the start of `orvosky edit` to its first frame on the screen; a bare Qt window with OpenGL
//   a frame in the window, at rest and while the hand turns the view; the host's frame of that size without a window
//   the outliner over a group of 100,000 nodes: opened, scrolled, searched, brought in line with a change; a tree whose
//   rows are all made at once
// Without a display it starts itself on an X server of its own (xvfb-run).
#include "Program.h"

#include "Editor.h"
#include "MainWindow.h"
#include "OutlinerModel.h"
#include "Theme.h"
#include "ViewWidget.h"

#include "commands/Host.h"
#include "scene/Scene.h"
#include "viewport/Viewport.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QOpenGLWidget>
#include <QProcess>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTreeView>

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

using namespace orvosky::window;

namespace {

constexpr int nodes = 100000, width = 1280, height = 720;
const char* const plainWindow = "--plain-window";
const char* thisProgram;

Editor& editor() {
    static Editor* made = [] {
        host::Host::instance().start({.project = ORVO_PROJECT, .pluginFolders = {}, .scriptFolders = {}});
        auto* editor = new Editor;
        editor->runAside("global proc string OrvoGetPath_ToolsRoot() { return \"" ORVO_TOOLS_ROOT "/\"; }");
        editor->runAside("loadPlugin \"" ORVO_PLUGIN "\";");
        return editor;
    }();
    return *made;
}

/// Seconds until a program has written the word into the file; it is ended then.
double secondsUntil(const QString& program, const QStringList& arguments, const std::string& file, const char* word) {
    QElapsedTimer clock;
    clock.start();
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    for (;;) {
        std::ifstream in(file);
        std::ostringstream text;
        text << in.rdbuf();
        if (text.str().find(word) != std::string::npos) break;
        if (process.waitForFinished(1) || clock.elapsed() > 60000) return -1;
    }
    const double seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    process.kill();
    process.waitForFinished();
    return seconds;
}

template <class Arguments>
void startUp(benchmark::State& state, const QString& program, Arguments&& arguments) {
    for (auto _ : state) {
        const QTemporaryDir folder; // with preferences of its own
        const QString file = folder.filePath("log");
        qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
        const double seconds = secondsUntil(program, arguments(file), file.toStdString(), "first frame");
        if (seconds < 0) return state.SkipWithError("it did not come to its first frame");
        state.SetIterationTime(seconds);
    }
}

void StartUpStartPage(benchmark::State& state) {
    startUp(state, ORVOSKY_PROGRAM, [](const QString& log) {
        return QStringList{"--log-json", log, "--project", QString::fromStdString(bench::workFolder()), "edit"};
    });
}
void StartUpScene(benchmark::State& state) {
    startUp(state, ORVOSKY_PROGRAM, [](const QString& log) {
        return QStringList{"--log-json", log, "--project", ORVO_PROJECT, "edit", ORVO_PROJECT "/scenes/evening.ma"};
    });
}
void StartUpPlainWindow(benchmark::State& state) {
    startUp(state, thisProgram, [](const QString& log) { return QStringList{plainWindow, log}; });
}

int runPlainWindow(int count, char** words) {
    QApplication application(count, words);
    QOpenGLWidget window;
    window.resize(1360, 820);
    QObject::connect(&window, &QOpenGLWidget::frameSwapped, [&] { std::ofstream(words[2]) << "first frame"; });
    window.show();
    return QApplication::exec();
}

void openScene() {
    if (!editor().runAside("file -f -o \"" ORVO_PROJECT "/scenes/evening.ma\";")) std::abort();
}

template <class Change>
void drawFrames(benchmark::State& state, Change&& change) {
    openScene();
    ViewWidget view(editor());
    editor().makeCurrent = [&] { view.makeContextCurrent(); };
    view.resize(width, height);
    view.show();
    const auto next = [&] {
        const int before = view.frames();
        change(view);
        while (view.frames() == before) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    };
    while (view.frames() == 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    for (int i = 0; i < 10; ++i) next();
    for (auto _ : state) next();
    editor().makeCurrent = {};
}

void FrameAtRest(benchmark::State& state) {
    drawFrames(state, [](ViewWidget& view) { view.refresh(); });
}
void FrameMoving(benchmark::State& state) {
    drawFrames(state, [](ViewWidget& view) { view.setPose(turned(*view.pose(), 0.01, 0)); });
}
void FrameWithoutWindow(benchmark::State& state) {
    openScene();
    const auto view = host::viewport::Viewport::create(width, height);
    if (!view || !view->render()) return state.SkipWithError("no frame");
    for (auto _ : state) {
        view->render();
        benchmark::DoNotOptimize(view->picture());
    }
}

/// A scene with one group of so many nodes.
void makeMany() {
    if (editor().ask("objExists many").toInt() == 0)
        editor().runAside("createNode transform -n many; for ($i = 0; $i < " + std::to_string(nodes) +
                          "; ++$i) createNode transform -p many; select -cl;");
}

void shown(QTreeView& tree, QAbstractItemModel& model) {
    tree.setUniformRowHeights(true);
    tree.setModel(&model);
    tree.resize(260, 700);
    tree.show();
    tree.expandToDepth(0);
    QApplication::processEvents();
    tree.viewport()->repaint();
}

void fillPlain(QStandardItemModel& model) {
    auto* group = new QStandardItem("many");
    for (host::scene::DagNode* child : Editor::scene().findNode("many")->dag()->children)
        group->appendRow({new QStandardItem(iconOf(*child), QString::fromStdString(child->name)),
                          new QStandardItem(theme::icon("shown"), {})});
    model.appendRow(group);
}

void OpenOutliner(benchmark::State& state) {
    makeMany();
    for (auto _ : state) {
        QTreeView tree;
        OutlinerModel model(editor());
        shown(tree, model);
    }
}

void OpenPlainTree(benchmark::State& state) {
    makeMany();
    for (auto _ : state) {
        QTreeView tree;
        QStandardItemModel model;
        fillPlain(model);
        shown(tree, model);
    }
}

void scroll(benchmark::State& state, QTreeView& tree) {
    int at = 0;
    for (auto _ : state) {
        tree.verticalScrollBar()->setValue(at = (at + 7919) % tree.verticalScrollBar()->maximum());
        tree.viewport()->repaint();
    }
}

void ScrollOutliner(benchmark::State& state) {
    makeMany();
    QTreeView tree;
    OutlinerModel model(editor());
    shown(tree, model);
    scroll(state, tree);
}

void ScrollPlainTree(benchmark::State& state) {
    makeMany();
    QTreeView tree;
    QStandardItemModel model;
    fillPlain(model);
    shown(tree, model);
    scroll(state, tree);
}

QString searched(int i) { return QString::number(700 + i % 100); }

void SearchOutliner(benchmark::State& state) {
    makeMany();
    QTreeView tree;
    OutlinerModel model(editor());
    shown(tree, model);
    int i = 0;
    for (auto _ : state) {
        model.setSearch(searched(++i));
        tree.viewport()->repaint();
    }
}

void SearchPlainTree(benchmark::State& state) {
    makeMany();
    QTreeView tree;
    QStandardItemModel model;
    fillPlain(model);
    QSortFilterProxyModel found;
    found.setRecursiveFilteringEnabled(true);
    found.setSourceModel(&model);
    shown(tree, found);
    int i = 0;
    for (auto _ : state) {
        found.setFilterFixedString(searched(++i));
        tree.expandAll();
        tree.viewport()->repaint();
    }
}

/// What an action costs that changes one node, all of them being listed.
void FollowAChange(benchmark::State& state) {
    makeMany();
    QTreeView tree;
    OutlinerModel model(editor());
    shown(tree, model);
    int i = 0;
    for (auto _ : state) {
        editor().runAside("setAttr transform77.visibility " + std::to_string(++i % 2) + ";");
        model.sync();
    }
}

BENCHMARK(StartUpStartPage)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(StartUpScene)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(StartUpPlainWindow)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(FrameAtRest)->Iterations(40)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FrameMoving)->Iterations(100)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FrameWithoutWindow)->Iterations(40)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(OpenOutliner)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenPlainTree)->Unit(benchmark::kMillisecond);
BENCHMARK(ScrollOutliner)->Unit(benchmark::kMillisecond);
BENCHMARK(ScrollPlainTree)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchOutliner)->Unit(benchmark::kMillisecond);
BENCHMARK(SearchPlainTree)->Unit(benchmark::kMillisecond);
BENCHMARK(FollowAChange)->Unit(benchmark::kMillisecond);

} // namespace

int main(int count, char** words) {
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
        std::vector<char*> again;
        for (const char* word : {"xvfb-run", "-a", "-s", "-screen 0 1920x1080x24"})
            again.push_back(const_cast<char*>(word));
        again.insert(again.end(), words, words + count + 1);
        execvp(again[0], again.data());
        std::fprintf(stderr, "There is no display, and xvfb-run cannot be started.\n");
        return 1;
    }
    prepareApplication();
    if (count > 2 && std::string(words[1]) == plainWindow) return runPlainWindow(count, words);
    thisProgram = words[0];
    benchmark::Initialize(&count, words);
    QApplication application(count, words);
    setlocale(LC_NUMERIC, "C");
    theme::setIconFolder(ORVO_TOOLS_ROOT "/icons");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
