#include "MainWindow.h"

#include "AttributePanel.h"
#include "CloudPanel.h"
#include "Document.h"
#include "ExportDialog.h"
#include "HandleTool.h"
#include "HeightTool.h"
#include "HistoryPanel.h"
#include "InterfaceCommands.h"
#include "OutlinerPanel.h"
#include "Picking.h"
#include "ProjectFiles.h"
#include "ScriptPanel.h"
#include "StartPage.h"
#include "SunPanel.h"
#include "SunTool.h"
#include "Theme.h"
#include "TimeBar.h"
#include "ViewWidget.h"

#include "base/Messages.h"
#include "base/Units.h"
#include "base/WorkWatch.h"
#include "commands/Host.h"
#include "files/Workspace.h"
#include "scene/Scene.h"
#include "viewport/Picture.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QToolTip>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace orvosky::window {

using host::scene::DagNode;

namespace {

/// A line of text that ends in dots where there is no room for all of it: a number that is cut off would be another
/// one.
class ElidedLabel final : public QLabel {
public:
    QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
        style()->drawItemText(&painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(), shown,
                              foregroundRole());
    }
};

/// A panel of a fixed height, which scrolls where there is no room for all of it: the window is to fit its screen.
class ScrolledPanel final : public QScrollArea {
public:
    explicit ScrolledPanel(QWidget* panel) {
        setWidgetResizable(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setWidget(panel);
    }
    QSize sizeHint() const override { return widget()->sizeHint(); }
    QSize minimumSizeHint() const override {
        const QSize whole = widget()->minimumSizeHint();
        return {whole.width() + verticalScrollBar()->sizeHint().width(), std::min(whole.height(), 96)};
    }
};

} // namespace

