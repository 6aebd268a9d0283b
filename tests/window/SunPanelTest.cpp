// The sun by place and time: its arithmetic against published places of the sun, and the panel that uses it.
#include "WindowFixture.h"

#include "NumberField.h"
#include "SunPanel.h"

#include "scene/Scene.h"

#include <QDockWidget>
#include <QPushButton>
#include <QTreeWidget>

#include <cmath>
#include <numbers>

namespace orvosky::window {
namespace {

class SunByPlace : public Window {
protected:
    std::vector<double> numbers(const std::string& mel) { return editor().ask(mel).toFloatArray(); }
    QTreeWidgetItem* row(const QString& node) {
        const auto found = window().sunPanel().findChild<QTreeWidget*>()->findItems(node, Qt::MatchExactly);
        return found.isEmpty() ? nullptr : found.front();
    }
};

// Faults: a wrong sign of longitude, zone or hour angle, an azimuth that counts from the south, a calendar that is a
// day off, degrees taken for radians. The algorithm is good to 0.01 degrees, the clock to a few seconds.
TEST_F(SunByPlace, IsWhereEphemeridesSay) {
    open("");
    struct Case {
        const char* arguments;
        double azimuth, elevation;
    };
    for (const auto& [arguments, azimuth, elevation] : std::vector<Case>{
             // Reda and Andreas, "Solar Position Algorithm for Solar Radiation Applications", NREL/TP-560-34302,
             // appendix
             // A.5: Golden, Colorado, 17 October 2003, 12:30:30; the elevation is that before refraction.
             {"39.742476, -105.1786, 2003, 10, 17, 12.5083333, -7", 194.3402, 39.8720},
             // Meeus, "Astronomical Algorithms", examples 25.a and 28.a: 13 October 1992, 0 h, declination -7.78507,
             // equation of time 3.427 degrees. So the sun passes the meridian of 176.573 degrees east then: in the
             // south
             // of 45 degrees north, in the north of 45 degrees south; from the pole it is seen at its declination.
             {"45, 176.573, 1992, 10, 13, 0, 0", 180, 45 - 7.7851},
             {"-45, 176.573, 1992, 10, 13, 12, 12", 0, 45 + 7.7851},
             {"90, 0, 1992, 10, 12, 19, -5", -1, -7.7851},
             // The March equinox of 2024 was at 03:06 UTC (US Naval Observatory), the June solstice of 2000 at 01:48.
             {"90, 0, 2024, 3, 20, 3.1, 0", -1, 0},
             {"90, 0, 2000, 6, 21, 1.8, 0", -1, 23.4393}}) {
        const auto at = numbers(std::string("orvoskySunPosition(") + arguments + ");");
        ASSERT_EQ(at.size(), 2u) << arguments;
        EXPECT_NEAR(at[1], elevation, 0.012) << arguments;
        if (azimuth >= 0) {
            EXPECT_NEAR(std::remainder(at[0] - azimuth, 360), 0, 0.015) << arguments;
        }
    }
    // East is +X where -Z is north; with north turned to +X, east is +Z.
    EXPECT_NEAR(numbers("orvoskySunDirection(90, 0, 0);")[0], 1, 1e-12);
    EXPECT_NEAR(numbers("orvoskySunDirection(90, 0, 90);")[2], 1, 1e-12);
    // 5 degrees: an air mass of 10.31 (Kasten and Young's table), so 9.31 more than overhead.
    const auto low = numbers("orvoskySunColour(5);");
    const auto shown = [](double linear) { return 1.055 * std::pow(linear, 1 / 2.4) - 0.055; };
    EXPECT_NEAR(low[1], shown(std::exp(-9.31 * 0.0825)), 0.002);
    EXPECT_NEAR(low[2], shown(std::exp(-9.31 * 0.2644)), 0.002);
    EXPECT_EQ(numbers("orvoskySunColour(-7);"), std::vector<double>(3, 0));
    EXPECT_NEAR(numbers("orvoskySunColour(90);")[2], 1, 1e-3);
}

// Faults: nodes that are not ticked but turned, a change that is several steps, a day that is keyed elsewhere, over old
// keys, or on the wrong parts.
TEST_F(SunByPlace, PanelPointsAndKeysWhatIsTicked) {
    open();
    editor().run("orvoskyCreate orvosky_ParticleCloudShadingParams \"shade\"; orvoskyCreate orvosky_SceneFog \"haze\"; "
                 "setKeyframe -t 7 -v 0.5 shade1Shape.sunDir0;");
    const std::string before = saved();
    SunPanel& panel = window().sunPanel();
    EXPECT_EQ(panel.isVisible(), false);
    window().findChild<QDockWidget*>("sunDock")->show();
    settle();
    ASSERT_NE(row("skyShape"), nullptr);
    ASSERT_NE(row("shade1Shape"), nullptr);
    ASSERT_NE(row("haze1Shape"), nullptr);
    row("haze1Shape")->setCheckState(1, Qt::Unchecked);
    row("shade1Shape")->setCheckState(2, Qt::Checked);
    const SunPanel::Setting noon{.latitude = 45,
                                 .longitude = 176.573,
                                 .year = 1992,
                                 .month = 10,
                                 .day = 13,
                                 .hours = 12,
                                 .zone = 12,
                                 .north = 0};
    panel.apply(noon);
    const auto high = (45 - 7.7851) * std::numbers::pi / 180;
    for (const char* plug : {"skyShape.sunDir", "shade1Shape.sunDir"}) {
        const auto d = numbers(std::string("float $orvoskyTest[] = `getAttr ") + plug + "`");
        EXPECT_NEAR(d.at(0), 0, 3e-4) << plug;
        EXPECT_NEAR(d.at(1), std::sin(high), 3e-4) << plug;
        EXPECT_NEAR(d.at(2), std::cos(high), 3e-4) << plug << ": the south is +Z";
    }
    EXPECT_EQ(number("getAttr haze1Shape.sunDir1"), 1) << "it was not ticked";
    EXPECT_NEAR(number("getAttr skyShape.sunColourB"), 0.763, 1e-6) << "nor was its colour";
    EXPECT_GT(number("getAttr shade1Shape.sunColour2"), 0.8);
    auto& field = *panel.findChild<NumberField*>("latitude");
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, "-45");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_LT(number("getAttr skyShape.sunDir2"), -0.5) << "in the north, as soon as it is typed";
    editor().run("undo;");
    EXPECT_GT(number("getAttr skyShape.sunDir2"), 0.5) << "one change, one step";

