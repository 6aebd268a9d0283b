#include "Theme.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyleFactory>
#include <QSvgRenderer>

#include <array>
#include <map>
#include <memory>
#include <tuple>

namespace orvosky::window::theme {
namespace {

constexpr std::array<const char*, 8> ramp{"#18191b", "#222326", "#2c2e31", "#3b3d41",
                                          "#55585e", "#777b82", "#a2a6ad", "#d3d6da"};

QString& iconFolder() {
    static QString folder;
    return folder;
}

/// An icon that is drawn anew in every size, so that it is sharp on every screen.
class Drawn : public QIconEngine {
public:
    explicit Drawn(const QByteArray& svg) : svg_(std::make_shared<QSvgRenderer>(svg)) {}
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const double ratio = painter->device()->devicePixelRatioF();
        QPixmap drawn = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
        drawn.setDevicePixelRatio(ratio);
        painter->drawPixmap(rect.topLeft(), drawn);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        const bool dim = mode == QIcon::Disabled;
        QPixmap& kept = (*pixmaps_)[{size.width(), size.height(), dim}];
        if (!kept.isNull()) return kept;
        kept = QPixmap(size);
        kept.fill(Qt::transparent);
        QPainter painter(&kept);
        painter.setRenderHint(QPainter::Antialiasing);
        if (dim) painter.setOpacity(0.4);
        svg_->render(&painter);
        return kept;
    }
    QIconEngine* clone() const override { return new Drawn(*this); }

private:
    std::shared_ptr<QSvgRenderer> svg_;
    /// By width, height and whether it is dimmed.
    std::shared_ptr<std::map<std::tuple<int, int, bool>, QPixmap>> pixmaps_ =
        std::make_shared<std::map<std::tuple<int, int, bool>, QPixmap>>();
};

QString filled(QString sheet) {
    for (int i = 0; i < static_cast<int>(ramp.size()); ++i) sheet.replace(QString("@%1").arg(i), grey(i).name());
    sheet.replace("@icons", iconFolder());
    sheet.replace("@a", accent().name());
    return sheet;
}

const char* const sheet = R"(
* { font-size: 12px; }
QMainWindow, QDialog { background: @1; }
QMainWindow::separator { background: @0; width: 4px; height: 4px; }
QMainWindow::separator:hover { background: @3; }
QMenuBar { background: @1; color: @7; padding: 2px 4px; }
QMenuBar::item { padding: 4px 9px; background: transparent; border-radius: 3px; }
QMenuBar::item:selected { background: @3; }
QMenu { background: @2; color: @7; border: 1px solid @0; padding: 4px 0; }
QMenu::item { padding: 5px 28px 5px 24px; }
QMenu::item:selected { background: @3; }
QMenu::icon { padding-left: 10px; }
QMenu::indicator { left: 8px; }
QMenu::item:disabled { color: @5; }
QMenu::separator { height: 1px; background: @3; margin: 4px 8px; }
QDockWidget { color: @6; titlebar-close-icon: none; titlebar-normal-icon: none; }
QDockWidget::title { background: @1; padding: 7px 10px; text-align: left; }
QToolTip { background: @2; color: @7; border: 1px solid @3; padding: 4px; }
QToolBar { background: @1; border: none; padding: 2px 8px; spacing: 2px; }
QToolBar::separator { background: @3; width: 1px; margin: 6px 8px; }
QStatusBar { background: @1; color: @6; }
QStatusBar::item { border: none; }
QTreeView, QListView, QPlainTextEdit, QTextEdit { background: @1; color: @7; border: none; outline: none;
  selection-background-color: @3; selection-color: @7; }
QTreeView::item { padding: 3px 0; }
QTreeView::item:hover { background: @2; }
QTreeView::item:selected { background: @3; color: @7; }
QTreeView::branch:selected { background: @3; }
QPlainTextEdit { background: @0; font-family: monospace; }
QLineEdit, QAbstractSpinBox, QComboBox { background: @2; color: @7; border: 1px solid @2; border-radius: 3px;
  padding: 3px 6px; selection-background-color: @a; selection-color: @0; min-height: 16px; }
QLineEdit:hover, QAbstractSpinBox:hover, QComboBox:hover { border-color: @3; }
QLineEdit:focus, QAbstractSpinBox:focus, QComboBox:focus { border-color: @a; }
QLineEdit:disabled, QComboBox:disabled { color: @5; background: @1; }
QComboBox::drop-down, QDateEdit::drop-down { border: none; width: 18px; }
QComboBox::down-arrow, QDateEdit::down-arrow { image: url(@icons/arrow_down_grey.svg); width: 12px; height: 12px; }
QComboBox QAbstractItemView { background: @2; color: @7; selection-background-color: @3; border: 1px solid @0; }
QPushButton, QToolButton { background: @2; color: @7; border: 1px solid transparent; border-radius: 3px; padding: 4px 11px;
  outline: none; }
QToolButton { padding: 3px; background: transparent; }
QPushButton:focus, QToolButton:focus { border-color: @4; }
QPushButton:hover, QToolButton:hover { background: @3; }
QPushButton:pressed, QToolButton:pressed { background: @4; }
QPushButton:disabled, QToolButton:disabled { color: @5; }
QPushButton:default, QPushButton#primary { background: @a; color: @0; }
QPushButton:default:hover, QPushButton#primary:hover { background: @a; }
QPushButton:default:disabled, QPushButton#primary:disabled { background: @2; color: @5; }
QToolButton:checked { background: @3; color: @a; }
QToolButton::menu-indicator { image: none; }
QScrollBar:vertical { background: transparent; width: 10px; margin: 0; }
QScrollBar:horizontal { background: transparent; height: 10px; margin: 0; }
QScrollBar::handle { background: @3; border-radius: 3px; min-height: 24px; min-width: 24px; margin: 2px; }
QScrollBar::handle:hover { background: @4; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QSpinBox::up-button, QSpinBox::down-button { width: 0; border: none; }
QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QScrollArea { border: none; background: @1; }
QSlider::groove:horizontal { height: 2px; background: @3; border-radius: 1px; }
QSlider::sub-page:horizontal { background: @5; }
QSlider::handle:horizontal { background: @7; width: 10px; height: 10px; margin: -4px 0; border-radius: 5px; }
QSlider::handle:horizontal:hover { background: @a; }
QSlider::sub-page:horizontal:disabled, QSlider::handle:horizontal:disabled { background: @4; }
QCheckBox { color: @7; spacing: 6px; }
QCheckBox::indicator, QTreeView#sunNodes::indicator { width: 14px; height: 14px; border: 1px solid @4; border-radius: 3px; background: @2; }
QCheckBox::indicator:hover, QTreeView#sunNodes::indicator:hover { border-color: @6; }
QCheckBox::indicator:checked, QTreeView#sunNodes::indicator:checked { background: @a; border-color: @a; image: url(@icons/check.svg); }
QCheckBox::indicator:disabled, QTreeView#sunNodes::indicator:disabled { background: @1; border-color: @3; }
QLabel { color: @7; background: transparent; }
QLabel[dim="true"] { color: @6; }
QLabel[heading="true"] { font-size: 20px; }
QCalendarWidget QWidget#qt_calendar_navigationbar { background: @2; }
QTabBar::tab { background: transparent; color: @6; padding: 6px 12px; border: none; }
QTabBar::tab:selected { color: @7; border-bottom: 2px solid @a; }
QTabWidget::pane { border: none; }
QHeaderView::section { background: @1; color: @6; border: none; padding: 4px; }
QProgressBar { background: @2; border: none; border-radius: 3px; height: 6px; color: transparent; }
QProgressBar::chunk { background: @a; border-radius: 3px; }
QSplitter::handle { background: @1; }
)";

} // namespace

