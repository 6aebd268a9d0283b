#include "StartPage.h"

#include "Theme.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>

namespace orvosky::window {
namespace {

constexpr int columns = 4;
constexpr QSize pictureSize(224, 126);

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
    : QWidget(parent) {
    setObjectName("startPage");
    auto* outer = new QVBoxLayout(this);
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
    grid->setSpacing(12);
    int at = 0;
    const QDir folder(QString::fromStdString(presets.string()));
    for (const QFileInfo& file : folder.entryInfoList({"*.ma"}, QDir::Files, QDir::Name)) {
        auto* button = new QToolButton;
        const QPixmap picture(folder.filePath(file.completeBaseName() + ".jpg"));
        button->setIcon(QIcon(picture.isNull() ? QPixmap(pictureSize) : picture));
        button->setIconSize(pictureSize);
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
    int listed = 0;
    for (const QString& file : recent) {
        if (!QFileInfo::exists(file) || listed == 5) continue;
        if (listed++ == 0) {
            auto* label = new QLabel(tr("Recent"));
            label->setProperty("dim", true);
            page->addWidget(label);
        }
        auto* button = wordButton(QFileInfo(file).fileName() + "   " + QFileInfo(file).path());
        connect(button, &QPushButton::clicked, this, [this, file] { emit recentChosen(file); });
        page->addWidget(button);
    }
}

void StartPage::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::panel());
}

} // namespace orvosky::window