    editor().run("playbackOptions -min 1 -max 25;");
    panel.apply(noon);
    QTest::mouseClick(panel.findChild<QPushButton*>("keyDay"), Qt::LeftButton);
    EXPECT_EQ(number("keyframe -q -kc skyShape.sunDir0"), 97);
    EXPECT_EQ(number("keyframe -q -kc shade1Shape.sunDir0"), 97) << "the old key is gone";
    EXPECT_EQ(number("keyframe -q -kc haze1Shape.sunDir0"), 0);
    EXPECT_EQ(number("keyframe -q -kc shade1Shape.sunColour1"), 97);
    editor().run("currentTime 13;"); // noon
    EXPECT_NEAR(number("getAttr skyShape.sunDir1"), std::sin(high), 3e-4);
    EXPECT_GT(number("getAttr -t 19 skyShape.sunDir0"), -1.1);
    EXPECT_LT(number("getAttr -t 17 skyShape.sunDir0"), -0.5) << "in the afternoon it stands in the west";
    EXPECT_LT(number("getAttr -t 1 skyShape.sunDir1"), 0) << "at midnight it is down";
    EXPECT_THAT(errors_, testing::IsEmpty());
    for (int i = 0; i < 20 && Editor::scene().undo.undoNames().size() > 1; ++i) editor().run("undo;");
    EXPECT_EQ(saved(), before);
}

} // namespace
} // namespace orvosky::window
