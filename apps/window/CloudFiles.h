#pragma once

#include <QPixmap>
#include <QString>
#include <QStringList>

#include <vector>

namespace orvosky::window {

/// A cloud of a library or of a file of its own, as far as it is shown: its ellipsoids seen from the front,
/// centimetres.
struct StoredCloud {
    struct Blob {
        double x, y, z;            ///< middle; y upwards, z towards the eye
        double halfWide, halfTall; ///< half the extent
        double opacity;
    };
    QString file;
    int number = 1; ///< in the file, from 1
    std::vector<Blob> blobs;
};

/// The clouds of a file, or of the files in a folder, at most 500. What cannot be read is left out; `problem` then says
/// why, when given.
std::vector<StoredCloud> readStoredClouds(const QString& path, QString* problem = nullptr);
/// What it looks like, about.
QPixmap pictureOf(const StoredCloud& cloud, QSize size);
/// The cloud libraries and cloud files below a folder, at most five levels deep and 200 of them.
QStringList cloudFilesBelow(const QString& folder);

} // namespace orvosky::window
