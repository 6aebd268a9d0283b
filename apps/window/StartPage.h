#pragma once

#include <QWidget>

#include <filesystem>
#include <vector>

class QLabel;
class QToolButton;

namespace orvosky::window {

/// "3_towering_cumulus" as it is read: "Towering cumulus".
QString presetTitle(const QString& stem);

/// What a session begins with: the presets by their pictures, the recent scenes, an empty one. A preset is a scene in a
/// folder of the tool root with a picture of the same name.
class StartPage : public QWidget {
    Q_OBJECT
public:
    StartPage(const std::filesystem::path& presets, const QStringList& recent, QWidget* parent);
    /// Shows a message, which the page's window has no other place for.
    void say(const QString& text, const QColor& colour);

signals:
    void presetChosen(const QString& file);
    void recentChosen(const QString& file);
    void browseChosen();
    void emptyChosen();

protected:
    void paintEvent(QPaintEvent*) override;
    void resizeEvent(QResizeEvent*) override;

private:
    std::vector<QToolButton*> pictures_;
    QLabel* said_;
};

} // namespace orvosky::window
