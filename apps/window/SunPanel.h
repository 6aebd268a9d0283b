#pragma once

#include <maya/MVector.h>

#include <QWidget>

#include <map>
#include <string>
#include <vector>

class QDateEdit;
class QLabel;
class QTreeWidget;

namespace orvosky::window {

class Editor;
class NumberField;
class SoftSlider;

/// The colours that sunlight has from 6 degrees below the horizon to overhead, and the one that it has now.
class SunColours : public QWidget {
public:
    explicit SunColours(Editor& editor) : editor_(editor) {}
    void setElevation(double degrees);
    QSize sizeHint() const override { return {120, 20}; }

protected:
    void paintEvent(QPaintEvent*) override;

private:
    Editor& editor_;
    std::vector<QColor> colours_; ///< at equal steps of elevation; asked for once
    double elevation_ = 0;
};

/// The sun by place and time: points the sun of the ticked nodes to where it stands, gives the ticked ones its colour,
/// and keys a day. The arithmetic is that of the procedures orvoskySun...; the place is remembered among the
/// preferences.
class SunPanel : public QWidget {
    Q_OBJECT
public:
    explicit SunPanel(Editor& editor, QWidget* parent = nullptr);
    ~SunPanel() override;

    /// Where and when.
    struct Setting {
        double latitude = 50, longitude = 10; ///< degrees north and east
        int year = 2024, month = 6, day = 21;
        double hours = 12; ///< by the clock
        double zone = 1;   ///< of the clock before UTC, hours
        double north = 0;  ///< degrees clockwise of -Z
    };
    const Setting& setting() const { return setting_; }
    /// Shows a setting and points the sun by it.
    void apply(const Setting& setting);
    /// Keys the day over the range that is played.
    void keyDay();

signals:
    /// The sun's way over the day, direction by direction; empty when the panel is not shown.
    void courseChanged(const std::vector<MVector>& course);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    enum Column { Name, Sun, Colour };
    void list();
    void present(const Setting& setting);
    void showCourse();
    std::string statement(const Setting& setting) const;
    std::string place(const Setting& setting) const;
    std::string ticked(Column column) const;

    Editor& editor_;
    Setting setting_;
    NumberField *latitude_, *longitude_, *zone_, *north_, *hours_;
    QDateEdit* date_;
    SoftSlider* slider_;
    QLabel *clock_, *readout_;
    SunColours* colours_;
    QTreeWidget* nodes_;
    std::map<std::string, bool> ticks_; ///< by attribute, where the artist has set one
    std::vector<std::string> listed_;
};

} // namespace orvosky::window
