#include "SunPanel.h"

#include "Editor.h"
#include "NumberField.h"
#include "SoftSlider.h"
#include "Theme.h"

#include "base/Units.h"
#include "scene/Scene.h"

#include <QCalendarWidget>
#include <QDateEdit>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QTextCharFormat>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace orvosky::window {
namespace {

constexpr double lowest = -6, highest = 90; ///< of the strip of colours, degrees
constexpr int plugRole = Qt::UserRole;

QString clockText(double hours) {
    const int minutes = static_cast<int>(std::lround(hours * 60));
    return QString("%1:%2").arg(minutes / 60).arg(minutes % 60, 2, 10, QChar('0'));
}

QColor colourOf(const host::mel::FloatArray& rgb) {
    if (rgb.size() < 3) return Qt::black;
    const auto part = [&](std::size_t i) { return static_cast<float>(std::clamp(rgb[i], 0.0, 1.0)); };
    return QColor::fromRgbF(part(0), part(1), part(2));
}

} // namespace

void SunColours::setElevation(double degrees) {
    elevation_ = degrees;
    update();
}

void SunColours::paintEvent(QPaintEvent*) {
    // The square root gives the low sun, where colours change, half of the strip.
    const auto place = [this](double degrees) {
        return std::sqrt((std::clamp(degrees, lowest, highest) - lowest) / (highest - lowest)) * (width() - 1);
    };
    constexpr int steps = 64;
    if (colours_.empty())
        for (int i = 0; i <= steps; ++i) {
            const double part = static_cast<double>(i) / steps;
            colours_.push_back(
                colourOf(editor_.ask("orvoskySunColour " + numberText(lowest + part * part * (highest - lowest)) + ";")
                             .toFloatArray()));
        }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient strip(0, 0, width(), 0);
    for (int i = 0; i <= steps; ++i)
        strip.setColorAt(static_cast<double>(i) / steps, colours_[static_cast<std::size_t>(i)]);
    painter.fillRect(QRectF(0, 0, width(), height() - 7), strip);
    const double x = place(elevation_), y = height() - 6;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::text());
    painter.drawPolygon(QPolygonF{QPointF(x, y), QPointF(x + 4, y + 6), QPointF(x - 4, y + 6)});
}

