#include "HistoryPanel.h"

#include "Editor.h"
#include "Theme.h"

#include "scene/Scene.h"

namespace orvosky::window {

HistoryPanel::HistoryPanel(Editor& editor, QWidget* parent) : QListWidget(parent), editor_(editor) {
    setObjectName("history");
    setUniformItemSizes(true);
    connect(&editor_, &Editor::changed, this, &HistoryPanel::fill);
    connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { go(row(item)); });
    fill();
}

void HistoryPanel::fill() {
    const auto& undo = Editor::scene().undo;
    auto done = undo.undoNames(), undone = undo.redoNames();
    if (done == done_ && undone == undone_ && count() > 0) return;
    done_ = std::move(done);
    undone_ = std::move(undone);
    clear();
    addItem(tr("As opened"));
    for (const auto& name : done_) addItem(QString::fromStdString(name));
    for (const auto& name : undone_) {
        addItem(QString::fromStdString(name));
        item(count() - 1)->setForeground(theme::grey(5));
    }
    setCurrentRow(static_cast<int>(done_.size()));
}

void HistoryPanel::go(int row) {
    const int now = static_cast<int>(done_.size());
    for (int i = row; i < now; ++i) editor_.run("undo;");
    for (int i = now; i < row; ++i) editor_.run("redo;");
}

} // namespace orvosky::window
