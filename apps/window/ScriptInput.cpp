#include "ScriptInput.h"

#include "Editor.h"

#include "commands/Host.h"
#include "scene/Scene.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QMimeData>
#include <QRegularExpression>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBlock>

#include <algorithm>

namespace orvosky::window {
namespace {

constexpr int longEnough = 3; ///< letters after which words are offered unasked
constexpr qsizetype most = 200;

bool inWord(QChar c) { return c.isLetterOrNumber() || c == '_' || c == '|' || c == ':' || c == '.' || c == '-'; }

/// The first word of the statement that `at` is in.
QString commandAt(const QString& text, int at) {
    int begin = at;
    while (begin > 0 && !QString(";{}`\n(").contains(text[begin - 1])) --begin;
    static const QRegularExpression word(R"(\w+)");
    return word.match(text.mid(begin, at - begin)).captured();
}

QStringList listed(Editor& editor, const std::string& mel) {
    QStringList all;
    for (const std::string& name : editor.ask(mel).toStringArray()) all << QString::fromStdString(name);
    return all;
}

} // namespace

int wordBegin(const QString& text, int at) {
    int begin = std::min<int>(at, static_cast<int>(text.size()));
    while (begin > 0 && inWord(text[begin - 1])) --begin;
    return begin;
}

QStringList completions(Editor& editor, const QString& text, int at) {
    const int begin = wordBegin(text, at);
    const QString word = text.mid(begin, at - begin);
    if (begin > 0 && text[begin - 1] == '$') return {};
    QStringList found;
    const auto take = [&](const QStringList& names) {
        for (const QString& name : names)
            if (name.startsWith(word, Qt::CaseInsensitive)) found << name;
    };
    if (word.startsWith('-')) {
        static const QRegularExpression flag(R"(^\s*-\w+ -(\w+))", QRegularExpression::MultilineOption);
        const QString told =
            QString::fromStdString(editor.ask("help " + quoted(commandAt(text, begin).toStdString())).toString());
        for (auto it = flag.globalMatch(told); it.hasNext();) take({"-" + it.next().captured(1)});
    } else if (const auto dot = word.lastIndexOf('.'); dot > 0) {
        const QString before = word.left(dot + 1);
        const auto* node = Editor::scene().findNode(word.left(dot).toStdString());
        if (!node) return {};
        for (const auto* attribute : node->attributes())
            if (!attribute->hidden) take({before + QString::fromStdString(attribute->longName)});
    } else if (!word.isEmpty()) {
        const std::string like = quoted(word.toStdString() + "*");
        if (commandAt(text, begin) == "createNode") take(listed(editor, "allNodeTypes"));
        take(listed(editor, "help -list " + like));
        for (const auto& folder : host::Host::instance().interpreter().scriptPath()) {
            std::error_code failed;
            for (std::filesystem::directory_iterator file(folder, failed), end; !failed && file != end;
                 file.increment(failed))
                if (file->path().extension() == ".mel") take({QString::fromStdString(file->path().stem().string())});
        }
        take(listed(editor, "ls " + like));
    }
    found.removeDuplicates();
    found.sort(Qt::CaseInsensitive);
    if (found.size() == 1 && found.front() == word) return {};
    return found.mid(0, most);
}

ScriptInput::ScriptInput(Editor& editor, QWidget* parent)
    : QPlainTextEdit(parent), editor_(editor), completer_(new QCompleter(this)), words_(new QStringListModel(this)) {
    completer_->setModel(words_);
    completer_->setWidget(this);
    completer_->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this, [this](const QString& word) {
        QTextCursor cursor = textCursor();
        const int at = cursor.positionInBlock();
        const int begin = wordBegin(cursor.block().text(), at);
        cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor, at - begin);
        cursor.insertText(word);
        setTextCursor(cursor);
    });
}

void ScriptInput::goToLine(int line) {
    const QTextBlock block = document()->findBlockByNumber(line - 1);
    if (!block.isValid()) return;
    setTextCursor(QTextCursor(block));
    setFocus();
}

void ScriptInput::keyPressEvent(QKeyEvent* event) {
    const bool asked = event->key() == Qt::Key_Space && event->modifiers() & Qt::ControlModifier;
    if (completer_->popup()->isVisible()) switch (event->key()) {
        case Qt::Key_Enter:
        case Qt::Key_Return:
        case Qt::Key_Escape:
        case Qt::Key_Tab:
        case Qt::Key_Backtab: event->ignore(); return; // the list takes them
        default: break;
        }
    if (!asked) QPlainTextEdit::keyPressEvent(event);
    const bool typed = !event->text().isEmpty() && event->text().front().isPrint();
    if (asked || typed || event->key() == Qt::Key_Backspace)
        offer(asked);
    else if (event->key() != Qt::Key_Shift)
        completer_->popup()->hide();
}

void ScriptInput::insertFromMimeData(const QMimeData* source) {
    // Qt 6.4 asks for the first of the formats, and crashes where the clipboard is empty.
    if (source && source->hasText()) QPlainTextEdit::insertFromMimeData(source);
}

void ScriptInput::offer(bool asked) {
    const QTextCursor cursor = textCursor();
    const QString line = cursor.block().text();
    const int at = cursor.positionInBlock();
    const QString word = line.mid(wordBegin(line, at), at - wordBegin(line, at));
    const bool wanted = asked || word.size() >= longEnough || word.startsWith('-') || word.endsWith('.');
    const QStringList found = wanted ? completions(editor_, line, at) : QStringList();
    if (found.isEmpty()) {
        completer_->popup()->hide();
        return;
    }
    words_->setStringList(found);
    completer_->popup()->setCurrentIndex(completer_->completionModel()->index(0, 0));
    QRect place = cursorRect();
    place.setWidth(completer_->popup()->sizeHintForColumn(0) +
                   completer_->popup()->verticalScrollBar()->sizeHint().width() + 12);
    completer_->complete(place);
}

} // namespace orvosky::window
