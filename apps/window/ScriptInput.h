#pragma once

#include <QPlainTextEdit>

class QCompleter;
class QStringListModel;

namespace orvosky::window {

class Editor;

/// What may stand for the word that ends at `at` in MEL: commands, procedures, nodes, types of nodes behind createNode,
/// attributes behind a node's name and a dot, flags of the command behind a dash. At most 200, in order.
QStringList completions(Editor& editor, const QString& text, int at);
/// Where the word begins that ends at `at`.
int wordBegin(const QString& text, int at);

/// A place to write MEL. Words are completed as they are typed, from their third letter on, or by Ctrl+Space.
class ScriptInput : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit ScriptInput(Editor& editor, QWidget* parent = nullptr);
    /// Puts the cursor into a line, counted from 1.
    void goToLine(int line);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    void offer(bool asked);

    Editor& editor_;
    QCompleter* completer_;
    QStringListModel* words_;
};

} // namespace orvosky::window
