// The attribute editor: pages from MEL, edits as MEL, one drag one step.
#include "WindowFixture.h"

#include "AttributePage.h"
#include "AttributePanel.h"
#include "DirectionBall.h"
#include "NumberField.h"
#include "SoftSlider.h"

#include "commands/Host.h"
#include "scene/Scene.h"

#include <QCheckBox>
#include <QClipboard>
#include <QColorDialog>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTimer>

namespace orvosky::window {
namespace {

using testing::HasSubstr;

class Attributes : public Window {
protected:
    AttributeControl& control(const std::string& attribute) {
        AttributePage* page = window().attributes().page();
        AttributeControl* found = page ? page->control(attribute) : nullptr;
        if (!found) throw std::runtime_error("no control for " + attribute);
        return *found;
    }
    static void type(NumberField& field, const char* text) {
        field.setFocus();
        settle();
        field.selectAll();
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, Qt::Key_Return);
    }
};

// Faults: a template that does not run, names an attribute that is not there, or leaves one of the node's out.
TEST_F(Attributes, EverySkyNodeHasItsPage) {
    open("");
    int pages = 0;
    for (const auto* type : Editor::scene().types()) {
        if (type->plugin != "orvosky" || type->ownAttributes().empty()) continue;
        ASSERT_TRUE(host::Host::instance().interpreter().isCallable("AE" + type->name + "Template")) << type->name;
        editor().run("select -r `createNode " + type->name + "`;");
        AttributePage* page = window().attributes().page();
        ASSERT_NE(page, nullptr) << type->name;
        ++pages;
        EXPECT_EQ(page->findChild<QLabel*>("problem"), nullptr) << type->name;
        for (const auto& attribute : type->ownAttributes()) {
            if (!attribute->keyable && !attribute->usedAsFilename) continue;
            if (attribute->type == host::scene::AttributeType::Compound || !attribute->writable ||
                attribute->longName == "dummyInputTrigger")
                continue;
            AttributeControl* made = page->control(attribute->longName);
            ASSERT_NE(made, nullptr) << type->name << "." << attribute->longName;
            EXPECT_GT(made->toolTip().count('\n'), 0)
                << type->name << "." << attribute->longName << " says nothing of itself";
        }
    }
    EXPECT_EQ(pages, 14);
    EXPECT_THAT(errors_, testing::IsEmpty());
}

// Faults: a drag of many steps, one that leaves a trace when it is taken back, limits that are not held.
TEST_F(Attributes, ADragIsOneStep) {
    open();
    const std::string before = saved();
    editor().run("select -r fog;");
    auto& slider = *control("fogHeight").findChild<SoftSlider*>();
    const auto y = slider.height() / 2;
    QTest::mousePress(&slider, Qt::LeftButton, {}, {slider.width() / 4, y});
    for (int x = slider.width() / 4; x < slider.width(); x += 7) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, y), slider.mapToGlobal(QPointF(x, y)), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(&slider, &move);
    }
    EXPECT_GT(number("getAttr fogShape.fogHeight"), 100) << "it is seen while it is dragged";
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, {slider.width() - 2, y});
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 200) << "the soft maximum";
    EXPECT_EQ(echoed().back(), "setAttr \"fogShape.fogHeight\" 200;");
    auto& field = *control("fogHeight").findChild<NumberField*>();
    type(field, "*=3");
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 600) << "beyond the soft maximum by typing";
    type(field, "-50/2");
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 1) << "held at the hard minimum";
    type(field, "nonsense");
    EXPECT_EQ(field.text(), "1");
    for (int i = 0; i < 4; ++i) editor().run("undo;"); // typing twice, the drag, the selection
    EXPECT_EQ(saved(), before);
}

// Faults: a number whose sign or first digits lie outside of its field, a whole number that is rounded.
TEST_F(Attributes, NumbersFitTheirFields) {
    open();
    NumberField field(editor());
    field.resize(120, 24);
    field.setValue(-0.740512);
    EXPECT_EQ(field.text(), "-0.7405");
    field.resize(56, 24);
    field.setValue(-0.740512);
    EXPECT_TRUE(field.text() == "-0.74" || field.text() == "-0.741") << field.text().toStdString();
    field.setValue(12345678);
    EXPECT_EQ(field.text(), "12345678");
    EXPECT_EQ(field.value(), 12345678);
}

