#pragma once

#include "base/QuotedText.h"
#include "mel/Value.h"
#include "scene/Undo.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <functional>
#include <string>
#include <vector>

class QWidget;

namespace host::scene {
class Node;
class Scene;
} // namespace host::scene

namespace orvosky::window {

/// MEL's spelling of a text, with its quotes.
inline std::string quoted(const std::string& text) { return host::quotedText(text); }
/// A number as MEL reads it back, to the last bit.
std::string numberText(double value);

/// How the window changes the scene: by MEL, one statement an action and a step of the undo queue.
///
/// Every panel listens to its signals and looks at the scene itself; none keeps a copy.
class Editor : public QObject {
    Q_OBJECT
public:
    enum class Kind { Output, Info, Warning, Error };
    Q_ENUM(Kind)

    explicit Editor(QObject* parent = nullptr);
    ~Editor() override;

    static host::scene::Scene& scene();

    /// Runs an action of the user, one statement: its text is echoed and names the step of undo that it is. False when
    /// it failed; what was wrong has been told.
    bool run(const std::string& mel);
    /// Runs what the user typed; `name` stands for it in errors. Each statement is a step of undo.
    bool runTyped(const std::string& mel, const std::string& name = {});
    /// Echoes an action that did its work by other ways than run().
    void echo(const std::string& mel) { emit echoed(QString::fromStdString(mel)); }
    /// Runs something that is no edit (the view's camera): no echo, no undo, the scene stays as saved as it was.
    bool runAside(const std::string& mel);
    /// Runs a query. None when it fails, without a message.
    host::mel::Value ask(const std::string& mel);

    /// @name A drag: a change that is shown before it is made. Each preview takes back the one before
    /// @{
    bool preview(const std::string& mel);
    /// Takes the preview back and runs the action.
    bool finish(const std::string& mel);
    void cancelPreview();
    bool previewing() const { return !preview_.empty(); }
    /// @}

    /// Whether a script has been running for so long that the window shows itself meanwhile. Nothing else runs then.
    bool waiting() const { return waiting_; }

    /// Tells all panels that the scene may be another one now, as after opening a file or a draw that changed nodes.
    void announce();
    /// A number that is another one after each change; never 0.
    unsigned long changes() const { return changes_; }
    /// Whether a frame is being drawn.
    bool drawing = false;
    /// Called before scripts run, and after the window has shown itself: nodes need the view's OpenGL context.
    std::function<void()> makeCurrent;
    /// A press of it stops what takes long, as Esc does.
    QWidget* stopsWork = nullptr;

signals:
    void echoed(const QString& mel);
    /// What was echoed last did not work.
    void failed();
    /// What runs takes long: Esc stops it. `part` of it is done, 0 to 1; below 0 where nobody knows.
    void takesLong(double part);
    /// A script has called `quit`.
    void quitAsked();
    void message(orvosky::window::Editor::Kind kind, const QString& text);
    /// Something of the scene has changed: values, nodes, names, selection or time.
    void changed();
    void selectionChanged();

private:
    bool execute(const std::string& mel, const std::string& name);
    void takePreviewBack();
    bool stopAsked(double part);
    bool workWatched(double part);

    std::vector<host::scene::Edit> preview_;
    bool previewModified_ = false;
    int running_ = 0;
    bool waiting_ = false;
    QElapsedTimer began_, looked_; ///< at work that takes long
    unsigned long changes_ = 1;
    std::vector<const void*> selected_;
};

} // namespace orvosky::window