MainWindow::MainWindow(const WindowStart& start)
    : start_(start), document_(std::make_unique<Document>(editor_, start, this)), view_(new ViewWidget(editor_)),
      shelf_(new QToolBar(tr("Shelf"))), cameras_(new QComboBox), lookUp_(new QToolButton), cost_(new QLabel),
      status_(new ElidedLabel), said_(new QLabel), command_(new QLineEdit), progress_(new QProgressBar),
      stop_(new QToolButton) {
    setAcceptDrops(true);
    qApp->installEventFilter(this);
    editor_.makeCurrent = [this] { view_->makeContextCurrent(); };
    auto* middle = new QWidget;
    auto* column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(view_, 1);
    column->addWidget(makeStrip());
    time_ = new TimeBar(editor_);
    column->addWidget(time_);
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
    scripts_ = new ScriptPanel(editor_);
    QDockWidget* below = dock(tr("Script Editor"), "scriptsDock", scripts_, Qt::BottomDockWidgetArea);
    QDockWidget* past = dock(tr("History"), "historyDock", new HistoryPanel(editor_), Qt::LeftDockWidgetArea);
    clouds_ = new CloudPanel(editor_);
    QDockWidget* clouds = dock(tr("Clouds"), "cloudsDock", new ScrolledPanel(clouds_), Qt::LeftDockWidgetArea);
    sunPanel_ = new SunPanel(editor_);
    QDockWidget* sun =
        dock(tr("Sun by Place and Time"), "sunDock", new ScrolledPanel(sunPanel_), Qt::LeftDockWidgetArea);
    for (QDockWidget* panel : {clouds, sun}) // whole, where the outliner can do with less
        connect(panel->toggleViewAction(), &QAction::triggered, panel, [this, panel, left](bool shown) {
            if (!shown) return;
            QTimer::singleShot(0, panel, [this, panel, left] { // when it has its place
                auto& scrolled = *static_cast<QScrollArea*>(panel->widget());
                const int wanted =
                    panel->height() - scrolled.height() + scrolled.widget()->minimumSizeHint().height() + 2;
                resizeDocks({left, panel}, {left->height() + panel->height() - wanted, wanted}, Qt::Vertical);
            });
        });
    below->hide();
    past->hide();
    sun->hide();
    clouds->hide();
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    resize(QSize(1360, 820).boundedTo(screen()->availableSize()));
    // In a small window, or with large text, all have less.
    resizeDocks({left, right}, {std::min(210, width() / 5), std::min(372, width() * 3 / 8)}, Qt::Horizontal);
    makeLastLine();
    makeTools();
    makeMenus();

    connect(&editor_, &Editor::changed, view_, &ViewWidget::refresh);
    connect(&editor_, &Editor::changed, this, [this] {
        const auto& undo = Editor::scene().undo;
        undo_->setEnabled(undo.canUndo());
        redo_->setEnabled(undo.canRedo());
        fillCameras();
        showCounts();
    });
    connect(view_, &ViewWidget::clicked, this, &MainWindow::pick);
    connect(&editor_, &Editor::echoed, this, [this](const QString& mel) {
        const QString line = mel.left(300).simplified(); // it has one line
        command_->setPlaceholderText(mel.size() > 300 ? line + "..." : line);
    });
    connect(&editor_, &Editor::message, this, &MainWindow::tell);
    connect(&editor_, &Editor::takesLong, this, [this](double part) {
        tell(Editor::Kind::Info, working());
        progress_->setMaximum(part < 0 ? 0 : 1000); // none known: it runs to and fro
        progress_->setValue(static_cast<int>(std::lround(part * 1000)));
        progress_->show();
        stop_->show();
    });
    const auto ended = [this] {
        progress_->hide();
        stop_->hide();
        if (said_->toolTip() == working()) tell(Editor::Kind::Info, {});
    };
    connect(&editor_, &Editor::changed, this, ended);
    connect(view_, &ViewWidget::drawn, this, ended);
    connect(&editor_, &Editor::quitAsked, this, &MainWindow::close, Qt::QueuedConnection);
    connect(document_.get(), &Document::titleChanged, this, &MainWindow::showTitle);
    connect(document_.get(), &Document::opened, this, [this] {
        view_->useCamera(nullptr);
        fillCameras();
        showTitle();
    });
    connect(view_, &ViewWidget::drawn, this, [this](double ms, int divisor) {
        if (divisor == 1) showCounts(); // a frame may have made the sprites
        cost_->setText(divisor > 1 ? tr("1/%1 size while moving    %2 ms").arg(divisor).arg(ms, 0, 'f', 0)
                                   : tr("%1 ms").arg(ms, 0, 'f', ms < 10 ? 1 : 0));
    });
    connect(view_, &ViewWidget::cameraChanged, this, [this] { lookUp_->setChecked(view_->looksUp()); });

    auto* go = new QPushButton(tr("Export"));
    go->setObjectName("primary");
    go->setFocusPolicy(Qt::NoFocus);
    connect(go, &QPushButton::clicked, this, [this] { showExport(); });
    menuBar()->setCornerWidget(go);

    QSettings settings;
    restoreGeometry(settings.value("geometry").toByteArray());
    restoreState(settings.value("layout").toByteArray());
    fillCameras();
    showTitle();
}

MainWindow::~MainWindow() {
    sunPanel_->disconnect(this); // it is hidden when the view's tools are gone
    // Nodes free what they hold in OpenGL while the view's context is there.
    view_->close([this] { start_.end(); });
    commands_.reset();
}

void MainWindow::start() {
    if (start_.shown)
        connect(view_, &QOpenGLWidget::frameSwapped, this, [this, told = false]() mutable {
            if (view_->frames() > 0 && !std::exchange(told, true)) start_.shown();
        });
    show();
    auto& mel = host::Host::instance().interpreter();
    if (mel.isCallable("orvoskyStartup")) editor_.runAside("orvoskyStartup;");
    if (document_->recover()) {
    } else if (!start_.scene.empty()) {
        document_->open(QString::fromStdString(start_.scene.string()));
    } else {
        showStartPage();
        return;
    }
    view_->setFocus();
}

