// The view: what it draws, when, and how the hand moves its camera.
#include "WindowFixture.h"

#include "CameraMoves.h"
#include "ScriptPanel.h"
#include "StartPage.h"

#include "base/Messages.h"
#include "viewport/Picture.h"

#include <QDockWidget>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>

#include <cmath>
#include <numbers>
#include <utility>

namespace orvosky::window {
namespace {

// Faults: another draw loop, size, projection or order of bringing up to date than that of the headless pictures;
// sprites that stay in the order for where the eye was before it moved.
TEST_F(Window, ShowsAtRestWhatIsRendered) {
    for (const std::string& scene :
         {std::string(skyScene), content(orvo::test::sourceTree("examples/project/scenes/dusk.ma"))}) {
        if (scene != skyScene) {
            fs::copy(orvo::test::sourceTree("examples/project/build"), folder_ / "build", fs::copy_options::recursive);
        }
        open(scene);
        settle();
        (void)window().view().picture();
        editor().run("setAttr persp.tx 700;");
        const QImage shown = window().view().picture();
        window().view().repaint();
        const QImage grabbed = window().view().grabFramebuffer().convertToFormat(QImage::Format_RGB888);
        const std::string size = std::to_string(shown.width()) + "x" + std::to_string(shown.height());
        std::string said;
        ASSERT_EQ(runProgram(folder_,
                             {"--project", ".", "render", "scenes/opened.ma", "out.png", "--helpers", "--size", size,
                              "--set", "persp.tx=700"},
                             &said),
                  0)
            << said;
        const auto rendered = host::viewport::Picture::read((folder_ / "out.png").string());
        ASSERT_TRUE(rendered);
        const QImage expected(rendered->pixels.data(), rendered->width, rendered->height,
                              static_cast<qsizetype>(rendered->rowBytes()), QImage::Format_RGB888);
        EXPECT_EQ(shown, expected);
        EXPECT_EQ(grabbed, expected) << "what is on the screen";
        close();
    }
}

TEST_F(Window, DrawsOnlyWhenSomethingChanges) {
    open();
    int before = 0;
    ASSERT_TRUE(until([&] {
        const int last = std::exchange(before, window().view().frames());
        settle(400);
        return last == before && before > 0;
    })) << "it comes to rest";
    window().view().update(); // what covers and uncovers a window asks for
    settle(500);
    EXPECT_EQ(window().view().frames(), before);
    editor().run("setAttr skyShape.zenithColour 1 0 0;");
    EXPECT_TRUE(until([&] { return window().view().frames() > before; }));
    settle(200);
    EXPECT_EQ(window().view().frames(), before + 1);
}

// Faults: buttons and modifiers that do something else, a point of interest that does not stay, an undo step or an
// unsaved scene from looking around.
TEST_F(Window, MovesTheCameraByHand) {
    open();
    ViewWidget& view = window().view();
    const QPoint middle = view.rect().center();
    const auto pull = [&](Qt::MouseButton button, Qt::KeyboardModifiers keys, QPoint by) {
        const CameraPose before = *view.pose();
        QTest::mousePress(&view, button, keys, middle);
        QMouseEvent move(QEvent::MouseMove, QPointF(middle + by), view.mapToGlobal(QPointF(middle + by)), Qt::NoButton,
                         button, keys);
        QApplication::sendEvent(&view, &move);
        QTest::mouseRelease(&view, button, keys, middle + by);
        return std::pair(before, *view.pose());
    };
    const auto apart = [](const MPoint& a, const MPoint& b) { return a.distanceTo(b); };
    {
        const auto [a, b] = pull(Qt::LeftButton, Qt::AltModifier, {90, 0});
        EXPECT_LT(apart(a.interest(), b.interest()), 1e-6);
        EXPECT_GT(apart(a.eye, b.eye), 1);
        EXPECT_NEAR(std::abs(std::remainder(b.azimuth - a.azimuth, 2 * std::numbers::pi)), std::numbers::pi / 10, 1e-9);
    }
    {
        const auto [a, b] = pull(Qt::MiddleButton, Qt::NoModifier, {0, -30});
        EXPECT_LT(apart(a.eye, b.eye), 1e-9);
        EXPECT_NE(a.elevation, b.elevation);
    }
    for (const auto keys : {Qt::KeyboardModifiers(Qt::ShiftModifier), Qt::KeyboardModifiers(Qt::AltModifier)}) {
        const auto [a, b] = pull(Qt::MiddleButton, keys, {40, 0});
        EXPECT_NEAR(b.azimuth, a.azimuth, 1e-9);
        EXPECT_GT((a.eye - b.eye) * a.right(), 0.1) << "the picture goes with the hand";
    }
    {
        const auto [a, b] = pull(Qt::RightButton, Qt::AltModifier, {100, 0});
        EXPECT_LT(b.distance, a.distance);
        EXPECT_LT(apart(a.interest(), b.interest()), 1e-6);
    }
    editor().run("polyCube -w 100 -h 100 -d 100 -n box; move 5000 0 0 box;");
    QTest::keyClick(&window(), Qt::Key_F);
    EXPECT_LT(apart(view.pose()->interest(), MPoint(5000, 0, 0)), 1);
    EXPECT_EQ(number("undoInfo -q -undoQueueEmpty"), 0);
    editor().run("undo;");
    editor().run("undo;");
    EXPECT_EQ(text("undoInfo -q -undoQueueEmpty"), "1") << "looking around is no edit";
}

// Faults: a window that is larger than its screen, or a small one whose pictures are cut off, whose line of
// frames is too short to be dragged, or whose view has no room beside the script editor; messages behind the start
// page.
TEST_F(Window, HasRoomOnASmallScreen) {
    open("");
    const QSize screen = window().screen()->availableSize();
    ASSERT_LT(screen.width(), 1360) << "what it would be on a larger one";
    EXPECT_LE(window().width(), screen.width());
    EXPECT_LE(window().height(), screen.height());
    window().resize(960, 540); // a screen of 1920 x 1080 where all is twice as large
    settle();
    StartPage& page = *window().startPage();
    for (auto* preset : page.findChildren<QToolButton*>()) {
        const QRect at(preset->mapTo(&page, QPoint(0, 0)), preset->size());
        EXPECT_TRUE(page.rect().contains(at)) << preset->objectName().toStdString();
    }
    host::showWarning("A warning.");
    EXPECT_TRUE(page.findChild<QLabel*>("said")->isVisible());
    QTest::mouseClick(page.findChild<QPushButton*>("empty"), Qt::LeftButton);
    settle(100);
    EXPECT_EQ(window().size(), QSize(960, 540));
    EXPECT_GE(window().findChild<QWidget*>("timeLine")->width(), 60);
    for (const char* dock : {"scriptsDock", "sunDock", "cloudsDock"}) window().findChild<QDockWidget*>(dock)->show();
    settle(100);
    EXPECT_EQ(window().size(), QSize(960, 540));
    EXPECT_GT(window().view().height(), window().scripts().height());
}

// Hand computation: level views of a camera 10 away from the origin.
TEST(CameraMovesTest, GoAroundTurnAndFrame) {
    CameraPose pose{.eye = MPoint(0, 0, 10), .azimuth = 0, .elevation = 0, .distance = 10};
    const double right = std::numbers::pi / 2;
    const CameraPose round = tumbled(pose, right, 0);
    EXPECT_LT(round.eye.distanceTo(MPoint(-10, 0, 0)), 1e-9);
    EXPECT_LT(turned(pose, right, 0).interest().distanceTo(MPoint(10, 0, 10)), 1e-9);
    EXPECT_LT(dollied(pose, 0.5).eye.distanceTo(MPoint(0, 0, 5)), 1e-9);
    EXPECT_LT(tracked(pose, 0.5, 0.25, 4).eye.distanceTo(MPoint(2, 1, 10)), 1e-9);
    // A sphere of radius 5 fills an angle of 60 degrees from a distance of 10.
    EXPECT_NEAR(framed(pose, MPoint(7, 0, 0), 5, std::numbers::pi / 3).distance, 10, 1e-9);
    EXPECT_LT(std::abs(tumbled(pose, 0, 10).elevation), right) << "never over the top";
}

} // namespace
} // namespace orvosky::window