// Faults: controls that show what was there before, marks that are missing, menus of dimmed fields.
TEST_F(Attributes, ShowsWhatTheSceneHolds) {
    open();
    editor().run("select -r sky;");
    editor().run("setAttr skyShape.sunDir 0 1 0;");
    EXPECT_EQ(control("sunDir").findChildren<NumberField*>()[0]->text(), "90") << "elevation";
    auto& fields = control("sunDir");
    type(*fields.findChildren<NumberField*>()[0], "30");
    EXPECT_NEAR(number("float $d[] = `getAttr skyShape.sunDir`; float $y = $d[1]"), 0.5, 1e-12);
    editor().run("setAttr -lock 1 skyShape.sunIntensity; connectAttr fogShape.fogAlpha skyShape.sunDiskWeight;");
    EXPECT_FALSE(control("sunIntensity").findChild<NumberField*>()->isEnabled());
    EXPECT_FALSE(control("sunDiskWeight").findChild<NumberField*>()->isEnabled());
    EXPECT_THAT(control("sunDiskWeight").toolTip().toStdString(), HasSubstr("fogShape.fogAlpha"));
    editor().run("setKeyframe skyShape.horizonOffset;");
    EXPECT_TRUE(control("horizonOffset").findChild<NumberField*>()->isEnabled()) << "keys may be moved by hand";
    editor().run("select -r fog; setAttr fogShape.getColourFromSceneFog 1;");
    EXPECT_FALSE(control("fogColour").findChild<NumberField*>()->isEnabled()) << "dimmed by its page";
    auto& enable = *control("Enable").findChild<QCheckBox*>();
    QTest::mouseClick(&enable, Qt::LeftButton, {}, QPoint(8, enable.height() / 2));
    EXPECT_EQ(number("getAttr fogShape.Enable"), 0);
    editor().run("delete fog;");
    EXPECT_EQ(window().attributes().page(), nullptr);
}

// Faults: a colour that is brighter than the dialog knows and lost by it, one that is another by its last digits,
// digits that single precision does not have, the half of a copied text as a value.
TEST_F(Attributes, KeepWhatIsNotChanged) {
    open();
    editor().run("select -r fog; setAttr fogShape.fogColour 2 0.45 0.35;");
    const auto colour = [&] {
        return text("float $c[] = `getAttr fogShape.fogColour`; $c[0] + \" \" + $c[1] + \" \" + $c[2]");
    };
    const std::size_t steps = Editor::scene().undo.undoNames().size();
    const auto pick = [&](QColor chosen) {
        QTest::mouseClick(control("fogColour").findChild<QPushButton*>("swatch"), Qt::LeftButton);
        auto* dialog = window().findChild<QColorDialog*>();
        ASSERT_TRUE(dialog);
        dialog->setCurrentColor(Qt::green);
        dialog->setCurrentColor(chosen.isValid() ? chosen : QColor(255, 57, 45)); // 1 0.225 0.175: as it was
        dialog->accept();
        settle();
    };
    pick({});
    EXPECT_EQ(colour(), "2 0.4499999881 0.349999994") << "0.45 and 0.35 in single precision";
    EXPECT_EQ(Editor::scene().undo.undoNames().size(), steps);
    pick(Qt::white);
    EXPECT_EQ(colour(), "2 2 2") << "as bright as it was";
    editor().run("undo;");
    type(*control("fogColour").findChildren<NumberField*>()[2], "0.3");
    EXPECT_EQ(echoed().back(), "setAttr \"fogShape.fogColour\" 2 0.45 0.3;");
    const auto paste = [&](const char* copied) {
        QApplication::clipboard()->setText(copied);
        QTimer::singleShot(100, [] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            for (QAction* action : menu ? menu->actions() : QList<QAction*>())
                if (action->text() == "Paste Value") action->trigger();
            if (menu) menu->close();
        });
        auto& label = *control("fogColour").findChild<QLabel*>();
        emit label.customContextMenuRequested(QPoint(2, 2));
        settle();
    };
    paste("x 0.5 0.25");
    EXPECT_EQ(colour(), "2 0.4499999881 0.3000000119");
    paste(" 1 0.5  0.25\n");
    EXPECT_EQ(colour(), "1 0.5 0.25");
}

// Faults: a page that stays empty, or an editor that ends, when a template is wrong; a plain page without attributes.
TEST_F(Attributes, AWrongTemplateShowsItsMessageAndThePlainPage) {
    open();
    editor().run("createNode directionalLight -n lamp;");
    EXPECT_NE(window().attributes().page()->control("intensity"), nullptr) << "a type without a template";
    editor().runTyped("global proc AEpointLightTemplate(string $n) { editorTemplate -addControl \"noSuch\"; }", "t");
    editor().run("createNode pointLight -n bulb;");
    auto* problem = window().attributes().page()->findChild<QLabel*>("problem");
    ASSERT_NE(problem, nullptr);
    EXPECT_THAT(problem->text().toStdString(), HasSubstr("no attribute named noSuch"));
    EXPECT_NE(window().attributes().page()->control("intensity"), nullptr);
}

TEST(DirectionTest, AnglesAndVectorsAgree) {
    EXPECT_EQ(anglesOf(MVector(1, 0, 0)).first, 90);
    EXPECT_EQ(anglesOf(MVector(0, 0, 1)).first, 180);
    EXPECT_NEAR(anglesOf(MVector(0, 2, -2)).second, 45, 1e-12);
    EXPECT_NEAR(direction(270, 0).x, -1, 1e-12);
}

} // namespace
} // namespace orvosky::window