void MainWindow::showStartPage() {
    startPage_ = new StartPage(start_.toolRoot / "presets", document_->recent(), this);
    const auto begin = [this](auto work) {
        return [this, work](const auto&... file) {
            if (work(file...)) endStartPage();
        };
    };
    connect(startPage_, &StartPage::presetChosen, this,
            begin([this](const QString& file) { return document_->openPreset(file); }), Qt::QueuedConnection);
    connect(startPage_, &StartPage::recentChosen, this,
            begin([this](const QString& file) { return document_->open(file); }), Qt::QueuedConnection);
    connect(startPage_, &StartPage::browseChosen, document_.get(), &Document::browse, Qt::QueuedConnection);
    connect(startPage_, &StartPage::emptyChosen, this, &MainWindow::endStartPage, Qt::QueuedConnection);
    connect(document_.get(), &Document::opened, this, [this](bool another) {
        if (another) endStartPage();
    });
    startPage_->setGeometry(0, menuBar()->height(), width(), height() - menuBar()->height());
    startPage_->show();
    startPage_->raise();
}

StartPage* MainWindow::startPage() const { return startPage_; }

void MainWindow::endStartPage() {
    if (!startPage_) return;
    startPage_->hide();
    startPage_->deleteLater();
    startPage_ = nullptr;
    view_->setFocus();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (startPage_) startPage_->setGeometry(0, menuBar()->height(), width(), height() - menuBar()->height());
}

void MainWindow::makeTools() {
    auto sun = std::make_unique<SunTool>(editor_, *view_);
    auto handles = std::make_unique<HandleTool>(editor_, *view_);
    sun_ = sun.get();
    handles_ = handles.get();
    auto heights = std::make_unique<HeightTool>(editor_, *view_);
    heights_ = heights.get();
    view_->addTool(std::move(sun));
    view_->addTool(std::move(heights));
    view_->addTool(std::move(handles));
    auto* bar = addToolBar(tr("Tools"));
    bar->setObjectName("tools");
    bar->setMovable(false);
    bar->setIconSize({20, 20});
    auto* group = new QActionGroup(this);
    const auto tool = [&](const char* icon, const QString& label, const char* key, HandleTool::Mode mode) {
        QAction* action = bar->addAction(theme::icon(icon), label);
        action->setToolTip(tr("%1 (%2)").arg(label, key));
        action->setShortcut(QKeySequence(key));
        action->setCheckable(true);
        action->setChecked(mode == HandleTool::Mode::Select);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, mode] { handles_->setMode(mode); });
    };
    tool("select", tr("Select"), "Q", HandleTool::Mode::Select);
    tool("move", tr("Move"), "W", HandleTool::Mode::Move);
    tool("rotate", tr("Rotate"), "E", HandleTool::Mode::Rotate);
    tool("scale", tr("Scale"), "R", HandleTool::Mode::Scale);
    QAction* sunShown = bar->addAction(theme::icon("sun"), tr("Sun"));
    sunShown->setToolTip(tr("Shows the sun's ring always; it is dragged over the sky whenever the pointer is near"));
    sunShown->setCheckable(true);
    connect(sunShown, &QAction::toggled, this, [this](bool on) { sun_->setShown(on); });
    connect(sunPanel_, &SunPanel::courseChanged, this,
            [this](const std::vector<MVector>& course) { sun_->setCourse(course); });
    bar->addSeparator();
    addToolBar(shelf_);
}

void MainWindow::pick(QPointF at, Qt::KeyboardModifiers modifiers) {
    DagNode* shape = shapeAt(view_->eye(), view_->ray(at));
    if (!shape) {
        if (!Editor::scene().selection().empty() && !(modifiers & Qt::ShiftModifier)) editor_.run("select -clear;");
        return;
    }
    DagNode& picked = shape->parent && !shape->parent->isWorld() ? *shape->parent : *shape;
    editor_.run(std::string(modifiers & Qt::ShiftModifier ? "select -tgl " : "select -r ") +
                quoted(picked.partialPath()) + ";");
}

