#include "HistoryPanel.h"

#include "Editor.h"
#include "Theme.h"

#include "scene/Scene.h"

#include <algorithm>
#include <iterator>

namespace orvosky::window {

HistoryPanel::HistoryPanel(Editor& editor, QWidget* parent) : QListWidget(parent), editor_(editor) {
    setObjectName("history");
    setUniformItemSizes(true);
    connect(&editor_, &Editor::changed, this, &HistoryPanel::fill);
    connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { go(row(item)); });
    fill();
}

void HistoryPanel::showEvent(QShowEvent* event) {
    QListWidget::showEvent(event);
    fill();
}

void HistoryPanel::fill() {
    if (!isVisible()) return;
    const auto& undo = Editor::scene().undo;
    std::vector<std::string> steps = undo.undoNames();
    const int done = static_cast<int>(steps.size());
    std::ranges::move(undo.redoNames(), std::back_inserter(steps));
    if (count() == 0) addItem(tr("As opened"));
    // What is still the same stays: an action adds a row to a long list, and does not make the list anew.
    const int same = static_cast<int>(std::ranges::mismatch(steps, steps_).in1 - steps.begin());
    while (count() > same + 1) delete takeItem(count() - 1);
    for (std::size_t i = static_cast<std::size_t>(same); i < steps.size(); ++i)
        addItem(QString::fromStdString(steps[i]));
    const int size = static_cast<int>(steps.size());
    const int from = std::min({done, done_, same}), to = same < size ? size : std::min(size, std::max(done, done_));
    for (int i = from; i < to; ++i) item(i + 1)->setForeground(i < done ? theme::text() : theme::grey(5));
    steps_ = std::move(steps);
    done_ = done;
    setCurrentRow(done);
}

void HistoryPanel::go(int row) {
    const int now = done_;
    for (int i = row; i < now; ++i) editor_.run("undo;");
    for (int i = now; i < row; ++i) editor_.run("redo;");
}

} // namespace orvosky::window
