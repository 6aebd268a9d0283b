#pragma once

#include <QHash>
#include <QPointer>
#include <QString>

#include <string>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;
class QToolBar;
class QWidget;

namespace host::mel {
class Interpreter;
}

namespace orvosky::window {

class AttributePage;
class Editor;

/// The MEL commands of the user interface, as far as our scripts use them: menus, the shelf, questions and messages,
/// the calls that list an attribute page, and the few controls of pages that scripts build.
class InterfaceCommands {
public:
    /// Registers the commands, for as long as the object lives. `bar` is what $gMainWindow names, `shelf` what
    /// $gShelfTopLevel does.
    InterfaceCommands(Editor& editor, QWidget& window, QMenuBar& bar, QToolBar& shelf);
    ~InterfaceCommands();
    InterfaceCommands(const InterfaceCommands&) = delete;
    InterfaceCommands& operator=(const InterfaceCommands&) = delete;

    /// While one lives, editorTemplate lists `page`, and controls go where the page says.
    class Building {
    public:
        Building(InterfaceCommands& commands, AttributePage& page);
        ~Building();
        Building(const Building&) = delete;
        Building& operator=(const Building&) = delete;

    private:
        InterfaceCommands& commands_;
        AttributePage* outer_;
    };
    /// Where the controls of scripts go from now on. @return where they went before
    QWidget* setParent(QWidget* parent);
    /// Shows a message over the view for a while.
    std::function<void(const QString&)> tell;

private:
    struct Commands;
    friend struct Commands;
    template <class T>
    T* named(const std::string& name) const;
    std::string enter(const std::string& wanted, const char* stem, QObject* object);

    Editor& editor_;
    QWidget& window_;
    QMenuBar& bar_;
    QToolBar& shelf_;
    QHash<QString, QPointer<QObject>> objects_;
    QPointer<QMenu> menu_;
    QPointer<QWidget> parent_;
    AttributePage* page_ = nullptr;
    QPointer<QWidget> progress_;
    int made_ = 0;
};

} // namespace orvosky::window