void MainWindow::showCounts() {
    if (host::Host::instance().interpreter().isCallable("orvoskyViewStatus"))
        status_->setText(QString::fromStdString(editor_.ask("orvoskyViewStatus").toString()));
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
    QMenu* presets = file.addMenu(tr("New from Preset"));
    const QDir folder(QString::fromStdString((start_.toolRoot / "presets").string()));
    for (const QFileInfo& preset : folder.entryInfoList({"*.ma"}, QDir::Files, QDir::Name))
        connect(presets->addAction(presetTitle(preset.completeBaseName())), &QAction::triggered, this,
                [this, path = preset.absoluteFilePath()] { document_->openPreset(path); });
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
    act(file, tr("Export..."), QKeySequence("Ctrl+E"), [this] { showExport(); });
    act(file, tr("Save Picture..."), QKeySequence("Ctrl+P"), [this] {
        const QString name = QFileDialog::getSaveFileName(this, tr("Save Picture"), projectRoot() + "/sky.png",
                                                          tr("Pictures (*.png *.jpg *.tif *.exr)"), nullptr,
                                                          QFileDialog::DontUseNativeDialog);
        if (!name.isEmpty()) savePicture(name);
    });
    act(file, tr("Save Pictures of the Range..."), {}, [this] {
        const QString name = QFileDialog::getSaveFileName(
            this, tr("Save Pictures: # Is a Digit of the Frame"), projectRoot() + "/sky.####.png",
            tr("Pictures (*.png *.jpg *.tif *.exr)"), nullptr, QFileDialog::DontUseNativeDialog);
        if (!name.isEmpty()) savePictures(name);
    });
    act(file, tr("Copy Picture"), QKeySequence("Ctrl+Shift+C"), [this] {
        QGuiApplication::clipboard()->setImage(view_->picture());
        host::showInfo("The picture is on the clipboard.");
    });
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
    act(edit, tr("Duplicate"), QKeySequence("Ctrl+D"), [this] {
        runOnSelection(host::Host::instance().interpreter().isCallable("orvoskyDuplicate") ? "orvoskyDuplicate;"
                                                                                           : "duplicate;");
    });
    act(edit, tr("Delete"), QKeySequence::Delete, [this] { runOnSelection("delete;"); });
    act(edit, tr("Hide"), QKeySequence("H"), [this] {
        std::vector<DagNode*> nodes;
        for (const auto& item : Editor::scene().selection())
            if (DagNode* dag = item.node->dag()) nodes.push_back(dag);
        const bool shown = std::ranges::any_of(nodes, [](DagNode* dag) { return dag->visible(); });
        std::string mel;
        for (const DagNode* dag : nodes)
            mel += "setAttr " + quoted(dag->partialPath() + ".visibility") + (shown ? " 0; " : " 1; ");
        if (mel.empty()) return;
        mel.pop_back();
        editor_.run(nodes.size() > 1 ? "{ " + mel + " }" : mel);
    });
    act(edit, tr("Set Key"), QKeySequence("S"), [this] { time_->setKey(); });
    edit.addSeparator();
    act(edit, tr("Select Nothing"), {}, [this] { editor_.run("select -clear;"); });

    QMenu& display = *menuBar()->addMenu(tr("Display"));
    act(display, tr("Frame Selection"), QKeySequence("F"), [this] { view_->frame(false); });
    act(display, tr("Frame All"), QKeySequence("A"), [this] { view_->frame(true); });
    act(display, tr("Look Up"), QKeySequence("U"), [this] { view_->lookUp(!view_->looksUp()); });
    act(display, tr("Type MEL"), QKeySequence("Ctrl+M"), [this] { command_->setFocus(Qt::ShortcutFocusReason); });
    display.addSeparator();
    QAction* local = display.addAction(tr("Move Along Own Axes"));
    local->setCheckable(true);
    connect(local, &QAction::toggled, this, [this](bool on) { handles_->setLocal(on); });
    makeFrameMenu(*display.addMenu(tr("Frame of a Picture")));
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
    display.addSeparator();
    makeScaleMenu(*display.addMenu(tr("Size of Text and Icons")));

    QMenu& help = *menuBar()->addMenu(tr("Help"));
    act(help, tr("Help on What Is Under the Pointer"), QKeySequence("F1"), [this] { tellAboutPointer(); });
    act(help, tr("About"), {},
        [this] { tell(Editor::Kind::Info, tr("Orvo sky toolkit %1").arg(QString::fromStdString(start_.version))); });
}

