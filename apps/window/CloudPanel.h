#pragma once

#include "CloudFiles.h"

#include <QWidget>

#include <string>

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;

namespace orvosky::window {

class Editor;

/// Clouds that lie in files: the libraries of the project with a picture of each cloud, and those that the selected
/// dome is made of. One is added to the sky to be edited, a library is handed to a dome, clouds of the scene are saved
/// as one.
class CloudPanel : public QWidget {
    Q_OBJECT
public:
    explicit CloudPanel(Editor& editor, QWidget* parent = nullptr);

    /// Shows the clouds of a file or folder.
    void showLibrary(const QString& path);
    const std::vector<StoredCloud>& clouds() const { return clouds_; }
    /// Makes the chosen cloud one of the scene's.
    void addChosen();
    /// Fills the selected dome, else the scene's first, with the library.
    void useInDome();
    /// Saves the selected clouds, else all, as a library.
    bool saveClouds(const QString& file);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void findLibraries();
    void follow();
    std::string dome() const;

    Editor& editor_;
    QComboBox* libraries_;
    QListWidget* list_;
    QLabel *problem_, *scene_;
    QPushButton *add_, *use_;
    std::vector<StoredCloud> clouds_;
    QString shown_, domeLibrary_; ///< the library that is shown, that of the selected dome
    std::string dome_;            ///< the dome that was selected last
};

} // namespace orvosky::window
