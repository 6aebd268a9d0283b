#pragma once

#include <QTreeView>
#include <QWidget>

class QLineEdit;

namespace orvosky::window {

class Editor;
class OutlinerModel;

/// The outliner: the scene's tree with search, and what is done to the nodes selected in it.
class OutlinerPanel : public QWidget {
    Q_OBJECT
public:
    explicit OutlinerPanel(Editor& editor, QWidget* parent = nullptr);
    void addOptions(class QMenu& menu);

private:
    void takeSelection();
    void giveSelection();
    void showMenu(QPoint at);

    Editor& editor_;
    OutlinerModel* model_;
    QTreeView* tree_;
    QLineEdit* search_;
    bool quiet_ = false;
};

} // namespace orvosky::window
