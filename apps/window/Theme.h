#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

#include <filesystem>

class QApplication;

/// How the window looks: greys of one ramp, one accent. The sky is the brightest thing on the screen.
namespace orvosky::window::theme {

/// Steps of the ramp, from the ground (0) to the text (7).
QColor grey(int step);
inline QColor ground() { return grey(0); }
inline QColor panel() { return grey(1); }
inline QColor field() { return grey(2); }
inline QColor line() { return grey(3); }
inline QColor dimText() { return grey(6); }
inline QColor text() { return grey(7); }
QColor accent();
QColor warning();
QColor error();

void apply(QApplication& application);

/// The icon of that name in the tool root's icons, drawn in the ramp's text colour; empty when there is none.
QIcon icon(const QString& name);
/// An icon with a mark that something about it is wrong.
QIcon marked(const QIcon& icon);
void setIconFolder(const std::filesystem::path& folder);

} // namespace orvosky::window::theme
