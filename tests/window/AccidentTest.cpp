// What must not cost work: scripts without end, a full disk, a killed process, hands that do anything.
#include "WindowFixture.h"

#include "TimeBar.h"

#include "scene/Scene.h"

#include <QColorDialog>
#include <QEventLoop>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <deque>
#include <random>
#include <regex>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace orvosky::window {
namespace {

using testing::HasSubstr;

/// A hand on the keyboard of the test's screen, which types while the test waits; it goes with the object.
class Hand {
public:
    explicit Hand(const std::string& script) : process_(fork()) {
        if (process_ == 0) {
            setpgid(0, 0);
            execlp("sh", "sh", "-c", script.c_str(), nullptr);
            _exit(97);
        }
    }
    ~Hand() {
        kill(-process_, SIGTERM);
        waitpid(process_, nullptr, 0);
    }
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;

private:
    pid_t process_;
};

// Faults: a window that hangs with its script, other keys and clicks that act amid it, a session of no use afterwards.
TEST_F(Window, EscStopsAScriptThatNeverEnds) {
    open();
    editor().run("select -r fog;");
    window().view().setFocus();
    settle();
    int shown = 0;
    QObject::connect(&editor(), &Editor::takesLong, [&](double part) { shown += part < 0; });
    {
        const Hand hand("sleep 0.6; xdotool key Delete; while :; do sleep 0.4; xdotool key Escape; done");
        EXPECT_FALSE(editor().runTyped("int $i; while (1) { ++$i; catchQuiet(`eval \"while (1);\"`); }", "typed"));
    }
    ASSERT_FALSE(errors_.empty());
    EXPECT_THAT(errors_.back(), HasSubstr("The script was stopped."));
    EXPECT_GT(shown, 1) << "it was shown meanwhile";
    settle();
    EXPECT_EQ(number("objExists fog"), 1) << "no other key was heard";
    EXPECT_TRUE(editor().run("setAttr fogShape.fogHeight 5;"));
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 5);
    // A script that quits closes the window, and asks first where work would be lost.
    const Hand cancels("while :; do sleep 0.3; xdotool key Escape; done");
    EXPECT_FALSE(editor().runTyped("quit;", "typed"));
    settle(1500);
    EXPECT_TRUE(window().isVisible());
    EXPECT_TRUE(editor().run("setAttr fogShape.fogHeight 6;"));
}

