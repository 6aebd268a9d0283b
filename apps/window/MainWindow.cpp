#include "MainWindow.h"

#include "AttributePanel.h"
#include "Document.h"
#include "InterfaceCommands.h"
#include "OutlinerPanel.h"
#include "Theme.h"
#include "ViewWidget.h"

#include "base/Messages.h"
#include "commands/Host.h"
#include "files/Workspace.h"
#include "scene/Scene.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

namespace orvosky::window {

using host::scene::DagNode;

MainWindow::MainWindow(const WindowStart& start)
    : start_(start), document_(std::make_unique<Document>(editor_, start, this)), view_(new ViewWidget(editor_)),
      shelf_(new QToolBar(tr("Shelf"))), cameras_(new QComboBox), lookUp_(new QToolButton), cost_(new QLabel),
      status_(new QLabel), said_(new QLabel), command_(new QLineEdit) {
    setAcceptDrops(true);
    editor_.makeCurrent = [this] { view_->makeContextCurrent(); };
    auto* middle = new QWidget;
    auto* column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(view_, 1);
    column->addWidget(makeStrip());
    setCentralWidget(middle);

    shelf_->setObjectName("shelf");
    shelf_->setMovable(false);
    shelf_->setIconSize({20, 20});
    commands_ = std::make_unique<InterfaceCommands>(editor_, *this, *menuBar(), *shelf_);
    commands_->tell = [this](const QString& text) { tell(Editor::Kind::Info, text); };
    outliner_ = new OutlinerPanel(editor_);
    attributes_ = new AttributePanel(editor_, *commands_);
    const auto dock = [this](const QString& title, const char* name, QWidget* widget, Qt::DockWidgetArea area) {
        auto* made = new QDockWidget(title);
        made->setObjectName(name);
        made->setWidget(widget);
        made->setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable);
        addDockWidget(area, made);
        return made;
    };
    QDockWidget* left = dock(tr("Outliner"), "outlinerDock", outliner_, Qt::LeftDockWidgetArea);
    QDockWidget* right = dock(tr("Attributes"), "attributesDock", attributes_, Qt::RightDockWidgetArea);
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    resize(1360, 820);
    resizeDocks({left, right}, {210, 372}, Qt::Horizontal);
    makeLastLine();
    makeMenus();

    connect(&editor_, &Editor::changed, view_, &ViewWidget::refresh);
    connect(&editor_, &Editor::changed, this, [this] {
        const auto& undo = Editor::scene().undo;
        undo_->setEnabled(undo.canUndo());
        redo_->setEnabled(undo.canRedo());
        fillCameras();
    });
    connect(&editor_, &Editor::echoed, this, [this](const QString& mel) {
        command_->setPlaceholderText(mel.size() > 300 ? mel.left(300) + "..." : mel);
    });
    connect(&editor_, &Editor::message, this, &MainWindow::tell);
    connect(document_.get(), &Document::titleChanged, this, &MainWindow::showTitle);
    connect(document_.get(), &Document::opened, this, [this] {
        view_->useCamera(nullptr);
        fillCameras();
        showTitle();
    });
    connect(view_, &ViewWidget::drawn, this, [this](double ms, int divisor) {
        cost_->setText(divisor > 1 ? tr("1/%1 size while moving    %2 ms").arg(divisor).arg(ms, 0, 'f', 0)
                                   : tr("%1 ms").arg(ms, 0, 'f', ms < 10 ? 1 : 0));
    });
    connect(view_, &ViewWidget::cameraChanged, this, [this] { lookUp_->setChecked(view_->looksUp()); });

    QSettings settings;
    restoreGeometry(settings.value("geometry").toByteArray());
    restoreState(settings.value("layout").toByteArray());
    fillCameras();
    showTitle();
}

MainWindow::~MainWindow() {
    // Nodes free what they hold in OpenGL while the view's context is there.
    view_->close([this] { start_.end(); });
    commands_.reset();
}

void MainWindow::start() {
    show();
    if (!document_->recover() && !start_.scene.empty()) document_->open(QString::fromStdString(start_.scene.string()));
    view_->setFocus();
}

QAction* MainWindow::act(QMenu& menu, const QString& label, const QKeySequence& key, std::function<void()> work) {
    QAction* action = menu.addAction(label);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, [work = std::move(work)] { work(); });
    return action;
}

