#pragma once

#include <QWidget>

#include <filesystem>

class QVBoxLayout;

namespace orvosky::window {

/// "3_towering_cumulus" as it is read: "Towering cumulus".
QString presetTitle(const QString& stem);

/// What a session begins with: the presets by their pictures, the recent scenes, an empty one. A preset is a scene in a
/// folder of the tool root with a picture of the same name.
class StartPage : public QWidget {
    Q_OBJECT
public:
    StartPage(const std::filesystem::path& presets, const QStringList& recent, QWidget* parent);

signals:
    void presetChosen(const QString& file);
    void recentChosen(const QString& file);
    void browseChosen();
    void emptyChosen();

protected:
    void paintEvent(QPaintEvent*) override;
};

} // namespace orvosky::window
