#pragma once

#include "Editor.h"
#include "ScriptInput.h"

#include <QPlainTextEdit>
#include <QPointer>
#include <QWidget>

#include <vector>

namespace orvosky::window {

/// The script editor: above, the MEL that every action ran and what was said about it; below, a place to write some.
class ScriptPanel : public QWidget {
    Q_OBJECT
public:
    explicit ScriptPanel(Editor& editor, QWidget* parent = nullptr);
    /// Low enough to leave the sky its room.
    QSize sizeHint() const override;

    /// What worked of the session since its scene was opened or made, as a script that does it again.
    QString script() const { return recorded_.join('\n') + '\n'; }
    /// Runs what is written below, or what is selected of it.
    void runInput();
    ScriptInput& input() { return *input_; }
    /// Shows the place that a line of the log speaks of: in what was typed, or in a file.
    void goTo(const QString& logged);

private:
    void say(const QString& text, const QColor& colour);
    void hear(Editor::Kind kind, const QString& text);
    void save();

    Editor& editor_;
    QPlainTextEdit* log_;
    ScriptInput* input_;
    QPointer<QPlainTextEdit> file_; ///< the file that an error was in, beside the window
    QStringList recorded_;
};

} // namespace orvosky::window