void MainWindow::runOnSelection(const std::string& mel) {
    if (Editor::scene().selection().empty())
        tell(Editor::Kind::Info, tr("Nothing is selected."));
    else
        editor_.run(mel);
}

void MainWindow::makeMenus() {
    QMenu& file = *menuBar()->addMenu(tr("File"));
    act(file, tr("New"), QKeySequence::New, [this] { document_->newScene(); });
    act(file, tr("Open..."), QKeySequence::Open, [this] { document_->browse(); });
    QMenu* recent = file.addMenu(tr("Open Recent"));
    connect(&file, &QMenu::aboutToShow, this, [this, recent] {
        recent->clear();
        for (const QString& name : document_->recent())
            connect(recent->addAction(name), &QAction::triggered, this, [this, name] { document_->open(name); });
        recent->setEnabled(!recent->isEmpty());
    });
    file.addSeparator();
    act(file, tr("Save"), QKeySequence::Save, [this] { document_->save(); });
    act(file, tr("Save As..."), QKeySequence("Ctrl+Shift+S"), [this] { document_->saveAs(); });
    file.addSeparator();
    act(file, tr("Quit"), QKeySequence::Quit, [this] { close(); });

    QMenu& edit = *menuBar()->addMenu(tr("Edit"));
    undo_ = act(edit, tr("Undo"), {}, [this] { editor_.run("undo;"); });
    undo_->setShortcuts({QKeySequence::Undo, QKeySequence("Z")});
    redo_ = act(edit, tr("Redo"), {}, [this] { editor_.run("redo;"); });
    redo_->setShortcuts({QKeySequence("Ctrl+Shift+Z"), QKeySequence("Shift+Z"), QKeySequence("Ctrl+Y")});
    undo_->setEnabled(false);
    redo_->setEnabled(false);
    edit.addSeparator();
    act(edit, tr("Duplicate"), QKeySequence("Ctrl+D"), [this] { runOnSelection("duplicate;"); });
    act(edit, tr("Delete"), QKeySequence::Delete, [this] { runOnSelection("delete;"); });
    act(edit, tr("Hide"), QKeySequence("H"), [this] {
        std::string names;
        bool shown = false;
        for (const auto& item : Editor::scene().selection())
            if (DagNode* dag = item.node->dag()) {
                names += " " + quoted(dag->partialPath() + ".visibility");
                shown = shown || dag->visible();
            }
        if (!names.empty()) editor_.run("setAttr" + names + (shown ? " 0;" : " 1;"));
    });
    edit.addSeparator();
    act(edit, tr("Select Nothing"), {}, [this] { editor_.run("select -clear;"); });

    QMenu& display = *menuBar()->addMenu(tr("Display"));
    act(display, tr("Frame Selection"), QKeySequence("F"), [this] { view_->frame(false); });
    act(display, tr("Frame All"), QKeySequence("A"), [this] { view_->frame(true); });
    act(display, tr("Look Up"), QKeySequence("U"), [this] { view_->lookUp(!view_->looksUp()); });
    display.addSeparator();
    const auto safe = [&](const QString& label, int width, int height) {
        QAction* action = display.addAction(label);
        action->setCheckable(true);
        connect(action, &QAction::toggled, this,
                [this, width, height](bool on) { view_->setSafeFrame(on ? width : 0, on ? height : 0); });
    };
    safe(tr("Frame of a Picture of 16 : 9"), 1280, 720);
    QAction* whole = act(display, tr("View Only"), QKeySequence("Space"), [] {});
    whole->setCheckable(true);
    connect(whole, &QAction::toggled, this, [this](bool on) {
        for (QDockWidget* dock : findChildren<QDockWidget*>()) {
            if (on) dock->setProperty("wasOpen", dock->isVisible());
            dock->setVisible(!on && dock->property("wasOpen").toBool());
        }
    });
    display.addSeparator();
    for (QDockWidget* dock : findChildren<QDockWidget*>()) display.addAction(dock->toggleViewAction());

    QMenu& help = *menuBar()->addMenu(tr("Help"));
    act(help, tr("Hands and Keys"), QKeySequence("F1"), [this] {
        tell(Editor::Kind::Info,
             tr("Alt + left tumbles, Alt + middle tracks, Alt + right or the wheel dollies. Middle turns the head, "
                "Shift + middle moves. F frames the selection, A everything, U looks up."));
    });
    act(help, tr("About"), {},
        [this] { tell(Editor::Kind::Info, tr("Orvo sky toolkit %1").arg(QString::fromStdString(start_.version))); });
}

