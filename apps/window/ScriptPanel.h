#pragma once

#include "Editor.h"

#include <QPlainTextEdit>
#include <QWidget>

#include <vector>

namespace orvosky::window {

/// The script editor: above, the MEL that every action ran and what was said about it; below, a place to write some.
class ScriptPanel : public QWidget {
    Q_OBJECT
public:
    explicit ScriptPanel(Editor& editor, QWidget* parent = nullptr);

    /// What worked of the session since its scene was opened or made, as a script that does it again.
    QString script() const { return recorded_.join('\n') + '\n'; }
    /// Runs what is written below, or what is selected of it.
    void runInput();
    QPlainTextEdit& input() { return *input_; }

private:
    void say(const QString& text, const QColor& colour);
    void hear(Editor::Kind kind, const QString& text);
    void save();

    Editor& editor_;
    QPlainTextEdit *log_, *input_;
    QStringList recorded_;
};

} // namespace orvosky::window
