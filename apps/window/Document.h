#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <filesystem>
#include <functional>

class QWidget;

namespace orvosky::window {

class Editor;
struct WindowStart;

/// The scene as a file: opening, saving, what is asked before work would be lost, and the copy that is kept meanwhile.
///
/// While there is unsaved work, a copy of it is written into the workspace's folder "autosave" at most a minute after
/// it was done. It goes when the work is saved or given up, and is offered by the next start when neither came to pass.
class Document : public QObject {
    Q_OBJECT
public:
    Document(Editor& editor, const WindowStart& start, QWidget* window);
    ~Document() override;

    /// Whether the scene may be given up: asks where there is unsaved work, and saves it if the user says so.
    bool mayGo();
    void newScene();
    /// False when the user keeps the present scene, or the file could not be opened; then the present one stays.
    bool open(const QString& file);
    /// Opens one of the presets that come with the tools: it has no name of its own, and saving asks for one.
    bool openPreset(const QString& file);
    bool save();
    bool saveAs();
    /// Asks for the file to open.
    void browse();
    /// Offers what earlier sessions did not come to save. True when something was taken over.
    bool recover();
    /// Ends without trace: the copy of unsaved work goes.
    void giveUp();

    /// "dusk.ma", "untitled"; with a star when there is unsaved work.
    QString title() const;
    QStringList recent() const;
    bool isNamed() const;
    /// Writes the copy of unsaved work now, where there is any that it lacks.
    void keepCopy();

signals:
    /// Another scene, or the same one under another name. Not `another` when that could not be opened and the present
    /// one stays, though its nodes may be new ones.
    void opened(bool another);
    void titleChanged();

private:
    bool load(const QString& file, const std::function<bool()>& work);
    void remember(const QString& file);
    void follow();
    QString copyFolder() const;
    QString copyFile() const;

    Editor& editor_;
    const WindowStart& start_;
    QWidget* window_;
    QTimer copyTimer_;
    QString shownTitle_, copied_; ///< the file of the copy that is there
    unsigned long changes_ = 0, copiedChanges_ = 0;
    bool untitled_ = true;
};

} // namespace orvosky::window