SunPanel::SunPanel(Editor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), latitude_(new NumberField(editor)), longitude_(new NumberField(editor)),
      zone_(new NumberField(editor)), north_(new NumberField(editor)), hours_(new NumberField(editor)),
      date_(new QDateEdit), slider_(new SoftSlider), clock_(new QLabel), readout_(new QLabel),
      colours_(new SunColours(editor)), nodes_(new QTreeWidget) {
    setObjectName("sunPanel");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 4, 12, 12);
    layout->setSpacing(8);
    auto* form = new QFormLayout;
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(5);
    const auto field = [&](NumberField* made, const char* name, const QString& label, const QString& tip,
                           double Setting::*part, double low, double high) {
        made->setObjectName(name);
        made->setToolTip(tip);
        form->addRow(label, made);
        connect(made, &NumberField::entered, this, [this, part, low, high](double value) {
            Setting changed = setting_;
            changed.*part = std::clamp(value, low, high);
            apply(changed);
        });
    };
    field(latitude_, "latitude", tr("Latitude"), tr("Degrees north; south is negative"), &Setting::latitude, -90, 90);
    field(longitude_, "longitude", tr("Longitude"), tr("Degrees east; west is negative"), &Setting::longitude, -180,
          180);
    date_->setObjectName("date");
    date_->setDisplayFormat("d MMM yyyy");
    date_->setCalendarPopup(true);
    for (const auto day : {Qt::Saturday, Qt::Sunday}) date_->calendarWidget()->setWeekdayTextFormat(day, {});
    date_->setDateRange(QDate(1950, 1, 1), QDate(2050, 12, 31));
    date_->setToolTip(tr("The years for which the sun's place is known to a hundredth of a degree"));
    form->addRow(tr("Date"), date_);
    connect(date_, &QDateEdit::dateChanged, this, [this](QDate date) {
        Setting changed = setting_;
        changed.year = date.year();
        changed.month = date.month();
        changed.day = date.day();
        apply(changed);
    });
    field(zone_, "zone", tr("Time Zone"), tr("Hours that the clock is before UTC; 2 is central European summer time"),
          &Setting::zone, -14, 14);
    field(north_, "north", tr("North"), tr("Where north lies in the scene: degrees clockwise from -Z, seen from above"),
          &Setting::north, -360, 360);
    layout->addLayout(form);

    auto* time = new QHBoxLayout;
    time->setSpacing(8);
    hours_->setObjectName("hours");
    hours_->setFixedWidth(52);
    hours_->setToolTip(tr("Hours by the clock"));
    slider_->setObjectName("hoursSlider");
    slider_->setRange(0, 24);
    clock_->setFixedWidth(44);
    time->addWidget(clock_);
    time->addWidget(slider_, 1);
    time->addWidget(hours_);
    layout->addLayout(time);
    const auto at = [this](double hours) {
        Setting changed = setting_;
        changed.hours = std::clamp(hours, 0.0, 24.0);
        return changed;
    };
    connect(hours_, &NumberField::entered, this, [this, at](double hours) { apply(at(hours)); });
    connect(slider_, &SoftSlider::dragged, this, [this, at](double hours) {
        present(at(hours));
        if (const std::string mel = statement(setting_); !mel.empty()) editor_.preview(mel);
    });
    connect(slider_, &SoftSlider::released, this, [this, at](double hours) { apply(at(hours)); });
    connect(slider_, &SoftSlider::resetAsked, this, [this, at] { apply(at(12)); });
    readout_->setProperty("dim", true);
    layout->addWidget(readout_);
    colours_->setToolTip(tr("The colour of sunlight, from below the horizon to overhead; ticked nodes get it"));
    colours_->setFixedHeight(20);
    layout->addWidget(colours_);

    nodes_->setObjectName("sunNodes");
    nodes_->setHeaderLabels({tr("Node"), tr("Sun"), tr("Colour")});
    nodes_->setRootIsDecorated(false);
    nodes_->setMinimumHeight(96);
    nodes_->setSelectionMode(QAbstractItemView::NoSelection);
    nodes_->header()->setStretchLastSection(false);
    nodes_->header()->setSectionResizeMode(Name, QHeaderView::Stretch);
    for (const int column : {Sun, Colour}) nodes_->header()->resizeSection(column, 56);
    nodes_->header()->setMinimumSectionSize(40);
    layout->addWidget(nodes_, 1);
    connect(nodes_, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
        const std::string plug = item->data(column, plugRole).toString().toStdString();
        if (!plug.empty()) ticks_[plug] = item->checkState(column) == Qt::Checked;
    });

    auto* buttons = new QHBoxLayout;
    auto* point = new QPushButton(tr("Point the Sun"));
    point->setObjectName("pointSun");
    point->setToolTip(tr("Points the sun of what is ticked, as every change above does"));
    connect(point, &QPushButton::clicked, this, [this] { apply(setting_); });
    auto* day = new QPushButton(tr("Key the Day"));
    day->setObjectName("keyDay");
    day->setToolTip(tr("Keys the sun's course from midnight to midnight over the range that is played"));
    connect(day, &QPushButton::clicked, this, &SunPanel::keyDay);
    buttons->addWidget(point);
    buttons->addWidget(day);
    buttons->addStretch();
    layout->addLayout(buttons);

    const QSettings settings;
    const auto kept = [&](const char* name, double otherwise) {
        return settings.value(QString("sun/") + name, otherwise).toDouble();
    };
    setting_.latitude = kept("latitude", setting_.latitude);
    setting_.longitude = kept("longitude", setting_.longitude);
    setting_.zone = kept("zone", setting_.zone);
    setting_.north = kept("north", setting_.north);
    setting_.hours = kept("hours", setting_.hours);
    if (const QDate date = settings.value("sun/date").toDate(); date.isValid()) {
        setting_.year = date.year();
        setting_.month = date.month();
        setting_.day = date.day();
    }
    connect(&editor_, &Editor::changed, this, [this] {
        if (isVisible()) list();
    });
}

SunPanel::~SunPanel() = default;

std::string SunPanel::place(const Setting& s) const {
    return numberText(s.latitude) + ", " + numberText(s.longitude) + ", " + std::to_string(s.year) + ", " +
           std::to_string(s.month) + ", " + std::to_string(s.day) + ", ";
}

std::string SunPanel::ticked(Column column) const {
    std::string names;
    for (int i = 0; i < nodes_->topLevelItemCount(); ++i) {
        const QTreeWidgetItem& item = *nodes_->topLevelItem(i);
        const std::string plug = item.data(column, plugRole).toString().toStdString();
        if (!plug.empty() && item.checkState(column) == Qt::Checked) names += (names.empty() ? "" : " ") + plug;
    }
    return names;
}

