// Clouds in files: libraries are listed with pictures, clouds come out of them as they went in, domes take them.
#include "WindowFixture.h"

#include "CloudPanel.h"
#include "HeightTool.h"
#include "OutlinerModel.h"
#include "OutlinerPanel.h"

#include "scene/Scene.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>

#include <cstdio>
#include <sstream>

namespace orvosky::window {
namespace {

using testing::HasSubstr;

class Clouds : public Window {
protected:
    CloudPanel& panel() {
        window().clouds().parentWidget()->show();
        settle();
        return window().clouds();
    }
};

/// The numbers of all axes of all ellipsoids in a library.
std::vector<double> axes(const std::string& library) {
    std::vector<double> numbers;
    std::istringstream lines(library);
    for (std::string line; std::getline(lines, line);) {
        double v[3];
        const auto quote = line.find("_vec = \"");
        if (quote == line.npos || line[quote - 1] == 's') continue;
        if (std::sscanf(line.c_str() + quote + 8, "%lf %lf %lf", &v[0], &v[1], &v[2]) == 3)
            numbers.insert(numbers.end(), v, v + 3);
    }
    return numbers;
}

// Faults: an ellipsoid that comes back elsewhere, mirrored or without its opacity, settings that are lost, a cloud that
// is another than its picture.
TEST_F(Clouds, ComeOutOfALibraryAsTheyWentIn) {
    open();
    editor().run("orvoskyCreateCloud; orvoskyAddSphere; setAttr cloud1Sphere2.r 20 40 10; "
                 "setAttr cloud1Sphere2Shape.opacity 0.25;");
    editor().run("orvoskyCreateCloud; setAttr cloud2SpritesShape.particleDensity 7000; "
                 "setAttr cloud2SpritesShape.enableGroundFade 1;");
    editor().run("select -r cloud2;");
    const QString file = QString::fromStdString((folder_ / "build/own.xml").string());
    fs::create_directories(folder_ / "build");
    ASSERT_TRUE(panel().saveClouds(file));
    ASSERT_EQ(panel().clouds().size(), 1u) << "the selected one";
    editor().run("select -cl;");
    ASSERT_TRUE(panel().saveClouds(file));
    ASSERT_EQ(panel().clouds().size(), 2u);
    auto& list = *panel().findChild<QListWidget*>();
    ASSERT_EQ(list.count(), 2);
    const QImage one = list.item(0)->icon().pixmap(104, 64).toImage();
    EXPECT_NE(one, list.item(1)->icon().pixmap(104, 64).toImage());
    // The first sphere is 400 m wide and 240 m tall; it stands in the group's middle.
    const auto& blob = panel().clouds()[1].blobs.at(0);
    EXPECT_NEAR(blob.halfWide, 20000, 1);
    EXPECT_NEAR(blob.halfTall, 12000, 1);
    EXPECT_NEAR(blob.y, 30000, 1);
    EXPECT_NEAR(blob.z, -120000, 10);
    const std::string library = content(folder_ / "build/own.xml");
    for (int i = 0; i < 2; ++i) {
        list.setCurrentRow(i);
        panel().addChosen();
    }
    EXPECT_EQ(number("size(`ls -type orvosky_ParticleCloud`)"), 4);
    EXPECT_EQ(text("ls -sl"), "cloud4");
    editor().run("delete cloud1 cloud2; select -cl;");
    ASSERT_TRUE(panel().saveClouds(file));
    for (const char* line : {"opacity = \"0.250000\"", "spriteDensity = \"7000.000000\"", "enableGroundFade = \"1\""})
        EXPECT_THAT(content(folder_ / "build/own.xml"), HasSubstr(line));
    const auto before = axes(library), after = axes(content(folder_ / "build/own.xml"));
    ASSERT_EQ(before.size(), 27u);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) EXPECT_NEAR(after[i], before[i], 2e-10) << i;
    EXPECT_THAT(panel().findChild<QLabel*>("cloudCosts")->text().toStdString(), HasSubstr("of at most 4000 sprites"));
    EXPECT_THAT(errors_, testing::IsEmpty());
    write(folder_ / "build/broken.xml", "<OrvoAtmosphere type=\"Modeler_ParticleCloudLibrary\"><ParticleCloud><x");
    panel().showLibrary(QString::fromStdString((folder_ / "build/broken.xml").string()));
    EXPECT_EQ(number("catchQuiet(`orvoskyLoadCloud \"build/none.xml\" 1`)"), 1);
}

// Faults: a dome that does not say what it is made of, or takes another library.
TEST_F(Clouds, DomesTakeLibraries) {
    fs::create_directories(folder_ / "build/clouds");
    fs::copy(orvo::test::sourceTree("examples/project/build/clouds/cumulus.xml"), folder_ / "build/clouds");
    open();
    editor().run("orvoskyCloudShading; createNode transform -n dome1 -p `orvoskySkyRoot`; "
                 "createNode orvosky_ParticleCloudDome -n dome1Shape -p dome1; "
                 "setAttr dome1Shape.domeOuterRadius 1500; select -r dome1;");
    auto& list = *panel().findChild<QListWidget*>();
    EXPECT_EQ(list.count(), 6) << "the one library of the project";
    panel().useInDome();
    EXPECT_EQ(text("getAttr dome1Shape.cloudDataDir"), "build\\clouds\\cumulus.xml");
    panel().showLibrary("nowhere.xml");
    EXPECT_EQ(list.count(), 0);
    editor().run("select -cl;");
    editor().run("select -r dome1;");
    EXPECT_EQ(list.count(), 6) << "its templates, as soon as it is selected";
}

// Faults: planes at another height than the fog's, a bar that cannot be grasped, a drag of several steps or beyond
// limits.
TEST_F(Clouds, HeightsAreDraggedAsPlanes) {
    open();
    editor().run(
        "setAttr persp.t 0 4000 0; setAttr persp.r 0 0 0; setAttr fogShape.fogHeightOffset 10; select -r fog;");
    settle();
    ViewWidget& view = window().view();
    const std::string top = "|OrvoSkyData|fog|fogShape.fogHeight", base = "|OrvoSkyData|fog|fogShape.fogHeightOffset";
    const auto at = window().heights().grip(top), below = window().heights().grip(base);
    ASSERT_TRUE(at);
    ASSERT_TRUE(below);
    // The eye is at 40 m, the fog's top at 50 m, its base at 10 m: shown 3.5 times 30 m away.
    const double focal = 4000 / view.pixelSize(MPoint(0, 4000, -4000)); // pixels of a slope of 1
    EXPECT_NEAR(at->y(), view.height() / 2.0 - focal * 10 / 105, 1);
    EXPECT_NEAR(below->y(), view.height() / 2.0 + focal * 30 / 105, 1);
    const auto pull = [&](QPoint from, QPoint to, bool release) {
        QTest::mousePress(&view, Qt::LeftButton, {}, from);
        for (int i = 1; i <= 3; ++i) {
            const QPointF p = QPointF(from + (to - from) * i / 3);
            QMouseEvent move(QEvent::MouseMove, p, view.mapToGlobal(p), Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(&view, &move);
        }
        if (release)
            QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
        else
            QTest::keyClick(&view, Qt::Key_Escape);
    };
    const std::size_t steps = Editor::scene().undo.undoNames().size();
    pull(at->toPoint(), at->toPoint() - QPoint(0, 60), true);
    const double moved = number("getAttr fogShape.fogHeight");
    EXPECT_NEAR(moved, 40 + 60 / focal * 105, 0.3) << "as far as the hand";
    EXPECT_EQ(Editor::scene().undo.undoNames().size(), steps + 1);
    editor().run("undo;");
    const auto again = window().heights().grip(top)->toPoint();
    pull(again, again + QPoint(0, 320), true);
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 1) << "its minimum";
    editor().run("undo;");
    pull(again, again - QPoint(0, 60), false);
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 40) << "given up";
    QTest::mouseRelease(&view, Qt::LeftButton, {}, again);
}

// Faults: a file that is gone and nobody told, a mark that stays when it is back.
TEST_F(Clouds, MissingFilesAreMarkedInTheOutliner) {
    open();
    editor().run("orvoskyCreate orvosky_GradientSkyLocator \"painted\"; setAttr -type \"string\" "
                 "painted1Shape.gradientTexture \"build\\\\gone.png\";");
    auto& model = *window().outliner().findChild<OutlinerModel*>();
    const auto row = [&](const char* name) { return model.indexOf(*Editor::scene().findNode(name)->dag()); };
    EXPECT_EQ(row("painted1").data(OutlinerModel::MissingFile).toString(), "build\\gone.png");
    EXPECT_THAT(row("painted1").data(Qt::ToolTipRole).toString().toStdString(), HasSubstr("gone.png is missing"));
    EXPECT_EQ(row("sky").data(OutlinerModel::MissingFile).toString(), "");
    fs::create_directories(folder_ / "build");
    write(folder_ / "build/Gone.PNG", "here");
    EXPECT_EQ(row("painted1").data(OutlinerModel::MissingFile).toString(), "") << "whatever its letters' case";
}

} // namespace
} // namespace orvosky::window