// Faults: a frame that hangs while it makes the clouds of a dome, that cannot be stopped, or that costs the earlier
// clouds; a button that is let go meanwhile and stays pressed for ever; a view that is black when its size changes.
TEST_F(Window, ADomeIsGivenUpAmidAFrame) {
    // Clouds of as many sprites as there can be: a dome of them takes a second at least.
    write(folder_ / "build/clouds/cumulus.xml",
          std::regex_replace(content(orvo::test::sourceTree("examples/project/build/clouds/cumulus.xml")),
                             std::regex("spriteDensity = \"[0-9.]*\""), "spriteDensity = \"1000000\""));
    open();
    editor().run("orvoskyCloudShading; setAttr persp.r 30 0 0; createNode transform -n dome -p `orvoskySkyRoot`;");
    editor().run("createNode orvosky_ParticleCloudDome -n domeShape -p dome; setAttr domeShape.placementDensity 0.05; "
                 "setAttr -type \"string\" domeShape.cloudDataDir \"build/clouds/cumulus.xml\";");
    settle(300);
    ViewWidget& view = window().view();
    const QImage before = view.picture();
    std::vector<double> parts;
    bool stoppable = false;
    QWidget& stop = *window().findChild<QWidget*>("stop");
    QWindow& native = *window().windowHandle();
    const auto mouse = [&](QEvent::Type type, Qt::MouseButton button, QWidget& on) {
        const QPoint at = on.mapTo(&window(), on.rect().center());
        QCoreApplication::postEvent(&native, new QMouseEvent(type, at, native.mapToGlobal(at), button,
                                                             type == QEvent::MouseButtonPress ? button : Qt::NoButton,
                                                             Qt::NoModifier));
    };
    // What hands do amid the frame, once the window says that they can.
    std::function<void()> hands;
    QObject::connect(&editor(), &Editor::takesLong, [&](double part) {
        parts.push_back(part);
        stoppable = stop.isVisible();
        hands();
    });
    const auto given = [&](double density) {
        errors_.clear();
        parts.clear();
        editor().run("setAttr domeShape.placementDensity " + std::to_string(density) + ";");
        (void)until([&] { return !errors_.empty(); });
        settle(300);
        return !parts.empty() && !errors_.empty() &&
               errors_.back().find("keeps its earlier clouds") != std::string::npos;
    };
    mouse(QEvent::MouseButtonPress, Qt::MiddleButton, view);
    settle();
    hands = [&] {
        mouse(QEvent::MouseButtonRelease, Qt::MiddleButton, view);
        QCoreApplication::postEvent(&native, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
    };
    EXPECT_TRUE(given(5));
    EXPECT_TRUE(stoppable);
    EXPECT_EQ(view.picture(), before);
    EXPECT_FALSE(stop.isVisible());
    const double looked = view.pose()->azimuth;
    QTest::mouseMove(&view, view.rect().center() + QPoint(50, 0));
    settle();
    EXPECT_EQ(view.pose()->azimuth, looked) << "the middle button is up again";
    const QSize size = view.size(), lower = window().size() - QSize(0, 120);
    const auto middle = [&] { return view.grab().toImage().pixelColor(view.rect().center()).lightness(); };
    const int light = middle();
    ASSERT_GT(light, 40);
    hands = [&] {
        window().resize(lower);
        if (view.size() == size) return; // not yet
        EXPECT_NEAR(middle(), light, 20) << "the last frame, in its new size";
        mouse(QEvent::MouseButtonPress, Qt::LeftButton, stop);
        hands = [] {};
    };
    EXPECT_TRUE(given(4.5)) << "by a click";
}

// Faults: a full disk that costs the old file or the work, or that nobody hears of.
TEST_F(Window, AFullDiskCostsNothing) {
    open();
    ASSERT_TRUE(window().document().save());
    const fs::path file = folder_ / "scenes/opened.ma";
    const std::string before = content(file);
    editor().run("setAttr fogShape.fogHeight 99;");
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit full{200, usual.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    const bool saved = window().document().save();
    window().document().keepCopy();
    setrlimit(RLIMIT_FSIZE, &usual);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(saved);
    ASSERT_FALSE(errors_.empty());
    EXPECT_THAT(errors_.front(), HasSubstr("opened.ma"));
    EXPECT_EQ(content(file), before);
    EXPECT_EQ(window().document().title(), "opened.ma*");
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 99);
    ASSERT_TRUE(window().document().save());
    EXPECT_THAT(content(file), HasSubstr(".fogHeight\" 99"));
}

// Faults: work of more than a minute that a killed process takes with it, an offer that the next start does not make.
TEST_F(Window, AKilledProcessLosesLessThanAMinute) {
    open(""); // for its screen
    close();
    write(folder_ / ".config/orvosky/window.ini", "[General]\ncopyEverySeconds=2\n");
    write(folder_ / "scenes/sky.ma", skyScene);
    const auto start = [&] {
        const pid_t process = fork();
        if (process == 0) {
            setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
            if (chdir(folder_.c_str()) != 0) _exit(99);
            execl(orvo::test::program().c_str(), "orvosky", "--project", ".", "edit", "scenes/sky.ma", nullptr);
            _exit(98);
        }
        return process;
    };
    // Keys to a window of that name, again and again until they have done something: it may not hear them at first.
    const auto type = [&](const std::string& name, const std::string& keys, const std::function<bool()>& done) {
        const std::string command = "timeout 5 xdotool search --sync --onlyvisible --name '" + name +
                                    "' windowfocus --sync >/dev/null 2>&1 && " + keys;
        for (int i = 0; i < 200 && !done(); ++i) {
            if (i % 20 == 0) (void)!std::system(command.c_str());
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        }
        return done();
    };
    const auto holdsIt = [](const fs::path& file) {
        return content(file).find(".fogHeight\" 77") != std::string::npos;
    };
    const auto kept = [&] {
        std::error_code none;
        return std::any_of(fs::directory_iterator(folder_ / "autosave", none), {},
                           [&](const fs::directory_entry& copy) { return holdsIt(copy.path()); });
    };
    pid_t process = start();
    ASSERT_TRUE(type("Orvo sky",
                     "xdotool key ctrl+m; sleep 0.3; xdotool key ctrl+a type 'setAttr fogShape.fogHeight 77'; "
                     "xdotool key Return",
                     kept));
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    EXPECT_THAT(content(folder_ / "scenes/sky.ma"), testing::Not(HasSubstr("77")));
    process = start();
    ASSERT_TRUE(type("Unsaved Work", "sleep 1; xdotool key Return",
                     [&] { return std::system("xdotool search --onlyvisible --name 'sky.ma' >/dev/null 2>&1") == 0; }));
    EXPECT_TRUE(type("Orvo sky", "xdotool key ctrl+s", [&] { return holdsIt(folder_ / "scenes/sky.ma"); }))
        << content(folder_ / "scenes/sky.ma");
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
}

/// Does anything: clicks, drags, keys, wheels, typed words, by a seed. What goes through other programs' files is given
/// up at once: the dialogs that choose files.
class Anybody : public QObject {
public:
    Anybody(MainWindow& window, unsigned seed, int count) : window_(window), random_(seed), left_(count) {
        QTimer::singleShot(0, this, [this] { next(); });
    }
    std::string last() const {
        std::string all;
        for (const auto& event : log_) all += event + "\n";
        return all;
    }
    /// Waits until all is done and no dialog or menu is open.
    void work() {
        QEventLoop loop;
        connect(this, &QObject::objectNameChanged, &loop, &QEventLoop::quit);
        while (objectName() != "done") loop.exec();
    }

private:
    int upTo(int n) { return static_cast<int>(random_() % static_cast<unsigned>(std::max(n, 1))); }
    template <class T>
    const T& oneOf(const std::vector<T>& all) {
        return all[static_cast<std::size_t>(upTo(static_cast<int>(all.size())))];
    }
    void note(std::string what) {
        if (std::getenv("ORVOSKY_RANDOM_LOG")) std::fprintf(stderr, "%d %s\n", left_, what.c_str());
        log_.push_back(std::move(what));
        if (log_.size() > 40) log_.pop_front();
    }
    QWidget* target() {
        if (QWidget* popup = QApplication::activePopupWidget()) return popup;
        if (QWidget* modal = QApplication::activeModalWidget()) return modal;
        std::vector<QWidget*> tops;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->isVisible() && top->windowHandle() && !top->inherits("QTipLabel")) tops.push_back(top);
        std::sort(tops.begin(), tops.end(), [](QWidget* a, QWidget* b) { return a->objectName() < b->objectName(); });
        return tops.empty() ? nullptr : upTo(3) ? tops.front() : oneOf(tops);
    }

    void next() {
        // Amid an action only in a loop that it has begun, a dialog's, a menu's or that of dragging a row: else each
        // would run within the last.
        if (QThread::currentThread()->loopLevel() == actingIn_) {
            QTimer::singleShot(5, this, [this] { next(); });
            return;
        }
        if (left_ <= 0) {
            finish();
            return;
        }
        // First, so that it goes on in the loops that dialogs and menus run.
        QTimer::singleShot(0, this, [this] { next(); });
        const int outer = std::exchange(actingIn_, QThread::currentThread()->loopLevel());
        one();
        actingIn_ = outer;
    }

    void one() {
        --left_;
        if (!window_.isVisible()) window_.show();
        if (auto* files = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
            note("files: cancel");
            files->reject();
            return;
        }
        if (auto* colours = qobject_cast<QColorDialog*>(QApplication::activeModalWidget()); colours && !upTo(5)) {
            colours->reject();
            return;
        }
        QWidget* at = target();
        if (!at || !at->windowHandle()) return;
        act(*at);
    }

    static void press(const QPointer<QWindow>& window, Qt::Key key, Qt::KeyboardModifiers with = {},
                      const QString& text = {}) {
        // Not by sendKeyEvent: it goes on with the held keys on a window that the first of them has closed.
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            if (window) qt_handleKeyEvent(window, type, key, with, text, false, 1);
            QCoreApplication::processEvents();
        }
    }

    void act(QWidget& at) {
        const QPointer<QWindow> window = at.windowHandle(); // gone as soon as something closes it
        const QPoint point(upTo(at.width()), upTo(at.height()));
        const std::string where = std::string(at.metaObject()->className()) + " " + std::to_string(point.x()) + "," +
                                  std::to_string(point.y());
        static const std::vector<Qt::KeyboardModifiers> holds{
            {}, {}, {}, {}, Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier};
        const auto held = oneOf(holds);
        const int kind = upTo(100);
        if (kind < 40) {
            const auto button = upTo(6) ? Qt::LeftButton : upTo(2) ? Qt::RightButton : Qt::MiddleButton;
            note("click " + std::to_string(button) + " " + where);
            QTest::mousePress(window, button, held, point);
            if (window) QTest::mouseRelease(window, button, held, point);
        } else if (kind < 58) {
            note("drag " + where);
            const auto button = upTo(5) ? Qt::LeftButton : Qt::MiddleButton;
            QTest::mousePress(window, button, held, point);
            const int moves = 1 + upTo(6), x = upTo(300) - 150, y = upTo(200) - 100;
            for (int i = 1; i <= moves && left_ > 0 && window; ++i, --left_)
                QTest::mouseMove(window, point + QPoint(x, y) * i / moves);
            if (!upTo(6)) press(window, Qt::Key_Escape);
            if (window) QTest::mouseRelease(window, button, held, point + QPoint(x, y));
        } else if (kind < 64) {
            note("double click " + where);
            for (int i = 0; i < 2; ++i) {
                if (window) QTest::mousePress(window, Qt::LeftButton, held, point);
                if (window) QTest::mouseRelease(window, Qt::LeftButton, held, point);
            }
        } else if (kind < 70) {
            note("wheel " + where);
            QWidget* under = at.childAt(point) ? at.childAt(point) : &at;
            QWheelEvent event(QPointF(under->mapFrom(&at, point)), QPointF(at.mapToGlobal(point)), QPoint(),
                              QPoint(0, upTo(2) ? 120 : -120), Qt::NoButton, held, Qt::NoScrollPhase, false);
            QApplication::sendEvent(under, &event);
        } else if (kind < 90) {
            static const std::vector<std::pair<int, Qt::KeyboardModifiers>> keys{
                {Qt::Key_Q, {}},      {Qt::Key_W, {}},       {Qt::Key_E, {}},      {Qt::Key_R, {}},
                {Qt::Key_F, {}},      {Qt::Key_A, {}},       {Qt::Key_U, {}},      {Qt::Key_S, {}},
                {Qt::Key_H, {}},      {Qt::Key_Z, {}},       {Qt::Key_Space, {}},  {Qt::Key_Delete, {}},
                {Qt::Key_Escape, {}}, {Qt::Key_Tab, {}},     {Qt::Key_Return, {}}, {Qt::Key_Down, {}},
                {Qt::Key_Up, {}},     {Qt::Key_Left, {}},    {Qt::Key_Right, {}},  {Qt::Key_F2, {}},
                {Qt::Key_Home, {}},   {Qt::Key_PageDown, {}}};
            static const std::vector<int> commands{Qt::Key_Z, Qt::Key_Y, Qt::Key_D, Qt::Key_D, Qt::Key_E,
                                                   Qt::Key_A, Qt::Key_C, Qt::Key_V, Qt::Key_S};
            if (upTo(4)) {
                const auto& [key, with] = oneOf(keys);
                note("key " + std::to_string(key));
                press(window, static_cast<Qt::Key>(key), with);
            } else {
                const int key = oneOf(commands);
                note("Ctrl+key " + std::to_string(key));
                press(window, static_cast<Qt::Key>(key), Qt::ControlModifier);
            }
        } else {
            static const std::vector<const char*> words{"1",
                                                        "-0.5",
                                                        "1e300",
                                                        "12*3",
                                                        "+=5",
                                                        "2 m",
                                                        "",
                                                        "sky",
                                                        "a b|c",
                                                        "\"",
                                                        "{",
                                                        "undo;",
                                                        "redo;",
                                                        "fog",
                                                        "nan",
                                                        "1/0",
                                                        "orvoskyAddSphere",
                                                        "orvoskyCreateCloud",
                                                        "select -all",
                                                        "duplicate",
                                                        "currentTime 7",
                                                        "polySphere",
                                                        "build/none.dds"};
            const char* word = oneOf(words);
            note(std::string("type ") + word);
            for (const char* c = word; *c; ++c) press(window, QTest::asciiToKey(*c), {}, QString(QLatin1Char(*c)));
            if (upTo(3)) press(window, Qt::Key_Return);
        }
    }

    /// Lets go of everything: each call closes one thing and comes back in the loop that it ran.
    void finish() {
        QWidget* over = QApplication::activePopupWidget();
        if (!over) over = QApplication::activeModalWidget();
        if (!over && done_ == 0) {
            ++done_;
            window_.time().play(false);
            window_.view().cancelTool();
        }
        if (!over && done_ > 0) {
            setObjectName("done");
            return;
        }
        QTimer::singleShot(0, this, [this] { finish(); });
        if (auto* dialog = qobject_cast<QDialog*>(over))
            dialog->reject();
        else
            over->close();
    }

    MainWindow& window_;
    std::mt19937 random_;
    int left_, done_ = 0;
    int actingIn_ = -1; ///< the event loop in which an action is under way
    std::deque<std::string> log_;
};