std::string SunPanel::statement(const Setting& s) const {
    const std::string suns = ticked(Sun), colours = ticked(Colour);
    if (suns.empty() && colours.empty()) return {};
    return "orvoskySetSunByPlace(" + place(s) + numberText(s.hours) + ", " + numberText(s.zone) + ", " +
           numberText(s.north) + ", " + quoted(suns) + ", " + quoted(colours) + ");";
}

void SunPanel::present(const Setting& setting) {
    setting_ = setting;
    latitude_->setValue(setting.latitude);
    longitude_->setValue(setting.longitude);
    zone_->setValue(setting.zone);
    north_->setValue(setting.north);
    hours_->setValue(setting.hours);
    slider_->setValue(setting.hours);
    {
        const QSignalBlocker quiet(date_);
        date_->setDate(QDate(setting.year, setting.month, setting.day));
    }
    clock_->setText(clockText(setting.hours));
    const auto at = editor_
                        .ask("orvoskySunPosition(" + place(setting) + numberText(setting.hours) + ", " +
                             numberText(setting.zone) + ");")
                        .toFloatArray();
    if (at.size() < 2) return;
    readout_->setText(
        tr("%1 deg up, %2 deg from north").arg(at[1], 0, 'f', 1).arg(std::fmod(std::round(at[0]), 360), 0, 'f', 0));
    colours_->setElevation(at[1]);
}

void SunPanel::apply(const Setting& setting) {
    present(setting);
    showCourse();
    if (const std::string mel = statement(setting); !mel.empty()) editor_.finish(mel);
    QSettings settings;
    settings.setValue("sun/latitude", setting.latitude);
    settings.setValue("sun/longitude", setting.longitude);
    settings.setValue("sun/zone", setting.zone);
    settings.setValue("sun/north", setting.north);
    settings.setValue("sun/hours", setting.hours);
    settings.setValue("sun/date", QDate(setting.year, setting.month, setting.day));
}

void SunPanel::keyDay() {
    const std::string suns = ticked(Sun), colours = ticked(Colour);
    if (suns.empty() && colours.empty()) return;
    const auto frame = [](double ticks) { return numberText(ticks / host::timeUnit().ticks); };
    const auto& range = Editor::scene().playback();
    editor_.finish("orvoskyKeySunDay(" + place(setting_) + numberText(setting_.zone) + ", " +
                   numberText(setting_.north) + ", " + frame(range.min) + ", " + frame(range.max) + ", " +
                   quoted(suns) + ", " + quoted(colours) + ");");
}

void SunPanel::list() {
    const auto suns = editor_.ask("orvoskyAllSunPlugs").toStringArray();
    const auto colours = editor_.ask("orvoskyAllSunColourPlugs").toStringArray();
    std::vector<std::string> all(suns.begin(), suns.end());
    all.insert(all.end(), colours.begin(), colours.end());
    if (all == listed_) return;
    listed_ = all;
    const QSignalBlocker quiet(nodes_);
    nodes_->clear();
    std::map<std::string, QTreeWidgetItem*> items;
    const auto add = [&](const std::string& plug, Column column, bool ticked) {
        const std::string node = plug.substr(0, plug.find('.'));
        QTreeWidgetItem*& item = items[node];
        if (!item) {
            item = new QTreeWidgetItem(nodes_, {QString::fromStdString(node).section('|', -1)});
            item->setToolTip(Name, QString::fromStdString(node));
        }
        item->setData(column, plugRole, QString::fromStdString(plug));
        const auto tick = ticks_.find(plug);
        item->setCheckState(column, (tick == ticks_.end() ? ticked : tick->second) ? Qt::Checked : Qt::Unchecked);
    };
    for (const auto& plug : suns) add(plug, Sun, true);
    for (const auto& plug : colours) add(plug, Colour, false);
}

void SunPanel::showCourse() {
    std::vector<MVector> course;
    if (isVisible()) {
        const auto numbers = editor_
                                 .ask("orvoskySunCourse(" + place(setting_) + numberText(setting_.zone) + ", " +
                                      numberText(setting_.north) + ");")
                                 .toFloatArray();
        for (std::size_t i = 0; i + 2 < numbers.size(); i += 3)
            course.emplace_back(numbers[i], numbers[i + 1], numbers[i + 2]);
    }
    emit courseChanged(course);
}

void SunPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    list();
    present(setting_);
    showCourse();
}

void SunPanel::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    emit courseChanged({});
}

} // namespace orvosky::window
