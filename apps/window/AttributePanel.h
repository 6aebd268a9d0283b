#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>
#include <vector>

class QLabel;
class QLineEdit;
class QScrollArea;
class QTabBar;

namespace host::scene {
class Node;
}

namespace orvosky::window {

class AttributePage;
class Editor;
class InterfaceCommands;

/// The attribute editor: a tab for each node of what is selected, its shapes first, and the page of one of them.
class AttributePanel : public QWidget {
    Q_OBJECT
public:
    AttributePanel(Editor& editor, InterfaceCommands& commands, QWidget* parent = nullptr);
    AttributePage* page() const;

private:
    void takeSelection();
    void showTab(int tab);

    Editor& editor_;
    InterfaceCommands& commands_;
    std::vector<std::weak_ptr<host::scene::Node>> nodes_;
    QTabBar* tabs_;
    QLabel *icon_, *type_, *nothing_;
    QLineEdit* name_;
    QWidget* head_;
    QScrollArea* scroll_;
    QPointer<AttributePage> page_;
};

} // namespace orvosky::window
