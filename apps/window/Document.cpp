#include "Document.h"

#include "Editor.h"
#include "FileChooser.h"
#include "ProjectFiles.h"
#include "WindowModule.h"

#include "base/Messages.h"
#include "scene/Scene.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSysInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace orvosky::window {
namespace {

constexpr int copyEvery = 20; ///< seconds, unless the preferences say otherwise; at most a minute
constexpr int mostRecent = 10;
const char* const originKey = "orvoskyEditedFile"; ///< file info of a copy: what it is a copy of

/// The process that a copy belongs to, from its name: "dusk.host.1234.ma"; 0 for none, or one of another machine.
qint64 ownerOf(const QString& file) {
    const QStringList parts = QFileInfo(file).fileName().split('.');
    const auto n = parts.size();
    return n >= 4 && parts[n - 3] == QSysInfo::machineHostName() ? parts[n - 2].toLongLong() : 0;
}

bool lives(qint64 process) { return kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH; }

} // namespace

Document::Document(Editor& editor, const WindowStart& start, QWidget* window)
    : editor_(editor), start_(start), window_(window) {
    copyTimer_.setInterval(std::clamp(QSettings().value("copyEverySeconds", copyEvery).toInt(), 1, 60) * 1000);
    connect(&copyTimer_, &QTimer::timeout, this, &Document::keepCopy);
    copyTimer_.start();
    connect(&editor_, &Editor::changed, this, &Document::follow);
}

Document::~Document() = default;

bool Document::isNamed() const { return !untitled_ && !Editor::scene().fileName.empty(); }

QString Document::title() const {
    const QString name =
        isNamed() ? QFileInfo(QString::fromStdString(Editor::scene().fileName)).fileName() : tr("untitled");
    return Editor::scene().modified ? name + "*" : name;
}

void Document::follow() {
    ++changes_;
    if (const QString now = title(); now != shownTitle_) {
        shownTitle_ = now;
        emit titleChanged();
    }
}

QStringList Document::recent() const { return QSettings().value("recent").toStringList(); }

void Document::remember(const QString& file) {
    QStringList files = recent();
    files.removeAll(file);
    files.prepend(file);
    while (files.size() > mostRecent) files.removeLast();
    QSettings().setValue("recent", files);
}

bool Document::mayGo() {
    if (!Editor::scene().modified) return true;
    QMessageBox box(QMessageBox::NoIcon, tr("Unsaved Work"),
                    tr("Save the changes to %1?").arg(isNamed() ? title().remove('*') : tr("the untitled scene")),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, window_);
    box.setDefaultButton(QMessageBox::Save);
    box.button(QMessageBox::Discard)->setText(tr("Do Not Save"));
    box.setObjectName("unsaved");
    switch (box.exec()) {
    case QMessageBox::Save: return save();
    case QMessageBox::Discard: return true;
    default: return false;
    }
}

bool Document::load(const QString& file, const std::function<bool()>& work) {
    // A scene that fails to open leaves the present one: it is kept as a file meanwhile.
    const QTemporaryDir folder;
    const QString kept = folder.filePath("kept.ma");
    const unsigned long before = Editor::scene().generation();
    const std::string name = Editor::scene().fileName;
    const bool modified = Editor::scene().modified, untitled = untitled_;
    const bool holds = editor_.runAside("file -f -exportAll " + quoted(kept.toStdString()) + ";");
    if (editor_.makeCurrent) editor_.makeCurrent();
    const bool worked = work();
    if (!worked && holds && Editor::scene().generation() != before) {
        editor_.runAside("file -f -open " + quoted(kept.toStdString()) + ";");
        Editor::scene().fileName = name;
        Editor::scene().modified = modified;
        untitled_ = untitled;
    }
    if (!worked) {
        host::showError(QString("%1 could not be opened; the scene stays as it was.").arg(file).toStdString());
    }
    if (worked) {
        giveUp();
        const host::scene::UndoQueue::Suspend quiet(Editor::scene().undo);
        const bool unsaved = Editor::scene().modified;
        if (const std::string problem = start_.bringUpToDate(); !problem.empty()) host::showError(problem);
        Editor::scene().modified = unsaved;
    }
    editor_.announce();
    follow();
    emit opened(worked);
    return worked;
}

void Document::newScene() {
    if (!mayGo()) return;
    editor_.run("file -f -new;");
    untitled_ = true;
    giveUp();
    follow();
    emit opened(true);
}

bool Document::open(const QString& file) {
    if (!mayGo()) return false;
    const std::string path = QFileInfo(file).absoluteFilePath().toStdString();
    const bool script = file.endsWith(".mel", Qt::CaseInsensitive);
    const bool worked = load(file, [&] {
        editor_.echo((script ? "source " : "file -f -open ") + quoted(path) + ";");
        try {
            if (script) editor_.runAside("file -f -new;");
            start_.open(path);
        } catch (const std::exception& e) {
            if (*e.what()) host::showError(e.what());
            return false;
        }
        untitled_ = script;
        if (!script) remember(QString::fromStdString(path));
        return true;
    });
    if (worked) emit titleChanged();
    return worked;
}

