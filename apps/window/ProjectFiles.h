#pragma once

#include <QString>
#include <QStringList>

class QDropEvent;
class QMimeData;

namespace orvosky::window {

/// The folder of the host's project, without a slash at its end.
QString projectRoot();

/// Where a file lies that an attribute names: as the host's project has it, names compared without regard to case.
/// Empty when there is none.
QString fileOnDisk(const QString& named);

/// Whether a file is opened as a scene, by its name: .ma, or a script that makes one, .mel.
bool isScene(const QString& file);

/// The files that are dragged from another program; what is not on this machine is an empty name among them.
QStringList draggedFiles(const QMimeData& data);
/// Accepts what is dragged as a copy: whoever offers to move a file would delete it.
void takeCopy(QDropEvent& event);
/// The property, true, of widgets that take the files that are let go on them.
inline constexpr const char* takesFiles = "takesFiles";

} // namespace orvosky::window
