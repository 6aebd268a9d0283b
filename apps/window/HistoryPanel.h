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

protected:
    void showEvent(QShowEvent* event) override;

private:
    void fill();
    void go(int row);

    Editor& editor_;
    std::vector<std::string> steps_; ///< as listed: those that were done, then those that were taken back
    int done_ = 0;
};

} // namespace orvosky::window