void MainWindow::makeFrameMenu(QMenu& menu) {
    auto* group = new QActionGroup(this);
    const auto offer = [&](const QString& label, QSize size) {
        QAction* action = menu.addAction(label);
        action->setCheckable(true);
        action->setChecked(size.isEmpty());
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, size] { view_->setSafeFrame(size.width(), size.height()); });
    };
    offer(tr("None"), {0, 0});
    offer(tr("16 : 9"), {1280, 720});
    offer(tr("2.39 : 1"), {2390, 1000});
    offer(tr("4 : 3"), {1440, 1080});
    offer(tr("1 : 1"), {1024, 1024});
}

void MainWindow::tellAboutPointer() {
    const QPoint at = QCursor::pos();
    for (QWidget* widget = QApplication::widgetAt(at); widget; widget = widget->parentWidget())
        if (!widget->toolTip().isEmpty()) return QToolTip::showText(at, widget->toolTip(), widget);
    tell(Editor::Kind::Info,
         tr("Alt + left tumbles, Alt + middle tracks, Alt + right or the wheel dollies. Middle turns the head, "
            "Shift + middle moves. F frames the selection, A everything, U looks up."));
}

void MainWindow::makeScaleMenu(QMenu& menu) {
    auto* group = new QActionGroup(this);
    const auto offer = [&](const QString& label, const QVariant& scale) {
        QAction* action = menu.addAction(label);
        action->setCheckable(true);
        action->setChecked(QSettings().value(scaleSetting) == scale);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, scale] {
            QSettings settings;
            scale.isValid() ? settings.setValue(scaleSetting, scale) : settings.remove(scaleSetting);
            tell(Editor::Kind::Info, tr("The window has this size when it is opened next."));
        });
    };
    offer(tr("As the Desktop"), QVariant());
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) offer(tr("%1 %").arg(scale * 100), QString::number(scale));
}

ExportDialog& MainWindow::showExport() {
    if (!export_) {
        export_ = new ExportDialog(editor_, start_, this);
        export_->setAttribute(Qt::WA_DeleteOnClose);
    }
    export_->show();
    export_->raise();
    export_->check();
    return *export_;
}

bool MainWindow::writePicture(const QString& file) {
    const QImage shown = view_->picture();
    host::viewport::Picture picture(shown.width(), shown.height(), 3);
    for (int y = 0; y < shown.height(); ++y) std::copy_n(shown.constScanLine(y), picture.rowBytes(), picture.row(y));
    picture.origin = {.software = "orvosky " + start_.version, .scene = document_->title().toStdString()};
    std::string error;
    if (picture.write(file.toStdString(), &error)) return true;
    host::showError(error);
    return false;
}

bool MainWindow::savePicture(const QString& file) {
    if (!writePicture(file)) return false;
    host::showInfo("Saved " + file.toStdString() + ".");
    return true;
}

