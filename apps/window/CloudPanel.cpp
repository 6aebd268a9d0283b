#include "CloudPanel.h"

#include "Editor.h"
#include "FileChooser.h"
#include "ProjectFiles.h"
#include "Theme.h"

#include "scene/Scene.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace orvosky::window {
namespace {

constexpr QSize pictureSize(104, 64);

} // namespace

CloudPanel::CloudPanel(Editor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), libraries_(new QComboBox), list_(new QListWidget), problem_(new QLabel),
      scene_(new QLabel), add_(new QPushButton(tr("Add to Sky"))), use_(new QPushButton(tr("Use in Dome"))) {
    setObjectName("cloudPanel");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 8);
    layout->setSpacing(6);
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    libraries_->setToolTip(tr("The cloud libraries of the project"));
    libraries_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    auto* browse = new QToolButton;
    browse->setText("...");
    browse->setToolTip(tr("Shows the clouds of another file"));
    row->addWidget(libraries_, 1);
    row->addWidget(browse);
    layout->addLayout(row);
    list_->setObjectName("storedClouds");
    list_->setViewMode(QListView::IconMode);
    list_->setResizeMode(QListView::Adjust);
    list_->setMovement(QListView::Static);
    list_->setIconSize(pictureSize);
    list_->setSpacing(4);
    list_->setUniformItemSizes(true);
    list_->setMinimumHeight(2 * pictureSize.height() + 60); // two rows with their names, however long the outliner is
    layout->addWidget(list_, 1);
    problem_->setProperty("dim", true);
    problem_->setWordWrap(true);
    layout->addWidget(problem_);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(4);
    add_->setObjectName("addCloud");
    add_->setToolTip(tr("Makes the chosen cloud one of the scene's, to be edited; a double click does, too"));
    use_->setObjectName("useInDome");
    use_->setToolTip(tr("Fills the selected dome, else the first one, with the clouds of this library"));
    auto* save = new QPushButton(tr("Save..."));
    save->setToolTip(tr("Saves the selected clouds of the scene, else all, as a library"));
    buttons->addWidget(add_);
    buttons->addWidget(use_);
    buttons->addStretch();
    buttons->addWidget(save);
    layout->addLayout(buttons);
    scene_->setObjectName("cloudCosts");
    scene_->setProperty("dim", true);
    scene_->setWordWrap(true);
    layout->addWidget(scene_);

    connect(libraries_, &QComboBox::activated, this,
            [this](int index) { showLibrary(libraries_->itemData(index).toString()); });
    connect(browse, &QToolButton::clicked, this, [this] {
        const QString file = chooseFile(window(), tr("Clouds"), projectRoot(), tr("Clouds (*.xml)"));
        if (!file.isEmpty()) showLibrary(file);
    });
    connect(list_, &QListWidget::itemDoubleClicked, this, &CloudPanel::addChosen);
    connect(list_, &QListWidget::currentRowChanged, this, [this](int row) { add_->setEnabled(row >= 0); });
    connect(add_, &QPushButton::clicked, this, &CloudPanel::addChosen);
    connect(use_, &QPushButton::clicked, this, &CloudPanel::useInDome);
    connect(save, &QPushButton::clicked, this, [this] {
        const QString folder = QDir(projectRoot() + "/build").exists() ? projectRoot() + "/build" : projectRoot();
        QString file = QFileDialog::getSaveFileName(window(), tr("Save Clouds"), folder + "/clouds.xml",
                                                    tr("Clouds (*.xml)"), nullptr, QFileDialog::DontUseNativeDialog);
        if (file.isEmpty()) return;
        if (!file.endsWith(".xml", Qt::CaseInsensitive)) file += ".xml";
        saveClouds(file);
    });
    connect(&editor_, &Editor::changed, this, [this] {
        if (isVisible()) follow();
    });
    add_->setEnabled(false);
}

void CloudPanel::findLibraries() {
    QStringList files = cloudFilesBelow(projectRoot() + "/build");
    if (!shown_.isEmpty() && !files.contains(shown_)) files.prepend(shown_);
    libraries_->clear();
    for (const QString& file : files) libraries_->addItem(QDir(projectRoot()).relativeFilePath(file), file);
    libraries_->setCurrentIndex(libraries_->findData(shown_));
    if (shown_.isEmpty() && !files.isEmpty()) showLibrary(files.front());
}

void CloudPanel::showLibrary(const QString& path) {
    shown_ = path;
    QString problem;
    clouds_ = readStoredClouds(path, &problem);
    list_->clear();
    for (const StoredCloud& cloud : clouds_) {
        auto* item = new QListWidgetItem(QIcon(pictureOf(cloud, pictureSize)), tr("Cloud %1").arg(list_->count() + 1));
        item->setToolTip(tr("%n ellipsoid(s)", nullptr, static_cast<int>(cloud.blobs.size())));
        list_->addItem(item);
    }
    problem_->setText(problem.isEmpty() && clouds_.empty() ? tr("No clouds lie here.") : problem);
    problem_->setVisible(!problem_->text().isEmpty());
    int at = libraries_->findData(path);
    if (at < 0) {
        libraries_->addItem(QDir(projectRoot()).relativeFilePath(path), path);
        at = libraries_->count() - 1;
    }
    libraries_->setCurrentIndex(at);
    add_->setEnabled(false);
}

void CloudPanel::addChosen() {
    const int row = list_->currentRow();
    if (row < 0 || row >= static_cast<int>(clouds_.size())) return;
    const StoredCloud& cloud = clouds_[static_cast<std::size_t>(row)];
    editor_.run("orvoskyLoadCloud " + quoted(cloud.file.toStdString()) + " " + std::to_string(cloud.number) + ";");
}

std::string CloudPanel::dome() const {
    const auto selected = editor_.ask("ls -sl -dag -l -type orvosky_ParticleCloudDome").toStringArray();
    if (!selected.empty()) return selected.front();
    const auto all = editor_.ask("ls -l -type orvosky_ParticleCloudDome").toStringArray();
    return all.empty() ? std::string() : all.front();
}

void CloudPanel::useInDome() {
    const std::string name = dome();
    if (name.empty() || shown_.isEmpty()) return;
    editor_.run("orvosky_ParticleCloudDome_LoadFromDiskCommand " + quoted(shown_.toStdString()) + " " + quoted(name) +
                ";");
}

bool CloudPanel::saveClouds(const QString& file) {
    if (!editor_.run("orvoskySaveClouds " + quoted(file.toStdString()) + ";")) return false;
    shown_ = file;
    findLibraries();
    showLibrary(file);
    return true;
}

void CloudPanel::follow() {
    // A dome that is selected shows what it is made of.
    const auto selected = editor_.ask("ls -sl -dag -l -type orvosky_ParticleCloudDome").toStringArray();
    const std::string now = selected.empty() ? std::string() : selected.front();
    QString library;
    if (!now.empty())
        library =
            fileOnDisk(QString::fromStdString(editor_.ask("getAttr " + quoted(now + ".cloudDataDir")).toString()));
    // Once: another one may be looked at for it.
    if (!library.isEmpty() && (now != dome_ || library != domeLibrary_)) showLibrary(library);
    domeLibrary_ = library;
    dome_ = now;
    use_->setEnabled(!shown_.isEmpty() && !dome().empty());
    scene_->setText(QString::fromStdString(editor_.ask("orvoskyCloudCosts").toString()));
}

void CloudPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    findLibraries();
    follow();
}

} // namespace orvosky::window