bool Document::openPreset(const QString& file) {
    if (!mayGo()) return false;
    return load(file, [&] {
        // By its name, so that what is recorded works elsewhere.
        const std::string name = QFileInfo(file).fileName().toStdString();
        if (!editor_.run("orvoskyNewFromPreset " + quoted(name) + ";")) return false;
        Editor::scene().fileName.clear();
        Editor::scene().modified = false;
        Editor::scene().undo.clear();
        untitled_ = true;
        return true;
    });
}

bool Document::save() {
    if (!isNamed()) return saveAs();
    if (!editor_.run("file -save;")) return false;
    giveUp();
    follow();
    return true;
}

bool Document::saveAs() {
    const QString folder = isNamed() ? QString::fromStdString(Editor::scene().fileName)
                                     : projectRoot() + (QDir(projectRoot() + "/scenes").exists() ? "/scenes/" : "/") +
                                           tr("untitled") + ".ma";
    QString file = QFileDialog::getSaveFileName(window_, tr("Save As"), folder, tr("Maya ASCII (*.ma)"), nullptr,
                                                QFileDialog::DontUseNativeDialog);
    if (file.isEmpty()) return false;
    if (!file.endsWith(".ma", Qt::CaseInsensitive)) file += ".ma";
    const std::string before = Editor::scene().fileName;
    if (!editor_.run("file -rename " + quoted(file.toStdString()) + "; file -save;")) {
        Editor::scene().fileName = before;
        return false;
    }
    untitled_ = false;
    remember(file);
    giveUp();
    follow();
    emit opened(true);
    return true;
}

void Document::browse() {
    const QString start = isNamed() ? QFileInfo(QString::fromStdString(Editor::scene().fileName)).path()
                          : QDir(projectRoot() + "/scenes").exists() ? projectRoot() + "/scenes"
                                                                     : projectRoot();
    const QString file = chooseFile(window_, tr("Open"), start, tr("Scenes (*.ma *.mel)"));
    if (!file.isEmpty()) open(file);
}

QString Document::copyFolder() const { return projectRoot() + "/autosave"; }

QString Document::copyFile() const {
    const QString stem = isNamed() ? QFileInfo(QString::fromStdString(Editor::scene().fileName)).completeBaseName()
                                   : QString("untitled");
    return QString("%1/%2.%3.%4.ma").arg(copyFolder(), stem, QSysInfo::machineHostName()).arg(getpid());
}

void Document::keepCopy() {
    auto& scene = Editor::scene();
    if (!scene.modified || editor_.previewing()) return;
    if (changes_ == copiedChanges_ && !copied_.isEmpty()) return;
    if (!QDir().mkpath(copyFolder())) return;
    const QString file = copyFile();
    scene.fileInfo[originKey] = isNamed() ? scene.fileName : "";
    const bool wrote = editor_.runAside("file -f -exportAll " + quoted(file.toStdString()) + ";");
    scene.fileInfo.erase(originKey);
    if (!wrote) return;
    if (!copied_.isEmpty() && copied_ != file) QFile::remove(copied_);
    copied_ = file;
    copiedChanges_ = changes_;
}

void Document::giveUp() {
    if (copied_.isEmpty()) return;
    QFile::remove(copied_);
    QDir().rmdir(copyFolder());
    copied_.clear();
}

bool Document::recover() {
    QFileInfoList left;
    for (const QFileInfo& file : QDir(copyFolder()).entryInfoList({"*.ma"}, QDir::Files, QDir::Time))
        if (const qint64 owner = ownerOf(file.filePath()); owner > 0 && !lives(owner)) left << file;
    for (const QFileInfo& file : left) {
        QMessageBox box(
            QMessageBox::NoIcon, tr("Unsaved Work"),
            tr("%1 was not saved when it was last edited. The work up to %2 was kept.")
                .arg(file.fileName().section('.', 0, -4), QLocale::c().toString(file.lastModified(), "d MMM, HH:mm")),
            QMessageBox::NoButton, window_);
        auto* take = box.addButton(tr("Recover"), QMessageBox::AcceptRole);
        auto* drop = box.addButton(tr("Discard"), QMessageBox::DestructiveRole);
        box.addButton(tr("Later"), QMessageBox::RejectRole);
        box.setObjectName("recover");
        box.setDefaultButton(qobject_cast<QPushButton*>(take));
        box.exec();
        if (box.clickedButton() == drop) QFile::remove(file.filePath());
        if (box.clickedButton() != take) continue;
        const bool worked = load(file.filePath(), [&] {
            if (!editor_.run("file -f -open " + quoted(file.filePath().toStdString()) + ";")) return false;
            auto& scene = Editor::scene();
            const auto origin = scene.fileInfo.find(originKey);
            scene.fileName = origin == scene.fileInfo.end() ? std::string() : origin->second;
            scene.fileInfo.erase(originKey);
            scene.modified = true;
            untitled_ = scene.fileName.empty();
            return true;
        });
        if (!worked) continue;
        QFile::remove(file.filePath());
        Editor::scene().modified = true;
        keepCopy();
        return true;
    }
    return false;
}

} // namespace orvosky::window
