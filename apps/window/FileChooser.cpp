#include "FileChooser.h"

#include "CloudFiles.h"

#include "viewport/Picture.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHash>
#include <QIdentityProxyModel>
#include <QListView>
#include <QPainter>
#include <QPersistentModelIndex>
#include <QTimer>
#include <QTreeView>

#include <list>

namespace orvosky::window {
namespace {

constexpr qint64 largest = 32 << 20; ///< bytes
constexpr QSize iconSize(64, 36);
constexpr const char* pictureKinds = "*.png *.jpg *.jpeg *.tga *.bmp *.tif *.tiff *.dds *.exr *.hdr";

bool isPicture(const QFileInfo& file) {
    return QString(pictureKinds).split(' ').contains("*." + file.suffix().toLower());
}

QImage pictureIn(const QString& file, QSize size) {
    const auto p = host::viewport::Picture::read(file.toStdString());
    if (!p || p->width <= 0 || p->height <= 0) return {};
    const auto format = p->channels == 4 ? QImage::Format_RGBX8888 : QImage::Format_RGB888;
    const QImage image(p->pixels.data(), p->width, p->height, static_cast<qsizetype>(p->rowBytes()), format);
    return image.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

/// The dialog's files, with what they look like in place of their kind's icon.
class Pictures final : public QIdentityProxyModel {
public:
    explicit Pictures(QFileDialog& dialog) : QIdentityProxyModel(&dialog), dialog_(dialog) {
        next_.setInterval(0);
        connect(&next_, &QTimer::timeout, this, &Pictures::look);
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (role == Qt::DecorationRole && index.column() == 0) {
            const QString path = index.data(QFileSystemModel::FilePathRole).toString();
            const auto known = known_.constFind(path);
            if (known == known_.constEnd()) {
                known_.insert(path, {});
                due_.emplace_back(index);
                next_.start();
            } else if (!known->isNull())
                return *known;
        }
        return QIdentityProxyModel::data(index, role);
    }

private:
    void look() {
        while (!due_.empty() && !due_.front().isValid()) due_.pop_front(); // of a folder that was left
        if (due_.empty()) return next_.stop();
        const QPersistentModelIndex index = due_.front();
        due_.pop_front();
        const QString path = index.data(QFileSystemModel::FilePathRole).toString();
        const QImage image = lookOf(path, iconSize);
        if (image.isNull()) return;
        QPixmap icon(iconSize);
        icon.fill(Qt::transparent);
        QPainter painter(&icon);
        painter.drawImage(QPoint((iconSize.width() - image.width()) / 2, (iconSize.height() - image.height()) / 2),
                          image);
        painter.end();
        known_.insert(path, QIcon(icon));
        for (const char* name : {"listView", "treeView"})
            if (auto* view = dialog_.findChild<QAbstractItemView*>(name); view && view->iconSize() != iconSize)
                view->setIconSize(iconSize);
        emit dataChanged(index, index, {Qt::DecorationRole});
    }

    QFileDialog& dialog_;
    mutable QHash<QString, QIcon> known_;
    mutable std::list<QPersistentModelIndex> due_;
    mutable QTimer next_;
};

} // namespace

QImage lookOf(const QString& file, QSize size) {
    const QFileInfo info(file);
    if (!info.isFile() || info.size() > largest) return {};
    if (isPicture(info)) return pictureIn(file, size);
    for (const char* kind : {"jpg", "png", "jpeg"}) {
        const QFileInfo beside(info.path() + "/" + info.completeBaseName() + "." + kind);
        if (beside.isFile() && beside.size() <= largest)
            if (QImage image = pictureIn(beside.filePath(), size); !image.isNull()) return image;
    }
    if (info.suffix().compare("xml", Qt::CaseInsensitive) == 0)
        if (const auto clouds = readStoredClouds(file); !clouds.empty())
            return pictureOf(clouds.front(), size).toImage();
    return {};
}

void showPictures(QFileDialog& dialog) { dialog.setProxyModel(new Pictures(dialog)); }

QString chooseFile(QWidget* parent, const QString& title, const QString& start, const QString& filter) {
    const QFileInfo first(start);
    QFileDialog dialog(parent, title, first.isFile() ? first.path() : start, filter);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    showPictures(dialog);
    if (first.isFile()) dialog.selectFile(first.fileName());
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

QString filterOf(const QString& attribute) {
    QString all = QObject::tr("All Files (*)");
    if (attribute.contains("cloud", Qt::CaseInsensitive)) return QObject::tr("Clouds (*.xml)") + ";;" + all;
    for (const char* word : {"texture", "image", "picture"})
        if (attribute.contains(word, Qt::CaseInsensitive))
            return QObject::tr("Pictures (%1)").arg(pictureKinds) + ";;" + all;
    return all;
}

} // namespace orvosky::window
