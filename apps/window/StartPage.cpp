#include "StartPage.h"

#include "Theme.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace orvosky::window {
namespace {

constexpr int columns = 4, gap = 12, edge = 24;
constexpr int aroundPicture = 16; ///< of a button, pixels
constexpr QSize pictureSize(224, 126), smallest(120, 68);

QPushButton* wordButton(const QString& text) {
    auto* button = new QPushButton(text);
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    button->setStyleSheet(
        "QPushButton { text-align: left; padding: 4px 0; background: transparent; color: " + theme::dimText().name() +
        "; } QPushButton:hover, QPushButton:focus { color: " + theme::accent().name() + "; }");
    return button;
}

} // namespace

QString presetTitle(const QString& stem) {
    QString title = stem.section('_', 1).replace('_', ' ');
    if (!title.isEmpty()) title[0] = title[0].toUpper();
    return title;
}

StartPage::StartPage(const std::filesystem::path& presets, const QStringList& recent, QWidget* parent)
    : QWidget(parent), said_(new QLabel) {
    setObjectName("startPage");
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* body = new QWidget;
    scroll->setWidget(body);
    whole->addWidget(scroll, 1);
    said_->setObjectName("said");
    said_->setWordWrap(true);
    said_->setContentsMargins(edge, 6, edge, 10);
    said_->hide();
    whole->addWidget(said_);
    auto* outer = new QVBoxLayout(body);
    outer->addStretch(1);
    auto* row = new QHBoxLayout;
    row->addStretch();
    auto* page = new QVBoxLayout;
    page->setSpacing(14);
    row->addLayout(page);
    row->addStretch();
    outer->addLayout(row);
    outer->addStretch(2);

    auto* heading = new QLabel(tr("Begin with a sky"));
    heading->setProperty("heading", true);
    page->addWidget(heading);
    auto* grid = new QGridLayout;
    grid->setSpacing(gap);
    int at = 0;
    const QDir folder(QString::fromStdString(presets.string()));
    for (const QFileInfo& file : folder.entryInfoList({"*.ma"}, QDir::Files, QDir::Name)) {
        auto* button = new QToolButton;
        const QPixmap picture(folder.filePath(file.completeBaseName() + ".jpg"));
        button->setIcon(QIcon(picture.isNull() ? QPixmap(pictureSize) : picture));
        pictures_.push_back(button);
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        button->setText(presetTitle(file.completeBaseName()));
        button->setObjectName(file.completeBaseName());
        button->setCursor(Qt::PointingHandCursor);
        connect(button, &QToolButton::clicked, this,
                [this, path = file.absoluteFilePath()] { emit presetChosen(path); });
        grid->addWidget(button, at / columns, at % columns);
        ++at;
    }
    page->addLayout(grid);

    auto* words = new QHBoxLayout;
    words->setSpacing(24);
    auto* browse = wordButton(tr("Open a scene..."));
    connect(browse, &QPushButton::clicked, this, &StartPage::browseChosen);
    words->addWidget(browse);
    auto* empty = wordButton(tr("Begin with nothing"));
    empty->setObjectName("empty");
    connect(empty, &QPushButton::clicked, this, &StartPage::emptyChosen);
    words->addWidget(empty);
    words->addStretch();
    page->addLayout(words);
    auto* list = new QVBoxLayout;
    list->setSpacing(0);
    page->addLayout(list);
    int listed = 0;
    for (const QString& file : recent) {
        if (!QFileInfo::exists(file) || listed == 5) continue;
        if (listed++ == 0) {
            auto* label = new QLabel(tr("Recent"));
            label->setProperty("dim", true);
            list->addWidget(label);
        }
        auto* button = wordButton(QFileInfo(file).fileName() + "   " + QFileInfo(file).path());
        connect(button, &QPushButton::clicked, this, [this, file] { emit recentChosen(file); });
        list->addWidget(button);
    }
}

void StartPage::say(const QString& text, const QColor& colour) {
    said_->setStyleSheet("color: " + colour.name());
    said_->setText(text);
    said_->setVisible(!text.isEmpty());
}

void StartPage::resizeEvent(QResizeEvent*) {
    // A row of pictures fits, in a small window with smaller ones.
    const int wide = std::clamp((width() - 2 * edge - (columns - 1) * gap) / columns - aroundPicture, smallest.width(),
                                pictureSize.width());
    for (QToolButton* button : pictures_)
        button->setIconSize({wide, wide * pictureSize.height() / pictureSize.width()});
}

void StartPage::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::panel());
}

} // namespace orvosky::window
