#include "CloudFiles.h"

#include "Theme.h"

#include <maya/MMatrix.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace orvosky::window {
namespace {

constexpr std::size_t mostClouds = 500;
constexpr int mostFiles = 200, deepest = 5;
constexpr qint64 largest = 64 << 20; ///< bytes, as the clouds' own reader has it

std::optional<std::array<double, 3>> three(const QXmlStreamAttributes& attributes, const char* name) {
    const QStringList words = attributes.value(QLatin1String(name)).toString().simplified().split(' ');
    if (words.size() < 3) return std::nullopt;
    std::array<double, 3> numbers{};
    for (std::size_t i = 0; i < 3; ++i) {
        bool fine = false;
        numbers[i] = words[static_cast<int>(i)].toDouble(&fine);
        if (!fine || !std::isfinite(numbers[i])) return std::nullopt;
    }
    return numbers;
}

/// The ellipsoid whose space that transform leads into.
std::optional<StoredCloud::Blob> blobOf(const QXmlStreamAttributes& attributes, double opacity) {
    MMatrix into;
    const char* names[] = {"x_vec", "y_vec", "z_vec", "pos_vec"};
    for (unsigned row = 0; row < 4; ++row) {
        const auto numbers = three(attributes, names[row]);
        if (!numbers) return std::nullopt;
        for (unsigned column = 0; column < 3; ++column) into(row, column) = (*numbers)[column];
    }
    if (std::abs(into.det3x3()) < 1e-30) return std::nullopt;
    const MMatrix w = into.inverse();
    const auto half = [&](unsigned column) { return std::hypot(w(0, column), w(1, column), w(2, column)); };
    return StoredCloud::Blob{w(3, 0), w(3, 1), w(3, 2), half(0), half(1), opacity};
}

void readFile(const QString& path, std::vector<StoredCloud>& clouds, QString* problem) {
    QFile file(path);
    const auto fails = [&](const QString& why) {
        if (problem) *problem = path + ": " + why;
    };
    if (!file.open(QIODevice::ReadOnly)) return fails(file.errorString());
    if (file.size() > largest) return fails(QObject::tr("it is too large"));
    QXmlStreamReader xml(&file);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("OrvoAtmosphere") ||
        !xml.attributes().value("type").startsWith(QLatin1String("Modeler_ParticleCloud")))
        return fails(QObject::tr("it holds no clouds"));
    const std::size_t before = clouds.size();
    double opacity = 1;
    while (!xml.atEnd() && clouds.size() < mostClouds) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        if (xml.name() == QLatin1String("ParticleCloud"))
            clouds.push_back({path, static_cast<int>(clouds.size() - before) + 1, {}});
        else if (clouds.size() == before)
            continue;
        else if (xml.name() == QLatin1String("ParticleCloudSphere"))
            opacity = std::clamp(xml.attributes().value("opacity").toDouble(), 0.0, 1.0);
        else if (xml.name() == QLatin1String("Transform"))
            if (const auto blob = blobOf(xml.attributes(), opacity)) clouds.back().blobs.push_back(*blob);
    }
    if (xml.hasError()) fails(QObject::tr("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString()));
    if (clouds.size() == before) fails(QObject::tr("it holds no clouds"));
}

} // namespace

std::vector<StoredCloud> readStoredClouds(const QString& path, QString* problem) {
    std::vector<StoredCloud> clouds;
    if (!QFileInfo(path).isDir()) {
        readFile(path, clouds, problem);
        return clouds;
    }
    for (const QFileInfo& file : QDir(path).entryInfoList({"*.xml"}, QDir::Files, QDir::Name))
        readFile(file.filePath(), clouds, nullptr);
    if (clouds.empty() && problem) *problem = QObject::tr("%1: no cloud lies in it").arg(path);
    return clouds;
}

QPixmap pictureOf(const StoredCloud& cloud, QSize size) {
    QPixmap picture(size);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor("#5f7fa6"));
    sky.setColorAt(1, QColor("#93abc4"));
    QPainter painter(&picture);
    painter.fillRect(QRect({}, size), sky);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QRectF all;
    for (const auto& b : cloud.blobs)
        all |= QRectF(b.x - b.halfWide, -b.y - b.halfTall, 2 * b.halfWide, 2 * b.halfTall);
    if (all.isEmpty()) return picture;
    const double scale = std::min(size.width() * 0.9 / all.width(), size.height() * 0.9 / all.height());
    std::vector<StoredCloud::Blob> blobs = cloud.blobs;
    std::ranges::stable_sort(blobs, {}, &StoredCloud::Blob::z);
    for (const auto& b : blobs) {
        const QPointF middle =
            (QPointF(b.x, -b.y) - all.center()) * scale + QPointF(size.width() / 2.0, size.height() / 2.0);
        painter.save();
        painter.translate(middle);
        painter.scale(std::max(b.halfWide * scale, 0.5), std::max(b.halfTall * scale, 0.5));
        // Lit from above on the left, and without an edge.
        QRadialGradient light(QPointF(-0.25, -0.45), 1.45);
        const auto tone = [&](double value, double alpha) {
            return QColor::fromRgbF(static_cast<float>(value), static_cast<float>(value),
                                    static_cast<float>(std::min(1.0, value * 1.03)),
                                    static_cast<float>(alpha * b.opacity));
        };
        light.setColorAt(0, tone(1, 0.95));
        light.setColorAt(0.55, tone(0.9, 0.85));
        light.setColorAt(1, tone(0.72, 0.5));
        painter.setBrush(light);
        painter.drawEllipse(QPointF(0, 0), 1, 1);
        painter.restore();
    }
    return picture;
}

QStringList cloudFilesBelow(const QString& folder) {
    QStringList found;
    QDirIterator files(folder, {"*.xml"}, QDir::Files, QDirIterator::Subdirectories);
    const auto depth = [](const QString& path) { return path.count('/'); };
    while (files.hasNext() && found.size() < mostFiles) {
        const QString path = files.next();
        if (depth(path) - depth(folder) > deepest) continue;
        QFile file(path);
        if (file.open(QIODevice::ReadOnly) && file.read(400).contains("Modeler_ParticleCloud")) found << path;
    }
    found.sort();
    return found;
}

} // namespace orvosky::window
