#include "ProjectFiles.h"

#include "commands/Host.h"
#include "files/Workspace.h"

#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace orvosky::window {

QString projectRoot() { return QString::fromStdString(host::Host::instance().workspace().root().string()); }

QString fileOnDisk(const QString& named) {
    if (named.isEmpty()) return {};
    QString path = named;
    path.replace('\\', '/');
    if (QFileInfo::exists(path) && QDir::isAbsolutePath(path)) return path;
    QString at = projectRoot();
    for (const QString& part : path.split('/', Qt::SkipEmptyParts)) {
        if (QFileInfo::exists(at + "/" + part)) {
            at += "/" + part;
            continue;
        }
        const QStringList all = QDir(at).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        const auto found =
            std::ranges::find_if(all, [&](const QString& name) { return !name.compare(part, Qt::CaseInsensitive); });
        if (found == all.end()) return {};
        at += "/" + *found;
    }
    return at;
}

bool isScene(const QString& file) {
    return file.endsWith(".ma", Qt::CaseInsensitive) || file.endsWith(".mel", Qt::CaseInsensitive);
}

QStringList draggedFiles(const QMimeData& data) {
    QStringList files;
    for (const QUrl& url : data.urls()) files << url.toLocalFile();
    return files;
}

void takeCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace orvosky::window