QColor grey(int step) { return QColor(ramp[static_cast<std::size_t>(qBound(0, step, 7))]); }
QColor accent() { return QColor("#6cacdf"); }
QColor warning() { return QColor("#d8b26a"); }
QColor error() { return QColor("#e07a6e"); }

void apply(QApplication& application) {
    application.setStyle(QStyleFactory::create("Fusion"));
    QPalette p;
    p.setColor(QPalette::Window, panel());
    p.setColor(QPalette::WindowText, text());
    p.setColor(QPalette::Base, field());
    p.setColor(QPalette::AlternateBase, panel());
    p.setColor(QPalette::Text, text());
    p.setColor(QPalette::Button, field());
    p.setColor(QPalette::ButtonText, text());
    p.setColor(QPalette::BrightText, text());
    p.setColor(QPalette::Highlight, accent());
    p.setColor(QPalette::HighlightedText, ground());
    p.setColor(QPalette::ToolTipBase, field());
    p.setColor(QPalette::ToolTipText, text());
    p.setColor(QPalette::PlaceholderText, grey(5));
    p.setColor(QPalette::Link, accent());
    p.setColor(QPalette::Light, line());
    p.setColor(QPalette::Midlight, line());
    p.setColor(QPalette::Mid, line());
    p.setColor(QPalette::Dark, ground());
    p.setColor(QPalette::Shadow, ground());
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, role, grey(5));
    application.setPalette(p);
    application.setStyleSheet(filled(sheet));
}

void setIconFolder(const std::filesystem::path& folder) { iconFolder() = QString::fromStdString(folder.string()); }

QIcon icon(const QString& name) {
    // Never destroyed: the application goes first, and pictures do not outlive it well.
    static auto& made = *new QHash<QString, QIcon>;
    if (const auto found = made.constFind(name); found != made.cend()) return *found;
    QIcon result;
    QFile file(iconFolder() + "/" + name + ".svg");
    if (file.open(QIODevice::ReadOnly)) {
        QByteArray drawing = file.readAll();
        drawing.replace("currentColor", grey(6).name().toLatin1());
        result = QIcon(new Drawn(drawing));
    }
    return *made.insert(name, result);
}

QIcon marked(const QIcon& icon) {
    static auto& made = *new QHash<qint64, QIcon>;
    if (const auto found = made.constFind(icon.cacheKey()); found != made.cend()) return *found;
    QIcon result;
    for (const int side : {16, 20, 24, 32, 48}) {
        QPixmap pixmap = icon.pixmap(side, side);
        if (pixmap.isNull()) pixmap = QPixmap(side, side), pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(warning());
        const double s = pixmap.width() / pixmap.devicePixelRatio();
        painter.drawPolygon(QPolygonF{QPointF(s * 0.7, s * 0.42), QPointF(s, s), QPointF(s * 0.4, s)});
        for (const auto mode : {QIcon::Normal, QIcon::Selected}) result.addPixmap(pixmap, mode); // never tinted
    }
    return *made.insert(icon.cacheKey(), result);
}

} // namespace orvosky::window::theme
