// A first sky, from the start page to the exported files, by hand alone.
#include "WindowFixture.h"

#include "AttributePage.h"
#include "AttributePanel.h"
#include "ExportDialog.h"
#include "NumberField.h"
#include "ScriptPanel.h"
#include "StartPage.h"

#include "commands/Host.h"
#include "scene/Scene.h"

#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QTimer>
#include <QToolButton>

namespace orvosky::window {
namespace {

class Story : public Window {
protected:
    /// Real input: what xdotool does, while the window works.
    void hand(const QStringList& words) {
        QProcess tool;
        tool.start("xdotool", words);
        while (tool.state() != QProcess::NotRunning) settle(10);
        ASSERT_EQ(tool.exitCode(), 0) << words.join(' ').toStdString();
        settle(100);
    }
    static QStringList to(QPoint at) {
        return {"mousemove", QString::number(at.x()), QString::number(at.y()), "sleep", "0.05"};
    }
    void click(const QWidget& widget, QPoint at) { hand(to(widget.mapToGlobal(at)) + QStringList{"click", "1"}); }
    void key(const QString& key) { hand({"key", key}); }
    void choose(const QString& menu, const QString& item) {
        const QMenuBar& bar = *window().menuBar();
        for (QAction* top : bar.actions())
            if (top->text() == menu)
                for (QAction* action : top->menu()->actions())
                    if (action->text() == item) {
                        click(bar, bar.actionGeometry(top).center());
                        ASSERT_TRUE(until([&] { return top->menu()->isVisible(); }));
                        click(*top->menu(), top->menu()->actionGeometry(action).center());
                        return;
                    }
        ADD_FAILURE() << "no " << item.toStdString() << " in " << menu.toStdString();
    }
    void pull(QPoint from, QPoint by) {
        const QPoint at = window().view().mapToGlobal(from);
        QStringList words = to(at) + QStringList{"mousedown", "1", "sleep", "0.05"};
        for (int i = 1; i <= 4; ++i) words += to(at + by * i / 4);
        hand(words + QStringList{"mouseup", "1"});
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
    auto* dusk = window().startPage()->findChild<QToolButton*>("3_dusk");
    ASSERT_NE(dusk, nullptr);
    click(*dusk, dusk->rect().center());
    ASSERT_TRUE(until([&] { return !window().startPage(); }));
    EXPECT_EQ(window().document().title(), "untitled");
    editor().runAside("setAttr persp.r 12 0 0;"); // the sun in view
    editor().announce();
    const QPoint sun = sunPlace();
    ASSERT_TRUE(window().view().rect().adjusted(90, 60, -90, -60).contains(sun)) << sun.x() << " " << sun.y();
    pull(sun, QPoint(-80, -50));
    EXPECT_LT(QLineF(sunPlace(), sun + QPoint(-80, -50)).length(), 3) << "it is where the hand let it go";

    choose("Sky", "Cloud");
    choose("Sky", "Add Sphere");
    choose("Sky", "Add Sphere");
    EXPECT_EQ(number("size(`ls -type orvosky_ParticleCloudSphere`)"), 3);
    key("r");
    const auto at = numbers("`xform -q -ws -t`");
    const auto middle = window().view().project(MPoint(at[0], at[1], at[2]));
    ASSERT_TRUE(middle);
    const double width = numbers("`getAttr cloud1Sphere3.s`")[0];
    pull(middle->toPoint(), QPoint(60, 0));
    const double wider = numbers("`getAttr cloud1Sphere3.s`")[0];
    EXPECT_GT(wider, width * 1.3);
    key("ctrl+z");
    EXPECT_EQ(numbers("`getAttr cloud1Sphere3.s`")[0], width);
    key("ctrl+z");
    EXPECT_EQ(number("size(`ls -type orvosky_ParticleCloudSphere`)"), 2) << "a menu's entry is a step";
    key("shift+z");
    EXPECT_EQ(number("size(`ls -type orvosky_ParticleCloudSphere`)"), 3);
    key("shift+z");
    EXPECT_EQ(numbers("`getAttr cloud1Sphere3.s`")[0], wider);

    // The wind's time is keyed on its page: at the first frame, and by typing another value at a later one.
    editor().run("select -r cloudDome1;");
    settle();
    AttributeControl* time = window().attributes().page()->control("time");
    ASSERT_NE(time, nullptr);
    auto* label = time->findChild<QLabel*>();
    QTimer::singleShot(300, &window(), [] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions())
            if (action->text() == "Set Key") {
                const QPoint at = menu->mapToGlobal(menu->actionGeometry(action).center());
                QProcess::startDetached("xdotool", to(at) + QStringList{"click", "1"});
            }
    });
    emit label->customContextMenuRequested(QPoint(4, 4));
    settle();
    EXPECT_EQ(number("keyframe -q -kc cloudDome1Shape.time"), 1);
    editor().run("currentTime 12;");
    auto* field = time->findChild<NumberField*>();
    click(*field, field->rect().center());
    hand({"key", "ctrl+a", "type", "8"});
    key("Return");
    EXPECT_EQ(number("keyframe -q -kc cloudDome1Shape.time"), 2);

    key("ctrl+e");
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
    pull(centre + QPoint(50, 0), QPoint(100, 20));
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
