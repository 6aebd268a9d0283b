#include "ExportDialog.h"

#include "Theme.h"

#include "base/Messages.h"
#include "commands/Host.h"
#include "files/Workspace.h"
#include "scene/Scene.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QVBoxLayout>

namespace orvosky::window {

std::string nodeIn(const std::string& message) {
    static const QRegularExpression word(R"([A-Za-z_|:][\w|:]*)");
    for (auto it = word.globalMatch(QString::fromStdString(message)); it.hasNext();) {
        const std::string name = it.next().captured().toStdString();
        host::scene::Node* node = Editor::scene().findNode(name);
        // Words such as "world" or "time1" name something in every scene.
        if (node && !node->isDefault && node != Editor::scene().world()) return Editor::scene().displayName(*node);
    }
    return {};
}

ExportDialog::ExportDialog(Editor& editor, const WindowStart& start, QWidget* parent)
    : QDialog(parent), editor_(editor), start_(start), target_(new QLineEdit), complaints_(new QListWidget),
      contents_(new QLabel), verdict_(new QLabel), export_(new QPushButton(tr("Export"))) {
    setWindowTitle(tr("Export"));
    setObjectName("export");
    resize(560, 420);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(10);
    auto* row = new QHBoxLayout;
    auto* browse = new QPushButton(tr("Browse"));
    browse->setAutoDefault(false);
    row->addWidget(target_, 1);
    row->addWidget(browse);
    layout->addLayout(row);
    layout->addWidget(verdict_);
    layout->addWidget(complaints_, 1);
    complaints_->setWordWrap(true);
    complaints_->setSpacing(2);
    contents_->setProperty("dim", true);
    contents_->setWordWrap(true);
    layout->addWidget(contents_);
    auto* buttons = new QHBoxLayout;
    auto* again = new QPushButton(tr("Check Again"));
    auto* shut = new QPushButton(tr("Close"));
    again->setAutoDefault(false);
    shut->setAutoDefault(false);
    export_->setDefault(true);
    buttons->addWidget(again);
    buttons->addStretch();
    buttons->addWidget(shut);
    buttons->addWidget(export_);
    layout->addLayout(buttons);

    const auto root = host::Host::instance().workspace().root();
    const std::string scene = Editor::scene().fileName;
    const std::string stem = scene.empty() ? "sky" : std::filesystem::path(scene).stem().string();
    std::error_code none;
    const auto folder = std::filesystem::is_directory(root / "build", none) ? root / "build" : root;
    target_->setText(QString::fromStdString((folder / (stem + ".atmos")).string()));
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString file = QFileDialog::getSaveFileName(this, tr("Export to"), target_->text(), tr("Skies (*.atmos)"),
                                                          nullptr, QFileDialog::DontUseNativeDialog);
        if (!file.isEmpty()) setTarget(file.endsWith(".atmos") ? file : file + ".atmos");
    });
    connect(again, &QPushButton::clicked, this, &ExportDialog::check);
    connect(shut, &QPushButton::clicked, this, &QDialog::close);
    connect(export_, &QPushButton::clicked, this, &ExportDialog::exportNow);
    connect(complaints_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        const std::string node = item->data(Qt::UserRole).toString().toStdString();
        if (!node.empty()) editor_.run("select -r " + quoted(node) + ";");
    });
}

void ExportDialog::setTarget(const QString& file) { target_->setText(file); }

void ExportDialog::list(Editor::Kind kind, const QString& text) {
    if (kind == Editor::Kind::Output || kind == Editor::Kind::Info) return;
    if (kind == Editor::Kind::Error) ++errors_;
    const QString said = text.trimmed();
    const std::string node = nodeIn(said.toStdString());
    auto* item = new QListWidgetItem(said);
    item->setForeground(kind == Editor::Kind::Error ? theme::error() : theme::warning());
    if (!node.empty()) {
        item->setData(Qt::UserRole, QString::fromStdString(node));
        item->setToolTip(tr("A click selects %1").arg(QString::fromStdString(node)));
    }
    complaints_->addItem(item);
}

bool ExportDialog::tryExport(const std::filesystem::path& target) {
    complaints_->clear();
    errors_ = 0;
    if (editor_.makeCurrent) editor_.makeCurrent();
    const auto hearing = connect(&editor_, &Editor::message, this, &ExportDialog::list);
    bool done = false;
    try {
        const host::scene::UndoQueue::Suspend quiet(Editor::scene().undo);
        const bool modified = Editor::scene().modified;
        start_.exportSky(target);
        Editor::scene().modified = modified;
        done = true;
    } catch (const std::exception& e) {
        // The target's own name says nothing of a trial.
        if (*e.what() && errors_ == 0) list(Editor::Kind::Error, e.what());
    }
    disconnect(hearing);
    editor_.announce();
    return done;
}

void ExportDialog::showContents(const std::filesystem::path& file, bool written) {
    try {
        const WindowStart::Findings findings = start_.inspect(file);
        const auto data = std::filesystem::path(file).replace_extension(".cdata");
        // A sky without clouds may have no such file: QFileInfo answers 0 for it.
        const auto size = [](const std::filesystem::path& of) {
            return QLocale::c().formattedDataSize(QFileInfo(QString::fromStdString(of.string())).size());
        };
        const auto sizes = tr("%1, %2 of cloud data").arg(size(file), size(data));
        contents_->setText((written ? tr("Written: ") : QString()) + sizes + "\n" +
                           QString::fromStdString(findings.holds));
        for (const auto& text : findings.problems) list(Editor::Kind::Error, QString::fromStdString(text));
        for (const auto& text : findings.warnings) list(Editor::Kind::Warning, QString::fromStdString(text));
    } catch (const std::exception& e) {
        list(Editor::Kind::Error, e.what());
    }
}

void ExportDialog::check() {
    const QTemporaryDir folder;
    const std::filesystem::path trial = folder.filePath("trial.atmos").toStdString();
    contents_->clear();
    const bool done = tryExport(trial);
    if (done) showContents(trial, false);
    const int complaints = complaints_->count();
    verdict_->setText(!done ? tr("The sky cannot be exported yet.")
                      : complaints > 0
                          ? tr("The sky can be exported; %n thing(s) may not be meant so.", nullptr, complaints)
                          : tr("Nothing is wrong with the sky."));
    export_->setEnabled(done);
    host::showInfo(verdict_->text().toStdString());
}

void ExportDialog::exportNow() {
    const std::string target = target_->text().trimmed().toStdString();
    const bool done = tryExport(target);
    if (done) {
        editor_.echo("orvoskyExport " + quoted(target) + ";");
        showContents(target, true);
        host::showInfo("Exported " + target + ".");
    }
    verdict_->setText(done ? tr("Exported.") : tr("Nothing was exported."));
}

} // namespace orvosky::window