QWidget* MainWindow::makeStrip() {
    auto* strip = new QWidget;
    auto* row = new QHBoxLayout(strip);
    row->setContentsMargins(10, 4, 10, 4);
    row->setSpacing(10);
    cameras_->setToolTip(tr("The camera to look through"));
    cameras_->setFocusPolicy(Qt::NoFocus);
    cameras_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    lookUp_->setText(tr("Look up"));
    lookUp_->setCheckable(true);
    lookUp_->setFocusPolicy(Qt::NoFocus);
    lookUp_->setToolTip(tr("Turns the eyes to the sky above; again, and they come back (U)"));
    connect(lookUp_, &QToolButton::clicked, this, [this](bool on) { view_->lookUp(on); });
    connect(cameras_, &QComboBox::activated, this, [this](int row) {
        host::scene::Node* node = Editor::scene().findNode(cameras_->itemData(row).toString().toStdString());
        if (DagNode* dag = node ? node->dag() : nullptr) view_->useCamera(dag);
    });
    for (QLabel* label : {cost_, status_}) label->setProperty("dim", true);
    row->addWidget(cameras_);
    row->addWidget(lookUp_);
    row->addWidget(status_, 1);
    row->addWidget(cost_);
    return strip;
}

void MainWindow::makeLastLine() {
    command_->setObjectName("command");
    command_->setFrame(false);
    command_->setClearButtonEnabled(false);
    command_->setToolTip(tr("MEL: the last action, and a place to type one"));
    connect(command_, &QLineEdit::returnPressed, this, [this] {
        const QString mel = command_->text().trimmed();
        command_->clear();
        if (!mel.isEmpty()) editor_.run(mel.toStdString() + (mel.endsWith(';') || mel.endsWith('}') ? "" : ";"));
        view_->setFocus();
    });
    said_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    said_->setTextFormat(Qt::PlainText);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addWidget(command_, 1);
    statusBar()->addWidget(said_, 1);
}

void MainWindow::tell(Editor::Kind kind, const QString& text) {
    if (kind == Editor::Kind::Output) return;
    const QString line = text.trimmed().section('\n', 0, 0);
    const QColor colour = kind == Editor::Kind::Error     ? theme::error()
                          : kind == Editor::Kind::Warning ? theme::warning()
                                                          : theme::dimText();
    said_->setStyleSheet("color: " + colour.name());
    said_->setText(said_->fontMetrics().elidedText(line, Qt::ElideRight, std::max(200, width() / 2 - 40)));
    said_->setToolTip(text.trimmed());
}

void MainWindow::fillCameras() {
    QStringList paths;
    DagNode* now = view_->camera();
    int current = -1;
    for (const auto& [serial, node] : Editor::scene().nodes())
        if (node->type.isA("camera") && node->dag() && node->dag()->parent) {
            if (node.get() == now) current = static_cast<int>(paths.size());
            paths << QString::fromStdString(node->dag()->fullPath());
        }
    QStringList shown;
    for (int i = 0; i < cameras_->count(); ++i) shown << cameras_->itemData(i).toString();
    if (shown != paths) {
        cameras_->clear();
        for (const QString& path : paths) cameras_->addItem(path.section('|', -2, -2), path);
    }
    cameras_->setCurrentIndex(current >= 0 ? current : cameras_->findText("persp"));
}

void MainWindow::showTitle() {
    const QString project = QString::fromStdString(host::Host::instance().workspace().root().filename().string());
    setWindowTitle(tr("%1 - %2 - Orvo sky").arg(document_->title(), project));
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!document_->mayGo()) {
        event->ignore();
        return;
    }
    document_->giveUp();
    QSettings settings;
    settings.setValue("geometry", saveGeometry());
    settings.setValue("layout", saveState());
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    const QString file = event->mimeData()->urls().value(0).toLocalFile();
    if (file.endsWith(".ma", Qt::CaseInsensitive) || file.endsWith(".mel", Qt::CaseInsensitive))
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QString file = event->mimeData()->urls().value(0).toLocalFile();
    // The one who drags is to be let go first: it may be asked about unsaved work.
    QTimer::singleShot(0, this, [this, file] { document_->open(file); });
}

} // namespace orvosky::window
