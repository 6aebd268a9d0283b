#pragma once

#include "Editor.h"
#include "WindowModule.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QStackedWidget;
class QToolBar;
class QToolButton;

namespace orvosky::window {

class AttributePanel;
class CloudPanel;
class Document;
class ExportDialog;
class HandleTool;
class HeightTool;
class InterfaceCommands;
class OutlinerPanel;
class ScriptPanel;
class StartPage;
class SunPanel;
class SunTool;
class TimeBar;
class ViewWidget;

/// Sets what has to be said before there is an application: the kind of OpenGL, where preferences lie.
void prepareApplication();
/// The preference of how large the window's parts are, a factor of 1 to 3; read when the window starts.
inline constexpr const char* scaleSetting = "scale";

/// The window: the view in the middle, outliner and attributes at its sides, menus above, the last command below.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(const WindowStart& start);
    ~MainWindow() override;

    /// Shows itself and opens what it was started with.
    void start();

    Editor& editor() { return editor_; }
    Document& document() { return *document_; }
    ViewWidget& view() { return *view_; }
    AttributePanel& attributes() { return *attributes_; }
    OutlinerPanel& outliner() { return *outliner_; }
    CloudPanel& clouds() { return *clouds_; }
    HeightTool& heights() { return *heights_; }
    SunPanel& sunPanel() { return *sunPanel_; }
    ScriptPanel& scripts() { return *scripts_; }
    TimeBar& time() { return *time_; }
    /// Opens the export dialog, which checks the sky first.
    ExportDialog& showExport();
    /// Saves what the view shows, in the format of the file's extension. False, with a message, when it cannot.
    bool savePicture(const QString& file);
    /// The same for every frame of the range that is played; a row of # in the name stands for the frame's number.
    /// Esc stops it. @return how many were saved
    int savePictures(const QString& files);
    /// The page that a session begins with; null once a scene was chosen.
    StartPage* startPage() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    static QString working();
    void makeMenus();
    bool writePicture(const QString& file);
    void makeFrameMenu(QMenu& menu);
    void tellAboutPointer();
    void makeScaleMenu(QMenu& menu);
    QWidget* makeStrip();
    void makeLastLine();
    void makeTools();
    void showStartPage();
    void endStartPage();
    /// Selects what is at a point of the view.
    void pick(QPointF at, Qt::KeyboardModifiers modifiers);
    void fillCameras();
    void showCounts();
    void showTitle();
    void tell(Editor::Kind kind, const QString& text);
    QAction* act(class QMenu& menu, const QString& label, const QKeySequence& key, std::function<void()> work);
    /// Runs a statement on what is selected; says so when nothing is.
    void runOnSelection(const std::string& mel);

    const WindowStart& start_;
    Editor editor_;
    std::unique_ptr<Document> document_;
    ViewWidget* view_;
    QToolBar* shelf_;
    std::unique_ptr<InterfaceCommands> commands_;
    OutlinerPanel* outliner_;
    AttributePanel* attributes_;
    ScriptPanel* scripts_;
    SunPanel* sunPanel_;
    CloudPanel* clouds_;
    TimeBar* time_;
    QPointer<ExportDialog> export_;
    QPointer<StartPage> startPage_;
    HandleTool* handles_;
    HeightTool* heights_;
    SunTool* sun_;
    QComboBox* cameras_;
    QToolButton* lookUp_;
    QLabel *cost_, *status_, *said_;
    QLineEdit* command_;
    QProgressBar* progress_;
    QToolButton* stop_;
    QAction *undo_, *redo_;
};

} // namespace orvosky::window