int MainWindow::savePictures(const QString& files) {
    QString pattern = files;
    if (const auto dot = pattern.lastIndexOf('.'); !QFileInfo(pattern).fileName().contains('#'))
        pattern.insert(dot > pattern.lastIndexOf('/') ? dot : pattern.size(), ".####");
    const auto digits = pattern.lastIndexOf('#') + 1;
    auto from = digits;
    while (from > 0 && pattern[from - 1] == '#') --from;
    const double ticks = host::timeUnit().ticks, now = Editor::scene().time() / ticks;
    const auto& range = Editor::scene().playback();
    const double first = std::ceil(range.min / ticks), last = std::floor(range.max / ticks);
    int saved = 0;
    bool going = true;
    time_->play(false);
    for (double frame = first; going && frame <= last; ++frame) {
        const QString number = QString::number(frame, 'f', 0).rightJustified(static_cast<int>(digits - from), '0');
        going = editor_.runAside("currentTime " + numberText(frame) + ";");
        editor_.announce();
        going = going && writePicture(pattern.left(from) + number + pattern.mid(digits));
        saved += going;
        going = going && !(host::workWatch() && host::workWatch()((frame - first + 1) / (last - first + 1)));
    }
    editor_.runAside("currentTime " + numberText(now) + ";");
    editor_.announce();
    host::showInfo(tr("Saved %n picture(s).", nullptr, saved).toStdString());
    return saved;
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
        if (!mel.isEmpty()) editor_.runTyped(mel.toStdString() + (mel.endsWith(';') || mel.endsWith('}') ? "" : ";"));
        view_->setFocus();
    });
    said_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    said_->setTextFormat(Qt::PlainText);
    statusBar()->setSizeGripEnabled(false);
    statusBar()->addWidget(command_, 1);
    statusBar()->addWidget(said_, 1);
    progress_->setObjectName("progress");
    progress_->setFixedWidth(140);
    progress_->setTextVisible(false);
    statusBar()->addPermanentWidget(progress_);
    progress_->hide();
    stop_->setObjectName("stop");
    stop_->setText(tr("Stop"));
    stop_->setFocusPolicy(Qt::NoFocus);
    stop_->setToolTip(tr("Stops what is running (Esc)"));
    statusBar()->addPermanentWidget(stop_);
    stop_->hide();
    editor_.stopsWork = stop_;
}

QString MainWindow::working() { return tr("Working; Esc stops it."); }

void MainWindow::tell(Editor::Kind kind, const QString& text) {
    if (kind == Editor::Kind::Output) return;
    const QString line = text.trimmed().section('\n', 0, 0);
    const QColor colour = kind == Editor::Kind::Error     ? theme::error()
                          : kind == Editor::Kind::Warning ? theme::warning()
                                                          : theme::dimText();
    said_->setStyleSheet("color: " + colour.name());
    said_->setText(said_->fontMetrics().elidedText(line, Qt::ElideRight, std::max(200, width() / 2 - 40)));
    said_->setToolTip(text.trimmed());
    if (startPage_ && kind != Editor::Kind::Info) startPage_->say(text.trimmed(), colour);
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
    time_->play(false);
    document_->giveUp();
    QSettings settings;
    settings.setValue("geometry", saveGeometry());
    settings.setValue("layout", saveState());
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) takeCopy(*event);
}

void MainWindow::dropEvent(QDropEvent* event) {
    takeCopy(*event);
    const QStringList files = draggedFiles(*event->mimeData());
    // The one who drags is to be let go first: it may be asked about unsaved work.
    QTimer::singleShot(0, this, [this, files] {
        const QString file = files.value(0);
        if (files.size() > 1)
            host::showWarning(tr("One scene is open at a time: of the %1 files that were dropped none was opened.")
                                  .arg(files.size())
                                  .toStdString());
        else if (file.isEmpty())
            host::showWarning(tr("What was dropped is no file of this machine.").toStdString());
        else if (!isScene(file))
            host::showWarning(tr("%1 is no scene (.ma, .mel). Pictures and libraries are dropped onto the field that "
                                 "names them.")
                                  .arg(QFileInfo(file).fileName())
                                  .toStdString());
        else
            document_->open(file);
    });
}

bool MainWindow::eventFilter(QObject* receiver, QEvent* event) {
    // Files belong to the window wherever they are let go: a place for text would take their addresses.
    const auto type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
    auto* widget = qobject_cast<QWidget*>(receiver);
    auto& dragged = *static_cast<QDropEvent*>(event);
    if (!widget || widget == this || widget->window() != this || widget->property(takesFiles).toBool() ||
        !dragged.mimeData()->hasUrls())
        return false;
    if (type == QEvent::Drop)
        dropEvent(&dragged);
    else
        takeCopy(dragged);
    return true;
}

} // namespace orvosky::window