int numberFrom(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text && *text ? std::atoi(text) : otherwise;
}

// Faults: a crash, whatever hands do, and an action that undo does not take back whole. ORVOSKY_RANDOM_EVENTS and
// ORVOSKY_RANDOM_SEED say how much and what; ORVOSKY_RANDOM_LOG=1 prints each event before it happens.
TEST_F(Window, AnybodyMayDoAnything) {
    open();
    const int count = numberFrom("ORVOSKY_RANDOM_EVENTS", 500), seed = numberFrom("ORVOSKY_RANDOM_SEED", 1);
    // Looking around and scrubbing are no edits: for the comparison they are taken back by hand.
    const auto rested = [&] {
        editor().runAside("currentTime 1; string $camera; for ($camera in {\"persp\", \"top\", \"front\", \"side\"}) {"
                          " setAttr ($camera + \".t\") 0 0 0; setAttr ($camera + \".r\") 0 0 0;"
                          " setAttr ($camera + \"Shape.coi\") 5; setAttr ($camera + \"Shape.ow\") 30; }");
        return saved();
    };
    std::string before = rested();
    QObject::connect(&window().document(), &Document::opened, [&] { before = rested(); });
    QApplication::setQuitOnLastWindowClosed(false);
    Anybody anybody(window(), static_cast<unsigned>(seed), count);
    anybody.work();
    settle(300);
    const auto& undo = Editor::scene().undo;
    const std::size_t steps = undo.undoNames().size();
    EXPECT_GT(steps, 0u) << "something was done";
    for (std::size_t i = 0; undo.canUndo() && i <= steps; ++i) editor().run("undo;");
    EXPECT_FALSE(undo.canUndo());
    EXPECT_EQ(rested(), before) << "seed " << seed << "\n" << anybody.last();
    std::printf("%d events, %zu steps of undo\n", count, steps);
}

} // namespace
} // namespace orvosky::window
