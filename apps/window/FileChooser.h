#pragma once

#include <QImage>
#include <QString>

class QFileDialog;
class QWidget;

namespace orvosky::window {

/// What a file looks like, in at most that many pixels: the picture that it is, the picture of the same name beside it,
/// or the first cloud in it. Null for none of these, and for files above 32 MB.
QImage lookOf(const QString& file, QSize size);

/// Lets a dialog show what its files look like, one after the other while it waits.
void showPictures(QFileDialog& dialog);

/// Asks for a file that there is, in a dialog with pictures. `filter` as Qt and MEL's fileDialog2 have it, such as
/// "Clouds (*.xml);;All Files (*)". It begins in the folder `start`, or with the file. Empty when none was chosen.
QString chooseFile(QWidget* parent, const QString& title, const QString& start, const QString& filter);

/// The filter of what a file's attribute of that name may hold, as the name lets one think.
QString filterOf(const QString& attribute);

} // namespace orvosky::window
