#include "WindowModule.h"

#include "MainWindow.h"
#include "Theme.h"

#include "base/Messages.h"

#include <QApplication>
#include <QLocale>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QSettings>
#include <QSurfaceFormat>
#include <QTranslator>

#include <clocale>
#include <cstdlib>
#include <string>

namespace orvosky::window {
namespace {

const char* const wayOut =
    " Run it on a desktop, or name one in DISPLAY; `orvosky render` and `orvosky export` need none.";

/// What Qt said before it gave up.
std::string lastWords;

/// Qt ends the process when it finds no display; what it said becomes one line.
void hear(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtFatalMsg) {
        const std::string why = lastWords.empty() ? "there is no display" : lastWords;
        host::showError("The window cannot be opened: " + why + "." + wayOut);
        std::_Exit(1);
    }
    if (text.contains("could not connect to display")) lastWords = text.trimmed().toStdString();
}

/// Why a window cannot be drawn into; empty when it can.
std::string glProblem() {
    if (const char* off = std::getenv("ORVOSKY_NO_GL"); off && *off && std::string(off) != "0")
        return "it is switched off by ORVOSKY_NO_GL";
    QOpenGLContext context;
    if (!context.create()) return "no context can be made";
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!context.makeCurrent(&surface)) return "its context cannot be used";
    const auto version = context.format().version();
    const bool enough = version >= qMakePair(2, 1) && context.format().profile() != QSurfaceFormat::CoreProfile;
    context.doneCurrent();
    return enough ? std::string()
                  : "version " + std::to_string(version.first) + "." + std::to_string(version.second) +
                        " is too old, or lacks the compatibility profile";
}

} // namespace

void prepareApplication() {
    QSurfaceFormat format;
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    format.setSwapInterval(1);
    QSurfaceFormat::setDefaultFormat(format);
    QCoreApplication::setOrganizationName("orvosky");
    QCoreApplication::setApplicationName("window");
    QSettings::setDefaultFormat(QSettings::IniFormat);
    // Qt takes it from the environment, before there is an application; what stands there already goes first.
    const double scale = QSettings().value(scaleSetting).toDouble();
    if (scale >= 1 && scale <= 3 && !qEnvironmentVariableIsSet("QT_SCALE_FACTOR"))
        qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
}

int run(const WindowStart& start) {
    qInstallMessageHandler(hear);
    prepareApplication();
    int count = 1;
    char name[] = "orvosky";
    char* arguments[] = {name, nullptr};
    QApplication application(count, arguments);
    std::setlocale(LC_NUMERIC, "C"); // which Qt sets to the user's
    if (const std::string problem = glProblem(); !problem.empty()) {
        host::showError("The window cannot be opened: it draws with OpenGL 2.1, and " + problem + "." + wayOut);
        return 1;
    }
    QTranslator texts;
    const QString folder = QString::fromStdString((start.toolRoot / "texts").string());
    if (texts.load(QLocale(), "orvosky", "_", folder) || texts.load("orvosky_en", folder))
        QCoreApplication::installTranslator(&texts);
    theme::setIconFolder(start.toolRoot / "icons");
    theme::apply(application);
    start.begin();
    int status = 0;
    {
        MainWindow window(start);
        window.start();
        status = application.exec();
    }
    return status;
}

} // namespace orvosky::window

extern "C" __attribute__((visibility("default"))) int orvosky_window(const orvosky::window::WindowStart& start) {
    return orvosky::window::run(start);
}
