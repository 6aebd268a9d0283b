#include "WindowFixture.h"

#include "Theme.h"

#include "commands/Host.h"
#include "kit/ProgramRun.h"
#include "scene/Scene.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QSettings>
#include <QTimer>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvosky::window {

const char* const skyScene = R"(//Maya ASCII 2010 scene
requires maya "2010";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "OrvoSkyData";
createNode transform -n "settings" -p "OrvoSkyData";
createNode orvosky_SkySceneSettings -n "settingsShape" -p "settings";
createNode transform -n "sky" -p "OrvoSkyData";
createNode orvosky_BasicSkyLocator -n "skyShape" -p "sky";
createNode transform -n "fog" -p "OrvoSkyData";
createNode orvosky_ExpHeightFog -n "fogShape" -p "fog";
createNode transform -n "renderer";
createNode orvosky_SkyRenderer -n "rendererShape" -p "renderer";
)";

int runProgram(const fs::path& folder, const std::vector<std::string>& words, std::string* said,
               const std::vector<std::pair<std::string, std::string>>& environment) {
    // The GL driver is gone before the leak check, and its own with it.
    std::map<std::string, std::string> all{{"ASAN_OPTIONS", "detect_leaks=0"}};
    all.insert(environment.begin(), environment.end());
    const orvo::test::Outcome end = orvo::test::runProgram(folder, words, all);
    if (said) *said = end.out + end.error;
    return end.status;
}

void answer(const char* dialog, const char* button) {
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        for (QWidget* top : QApplication::topLevelWidgets())
            if (auto* box = qobject_cast<QMessageBox*>(top); box && box->objectName() == dialog && box->isVisible())
                for (QAbstractButton* b : box->buttons())
                    if (b->text().remove('&') == button) {
                        timer->deleteLater();
                        b->click();
                        return;
                    }
    });
    timer->start(20);
}

namespace {

/// An X server for this process, and an application on it; made when the first test needs them.
class Desktop {
public:
    /// Made when the first test asks; gone before main ends, as an application has to be.
    static std::unique_ptr<Desktop>& instance() {
        static std::unique_ptr<Desktop> desktop;
        return desktop;
    }

    Desktop() {
        int ready[2];
        if (pipe(ready) != 0) std::abort();
        server_ = fork();
        if (server_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGTERM); // it goes with the test, however that ends
            const std::string number = std::to_string(ready[1]);
            const int null = ::open("/dev/null", O_WRONLY);
            dup2(null, STDERR_FILENO);
            execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1280x800x24", "-nolisten", "tcp",
                   "-noreset", nullptr);
            _exit(97);
        }
        ::close(ready[1]);
        char name[16] = ":";
        for (std::size_t at = 1; at + 1 < sizeof name && read(ready[0], name + at, 1) == 1 && name[at] != '\n'; ++at)
            name[at + 1] = '\0';
        ::close(ready[0]);
        for (char& c : name)
            if (c == '\n') c = '\0';
        if (!name[1]) {
            std::fprintf(stderr, "Xvfb did not start.\n");
            std::abort();
        }
        setenv("DISPLAY", name, 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
        prepareApplication();
        static int count = 1;
        static char program[] = "window_tests";
        static char* arguments[] = {program, nullptr};
        application_ = new QApplication(count, arguments);
        setlocale(LC_NUMERIC, "C");
        theme::setIconFolder(orvo::test::buildTree("share/orvosky/icons"));
        theme::apply(*application_);
    }
    ~Desktop() {
        delete application_;
        kill(server_, SIGTERM);
        waitpid(server_, nullptr, 0);
    }
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

private:
    pid_t server_;
    QApplication* application_;
};

} // namespace

Window::Window()
    : folder_([]() -> const orvo::test::TemporaryFolder& {
          static const orvo::test::TemporaryFolder folder;
          return folder;
      }()) {}

void Window::SetUp() {
    for (const auto& left : fs::directory_iterator(folder_)) fs::remove_all(left.path());
    write(folder_ / "workspace.mel", "workspace -fr \"scene\" \"scenes\";\n");
    fs::create_directories(folder_ / "scenes");
    setenv("XDG_CONFIG_HOME", (folder_ / ".config").c_str(), 1);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope,
                       QString::fromStdString((folder_ / ".config").string()));
    if (!Desktop::instance()) Desktop::instance() = std::make_unique<Desktop>();
    common_.project = folder_.string();
    start_ = windowStart(common_, options_, session_);
}

void Window::TearDown() { close(); }

void Window::open(const std::string& scene) {
    start_.begin();
    window_ = std::make_unique<MainWindow>(start_);
    QObject::connect(&window_->editor(), &Editor::echoed,
                     [this](const QString& mel) { echoed_.push_back(mel.toStdString()); });
    QObject::connect(&window_->editor(), &Editor::message, [this](Editor::Kind kind, const QString& text) {
        if (kind == Editor::Kind::Error) errors_.push_back(text.toStdString());
    });
    window_->start();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
    window_->activateWindow();
    (void)QTest::qWaitForWindowActive(window_.get(), 2000);
    if (!scene.empty()) {
        write(folder_ / "scenes/opened.ma", scene);
        ASSERT_TRUE(window_->document().open(QString::fromStdString((folder_ / "scenes/opened.ma").string())));
    }
    settle(250);
}

void Window::close() {
    window_.reset(); // and the session, at its end
    echoed_.clear();
}

std::string Window::saved() {
    const fs::path file = folder_ / "compared.ma";
    EXPECT_TRUE(editor().runAside("file -f -exportAll " + quoted(file.string()) + ";"));
    return content(file);
}

} // namespace orvosky::window

int main(int count, char** words) {
    testing::InitGoogleMock(&count, words);
    const int status = RUN_ALL_TESTS();
    orvosky::window::Desktop::instance().reset();
    return status;
}
