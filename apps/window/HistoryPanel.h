#pragma once

#include <QListWidget>

#include <string>
#include <vector>

namespace orvosky::window {

class Editor;

/// The steps of the undo queue, those that were taken back dimmed; a click on one goes there.
class HistoryPanel : public QListWidget {
    Q_OBJECT
public:
    explicit HistoryPanel(Editor& editor, QWidget* parent = nullptr);

private:
    void fill();
    void go(int row);

    Editor& editor_;
    std::vector<std::string> done_, undone_;
};

} // namespace orvosky::window
