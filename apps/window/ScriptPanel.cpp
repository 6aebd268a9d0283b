#include "ScriptPanel.h"

#include "ProjectFiles.h"
#include "Theme.h"

#include "base/FileReplacement.h"
#include "base/Messages.h"

#include <QFile>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRegularExpression>
#include <QShortcut>
#include <QSplitter>
#include <QTextBlock>
#include <QVBoxLayout>

#include <algorithm>

namespace orvosky::window {
namespace {

constexpr int longestLog = 5000;         ///< lines
constexpr qint64 longestFile = 10 << 20; ///< bytes

/// What begins a session's script: everything before it is of another scene.
bool beginsAnew(const QString& mel) {
    static const QRegularExpression shape(R"(^\s*(file\s+-f\w*\s+-(open|new)|orvoskyNewFromPreset|source)\b)");
    return shape.match(mel).hasMatch();
}

} // namespace

ScriptPanel::ScriptPanel(Editor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), log_(new QPlainTextEdit), input_(new ScriptInput(editor)) {
    setObjectName("scripts");
    log_->setReadOnly(true);
    for (QWidget* half : {static_cast<QWidget*>(log_), static_cast<QWidget*>(input_)}) half->setMinimumHeight(36);
    log_->setMaximumBlockCount(longestLog);
    input_->setPlaceholderText(tr("MEL; Ctrl+Enter runs it, or what is selected of it"));
    auto* split = new QSplitter(Qt::Vertical);
    split->addWidget(log_);
    split->addWidget(input_);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    auto* buttons = new QHBoxLayout;
    const auto button = [&](const QString& label, const QString& tip, auto work) {
        auto* made = new QPushButton(label);
        made->setToolTip(tip);
        connect(made, &QPushButton::clicked, this, work);
        buttons->addWidget(made);
    };
    button(tr("Run"), tr("Runs what is written, or what is selected of it (Ctrl+Enter)"), [this] { runInput(); });
    button(tr("Save Session..."), tr("Saves what was done since the scene was opened as a script"), [this] { save(); });
    button(tr("Clear"), tr("Empties the upper part"), [this] { log_->clear(); });
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 8);
    layout->setSpacing(6);
    layout->addWidget(split, 1);
    layout->addLayout(buttons);
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* run = new QShortcut(QKeySequence(Qt::ControlModifier | key), input_);
        run->setContext(Qt::WidgetShortcut);
        connect(run, &QShortcut::activated, this, &ScriptPanel::runInput);
    }
    connect(&editor_, &Editor::echoed, this, [this](const QString& mel) {
        if (beginsAnew(mel)) recorded_.clear();
        recorded_ << mel;
        say(mel, theme::text());
    });
    connect(&editor_, &Editor::failed, this, [this] {
        if (!recorded_.isEmpty()) recorded_.removeLast();
    });
    connect(&editor_, &Editor::message, this, &ScriptPanel::hear);
    // A click on an error goes to its line.
    connect(log_, &QPlainTextEdit::cursorPositionChanged, this, [this] { goTo(log_->textCursor().block().text()); });
}

QSize ScriptPanel::sizeHint() const { return {640, std::clamp(window()->height() * 3 / 10, 120, 230)}; }

void ScriptPanel::goTo(const QString& logged) {
    static const QRegularExpression place(R"(^// (?:Error|Warning): file: (.+?) line (\d+))");
    const auto match = place.match(logged);
    if (!match.hasMatch()) return;
    const int line = match.captured(2).toInt();
    if (match.captured(1) == "typed") {
        input_->goToLine(line);
        return;
    }
    QFile file(match.captured(1));
    if (!file.open(QIODevice::ReadOnly)) return;
    if (!file_) {
        file_ = new QPlainTextEdit(this);
        file_->setWindowFlags(Qt::Tool);
        file_->setAttribute(Qt::WA_DeleteOnClose);
        file_->setObjectName("scriptFile");
        file_->setReadOnly(true);
        file_->setLineWrapMode(QPlainTextEdit::NoWrap);
        file_->resize(720, 420);
    }
    file_->setWindowTitle(file.fileName());
    file_->setPlainText(QString::fromUtf8(file.read(longestFile)));
    QTextCursor cursor(file_->document()->findBlockByNumber(line - 1));
    cursor.select(QTextCursor::LineUnderCursor);
    file_->setTextCursor(cursor);
    file_->show();
    file_->centerCursor();
}

void ScriptPanel::say(const QString& text, const QColor& colour) {
    QTextCharFormat format;
    format.setForeground(colour);
    QTextCursor end(log_->document());
    end.movePosition(QTextCursor::End);
    if (!log_->document()->isEmpty()) end.insertBlock();
    end.insertText(text, format);
    log_->ensureCursorVisible();
}

void ScriptPanel::hear(Editor::Kind kind, const QString& text) {
    const QString said = text.trimmed();
    switch (kind) {
    case Editor::Kind::Output: say(text.endsWith('\n') ? text.chopped(1) : text, theme::dimText()); break;
    case Editor::Kind::Info: say("// " + said, theme::dimText()); break;
    case Editor::Kind::Warning: say("// Warning: " + said, theme::warning()); break;
    case Editor::Kind::Error: say("// Error: " + said, theme::error()); break;
    }
}

void ScriptPanel::runInput() {
    QString mel = input_->textCursor().selectedText().replace(QChar(0x2029), '\n');
    if (mel.isEmpty()) mel = input_->toPlainText();
    if (!mel.trimmed().isEmpty()) editor_.runTyped(mel.toStdString(), "typed");
}

void ScriptPanel::save() {
    QString file = QFileDialog::getSaveFileName(window(), tr("Save Session"), projectRoot() + "/session.mel",
                                                tr("MEL (*.mel)"), nullptr, QFileDialog::DontUseNativeDialog);
    if (file.isEmpty()) return;
    if (!file.endsWith(".mel")) file += ".mel";
    try {
        host::base::replaceFile(file.toStdString(), script().toStdString());
        host::showInfo("Saved the session as " + file.toStdString() + ".");
    } catch (const std::exception& e) {
        host::showError("Cannot write " + file.toStdString() + ": " + e.what());
    }
}

} // namespace orvosky::window
