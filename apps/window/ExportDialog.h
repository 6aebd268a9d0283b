#pragma once

#include "Editor.h"
#include "WindowModule.h"

#include <QDialog>

#include <filesystem>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace orvosky::window {

/// Exports the sky: tries it first and lists what is wrong, each complaint leading to the node that causes it; then
/// writes as `orvosky export` does. It stays open beside the work.
class ExportDialog : public QDialog {
    Q_OBJECT
public:
    ExportDialog(Editor& editor, const WindowStart& start, QWidget* parent = nullptr);

    /// Exports into a folder that goes away, and shows what came of it.
    void check();
    void exportNow();
    void setTarget(const QString& file);

private:
    void list(Editor::Kind kind, const QString& text);
    /// Exports, listing what is said; answers whether it was done.
    bool tryExport(const std::filesystem::path& target);
    void showContents(const std::filesystem::path& file, bool written);

    Editor& editor_;
    const WindowStart& start_;
    QLineEdit* target_;
    QListWidget* complaints_;
    QLabel *contents_, *verdict_;
    QPushButton* export_;
    int errors_ = 0;
};

/// The node that a message speaks of: the first of its words that names one. Empty when none does.
std::string nodeIn(const std::string& message);

} // namespace orvosky::window
