// A first sky, from the start page to the exported files, by hand alone.
#include "WindowFixture.h"

#include "ExportDialog.h"
#include "ScriptPanel.h"
#include "StartPage.h"

#include "commands/Host.h"
#include "scene/Scene.h"

#include <QListWidget>
#include <QMenuBar>
#include <QToolButton>

namespace orvosky::window {
namespace {

class Story : public Window {
protected:
    void choose(const QString& menu, const QString& item) {
        for (QAction* top : window().menuBar()->actions())
            if (top->text() == menu)
                for (QAction* action : top->menu()->actions())
                    if (action->text() == item) {
                        action->trigger();
                        settle();
                        return;
                    }
        ADD_FAILURE() << "no " << item.toStdString() << " in " << menu.toStdString();
    }
    void pull(QPoint from, QPoint to) {
        ViewWidget& view = window().view();
        const auto move = [&](QPoint at, Qt::MouseButtons buttons) {
            QMouseEvent event(QEvent::MouseMove, QPointF(at), view.mapToGlobal(QPointF(at)), Qt::NoButton, buttons, {});
            QApplication::sendEvent(&view, &event);
        };
        move(from, Qt::NoButton);
        QTest::mousePress(&view, Qt::LeftButton, {}, from);
        for (int i = 1; i <= 4; ++i) move(from + (to - from) * i / 4, Qt::LeftButton);
        QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
        settle();
    }
    std::vector<double> numbers(const std::string& query) {
        return editor().ask("float $orvoskyTest[] = " + query).toFloatArray();
    }
    QPoint sunPlace() {
        const auto d = numbers("`getAttr sky1Shape.sunDir`");
        ViewWidget& view = window().view();
        return view.project(view.eye() + MVector(d.at(0), d.at(1), d.at(2)).normal() * 1e7)->toPoint();
    }
};

// Faults: anything on the way that a hand does and the recorded script does not, steps that undo too much or too
// little.
TEST_F(Story, AFirstSkyByHandIsThatOfItsScript) {
    open("");
    ASSERT_NE(window().startPage(), nullptr);
    auto* noon = window().startPage()->findChild<QToolButton*>("1_clear_noon");
    ASSERT_NE(noon, nullptr);
    QTest::mouseClick(noon, Qt::LeftButton);
    settle(300);
    EXPECT_EQ(window().startPage(), nullptr);
    EXPECT_EQ(window().document().title(), "untitled");

    const QPoint sun = sunPlace();
    const auto before = numbers("`getAttr sky1Shape.sunDir`");
    pull(sun, sun + QPoint(-80, 50));
    const auto after = numbers("`getAttr sky1Shape.sunDir`");
    EXPECT_LT(after[1], before[1]) << "it went down";
    EXPECT_LT(QLineF(sunPlace(), sun + QPoint(-80, 50)).length(), 3) << "it is where the hand let it go";

    choose("Sky", "Cloud");
    choose("Sky", "Add Sphere");
    choose("Sky", "Add Sphere");
    EXPECT_EQ(number("size(`ls -type orvosky_ParticleCloudSphere`)"), 3);
    editor().run("undo;");
    editor().run("undo;");
    EXPECT_EQ(number("size(`ls -type orvosky_ParticleCloudSphere`)"), 1) << "a menu's entry is a step";
    editor().run("redo;");
    EXPECT_EQ(number("size(`ls -type orvosky_ParticleCloudSphere`)"), 2);

    // Scale the sphere by its middle handle.
    QTest::keyClick(&window(), Qt::Key_R);
    const auto at = numbers("`xform -q -ws -t`");
    const auto middle = window().view().project(MPoint(at[0], at[1], at[2]));
    ASSERT_TRUE(middle);
    const double width = numbers("`getAttr cloud1Sphere2.s`")[0];
    pull(middle->toPoint(), middle->toPoint() + QPoint(60, 0));
    EXPECT_GT(numbers("`getAttr cloud1Sphere2.s`")[0], width * 1.3);

    ExportDialog& dialog = window().showExport();
    dialog.setTarget(QString::fromStdString((folder_ / "hand.atmos").string()));
    dialog.exportNow();
    ASSERT_TRUE(fs::exists(folder_ / "hand.atmos"))
        << (dialog.findChild<QListWidget*>()->count() ? dialog.findChild<QListWidget*>()->item(0)->text().toStdString()
                                                      : "");
    const std::string atmos = content(folder_ / "hand.atmos"), data = content(folder_ / "hand.cdata");
    EXPECT_GT(data.size(), 1000u) << "a cloud of sprites";
    fs::remove(folder_ / "hand.atmos");
    fs::remove(folder_ / "hand.cdata");
    write(folder_ / "session.mel", window().scripts().script().toStdString());
    std::string said;
    ASSERT_EQ(runProgram(folder_, {"--project", ".", "run", "session.mel"}, &said), 0)
        << said << window().scripts().script().toStdString();
    EXPECT_EQ(content(folder_ / "hand.atmos"), atmos);
    EXPECT_EQ(content(folder_ / "hand.cdata"), data);
    EXPECT_THAT(errors_, testing::IsEmpty());
}

// Faults: a pick of what lies behind, a selection that a click into the sky leaves.
TEST_F(Story, PicksWhatIsClicked) {
    open();
    editor().run("polyCube -w 1000 -h 1000 -d 1000 -n far; move 0 0 -9000 far; polyCube -w 500 -h 500 -d 500 -n near; "
                 "move 0 0 -4000 near; setAttr persp.t 0 0 0; setAttr persp.r 0 0 0;");
    ViewWidget& view = window().view();
    QTest::mouseClick(&view, Qt::LeftButton, {}, view.rect().center());
    EXPECT_EQ(text("ls -sl"), "near");
    editor().run("hide near;");
    QTest::mouseClick(&view, Qt::LeftButton, {}, view.rect().center());
    EXPECT_EQ(text("ls -sl"), "far");
    QTest::mouseClick(&view, Qt::LeftButton, {}, {5, 5});
    EXPECT_TRUE(Editor::scene().selection().empty());
}

// A distance on the screen is that on the axis; the camera looks along -Z, so that the handle's X is to the right.
TEST_F(Story, HandlesMoveAlongTheirAxis) {
    open();
    editor().run(
        "polyCube -w 100 -h 100 -d 100 -n box; move 0 0 -4000 box; setAttr persp.t 0 0 0; setAttr persp.r 0 0 0;");
    QTest::keyClick(&window(), Qt::Key_W);
    ViewWidget& view = window().view();
    const QPoint centre = view.project(MPoint(0, 0, -4000))->toPoint();
    pull(centre + QPoint(50, 0), centre + QPoint(150, 20));
    const auto t = numbers("`getAttr box.t`");
    EXPECT_NEAR(t[0], 100 * view.pixelSize(MPoint(0, 0, -4000)), 12);
    EXPECT_EQ(t[1], 0);
    EXPECT_EQ(t[2], -4000);
    editor().run("undo;");
    EXPECT_EQ(numbers("`getAttr box.t`")[0], 0) << "one drag, one step";
}

// Faults: a menu that scripts cannot make, an entry that does nothing, what they made that stays after them.
TEST_F(Story, ScriptsMakeMenusAndShelves) {
    open();
    editor().run("menu -label \"Own\" -parent $gMainWindow ownMenu; menuItem -label \"Turn\" -command \"setAttr "
                 "fogShape.fogHeight 5\" -parent ownMenu turn;");
    choose("Own", "Turn");
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 5);
    EXPECT_EQ(echoed().back(), "setAttr fogShape.fogHeight 5;");
    EXPECT_EQ(number("menu -exists ownMenu"), 1);
    editor().run("deleteUI -menu ownMenu; orvoskyShutdown;");
    EXPECT_EQ(number("menu -exists ownMenu"), 0);
    EXPECT_EQ(number("menu -exists orvoskyMenu"), 0);
    EXPECT_THAT(errors_, testing::IsEmpty());
}

} // namespace
} // namespace orvosky::window
