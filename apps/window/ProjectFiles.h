#pragma once

#include <QString>

namespace orvosky::window {

/// The folder of the host's project, without a slash at its end.
QString projectRoot();

/// Where a file lies that an attribute names: as the host's project has it, names compared without regard to case.
/// Empty when there is none.
QString fileOnDisk(const QString& named);

} // namespace orvosky::window
