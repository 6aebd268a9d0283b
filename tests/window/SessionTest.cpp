// What surrounds the work: undo, the script editor, time, files, export.
#include "WindowFixture.h"

#include "AttributePage.h"
#include "AttributePanel.h"
#include "ExportDialog.h"
#include "HistoryPanel.h"
#include "NumberField.h"
#include "ScriptPanel.h"
#include "TimeBar.h"

#include "scene/Scene.h"
#include "viewport/Picture.h"

#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvosky::window {
namespace {

using testing::HasSubstr;

// Faults: steps of another size than actions, a click that goes to another place, names that say nothing.
TEST_F(Window, HistoryGoesToAnyStep) {
    open();
    const std::string before = saved();
    auto& history = *window().findChild<HistoryPanel*>();
    history.parentWidget()->show();
    editor().run("{ setAttr skyShape.sunIntensity 2; setAttr skyShape.sunDiskSize 0.5; }");
    editor().run("setAttr fogShape.fogHeight 7;");
    editor().run("delete fog;");
    ASSERT_EQ(history.count(), 4);
    EXPECT_EQ(history.item(2)->text(), "setAttr fogShape.fogHeight 7;");
    emit history.itemClicked(history.item(1));
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 40);
    EXPECT_EQ(number("getAttr skyShape.sunDiskSize"), 0.5);
    emit history.itemClicked(history.item(3));
    EXPECT_EQ(number("objExists fog"), 0);
    emit history.itemClicked(history.item(0));
    EXPECT_EQ(saved(), before);
}

// Faults: a session's script that lacks an action, holds one that failed, or depends on what was open before.
TEST_F(Window, TheSessionsScriptDoesTheSameAgain) {
    open();
    editor().run("setAttr skyShape.zenithColour 0.2 0.1 0.5;");
    editor().run("setAttr noSuch.attribute 1;");
    editor().run("duplicate fog;");
    editor().run("undo;");
    auto& scripts = window().scripts();
    scripts.input().setPlainText("string $n = `createNode transform -n made -p OrvoSkyData`;\nreorder -front $n;\n");
    scripts.runInput();
    const std::string after = saved();
    write(folder_ / "session.mel", scripts.script().toStdString() + "file -f -exportAll \"again/compared.ma\";");
    fs::create_directory(folder_ / "again");
    std::string said;
    ASSERT_EQ(runProgram(folder_, {"--project", ".", "run", "session.mel"}, &said), 0) << said;
    EXPECT_EQ(content(folder_ / "again/compared.ma"), after);
    scripts.input().setPlainText("int $a = 1;\n$b = noSuchProcedure($a);\n");
    scripts.runInput();
    EXPECT_THAT(errors_.back(), HasSubstr("typed line 2"));
}

// Faults: words that are not there, or of another kind than what is written, a crash when an empty clipboard is pasted,
// a click on an error that leads nowhere.
TEST_F(Window, WordsAreCompletedAndErrorsLeadToTheirLine) {
    open();
    const auto offered = [&](const QString& text) {
        return completions(editor(), text, static_cast<int>(text.size()));
    };
    EXPECT_THAT(offered("setKeyf"), testing::Contains("setKeyframe"));
    EXPECT_THAT(offered("orvoskyCreateC"), testing::ElementsAre("orvoskyCreateCloud"));
    EXPECT_THAT(offered("select -r fogS"), testing::ElementsAre("fogShape"));
    EXPECT_THAT(offered("createNode orvosky_Part"), testing::Contains("orvosky_ParticleCloudDome"));
    EXPECT_THAT(offered("getAttr fogShape.fogHeightO"), testing::ElementsAre("fogShape.fogHeightOffset"));
    EXPECT_THAT(offered("int $a = 1; setKeyframe -inT"), testing::ElementsAre("-inTangentType"));
    EXPECT_THAT(offered("$fog"), testing::IsEmpty()) << "a variable";
    auto& scripts = window().scripts();
    scripts.parentWidget()->show();
    scripts.input().setFocus();
    settle();
    QTest::keyClicks(&scripts.input(), "getAttr fogShape.fogHeightO");
    QTest::keyClick(&scripts.input(), Qt::Key_Space, Qt::ControlModifier);
    ASSERT_TRUE(until([] { return QApplication::activePopupWidget() != nullptr; }));
    EXPECT_GT(window().view().height(), scripts.height()) << "the sky keeps its room";
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
    EXPECT_EQ(scripts.input().toPlainText(), "getAttr fogShape.fogHeightOffset");
    QGuiApplication::clipboard()->clear();
    QTest::keyClick(&scripts.input(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(scripts.input().toPlainText(), "getAttr fogShape.fogHeightOffset") << "nothing was pasted";
    write(folder_ / "wrong.mel", "int $a = 1;\n$b = noSuchProcedure($a);\n");
    scripts.input().setPlainText(QString("int $x;\nsource \"%1\";").arg(folder_.c_str() + QString("/wrong.mel")));
    scripts.runInput();
    scripts.goTo("// Error: " + QString::fromStdString(errors_.back()));
    auto* shown = window().findChild<QPlainTextEdit*>("scriptFile");
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->textCursor().selectedText(), "$b = noSuchProcedure($a);");
}

// Faults: time that is an edit while it is dragged, keys that are not shown or not set, a play that runs out of the
// range, marks of frames that never end.
TEST_F(Window, TimeIsDraggedPlayedAndKeyed) {
    open();
    editor().run("playbackOptions -min 1 -max 40;");
    auto& line = *window().time().findChild<TimeLine*>();
    const auto x = [&](double frame) { return static_cast<int>(8 + (frame - 1) / 39 * (line.width() - 16)); };
    editor().run("select -r fogShape;");
    editor().run("setKeyframe -at fogHeight fogShape;");
    QTest::mouseClick(&line, Qt::LeftButton, {}, {x(20), 10});
    EXPECT_EQ(number("currentTime -q"), 20);
    AttributeControl* height = window().attributes().page()->control("fogHeight");
    auto& field = *height->findChild<NumberField*>();
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, "80");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(number("keyframe -q -kc fogShape.fogHeight"), 2) << "what has keys gets one where it is changed";
    editor().run("currentTime 30;");
    window().time().setKey();
    EXPECT_EQ(number("keyframe -q -kc fogShape.fogHeight"), 3);
    QTest::mouseClick(&line, Qt::LeftButton, {}, {x(10.5), 10});
    EXPECT_GT(number("getAttr fogShape.fogHeight"), 41);
    EXPECT_LT(number("getAttr fogShape.fogHeight"), 79);
    window().time().play(true);
    EXPECT_TRUE(until([&] { return number("currentTime -q") != 11; }));
    settle(400);
    window().time().play(false);
    EXPECT_LE(number("currentTime -q"), 40);
    editor().run("playbackOptions -min 1e16 -max 10000000000000004;");
    settle();
    line.grab(); // comes to an end, though a frame more is the same number there
}

// Faults: other bytes than `orvosky export` writes, complaints that lead nowhere, files of a sky that cannot be
// exported.
TEST_F(Window, ExportsAsTheProgramDoes) {
    open();
    editor().run("createNode transform -n painted -p OrvoSkyData; createNode orvosky_GradientSkyLocator -n "
                 "paintedShape -p painted; setAttr -type \"string\" paintedShape.gradientTexture \"build/none.png\";");
    ExportDialog& dialog = window().showExport();
    auto& list = *dialog.findChild<QListWidget*>();
    ASSERT_GE(list.count(), 1);
    EXPECT_THAT(list.item(0)->text().toStdString(), HasSubstr("none.png"));
    emit list.itemClicked(list.item(0));
    EXPECT_EQ(text("ls -sl"), "paintedShape");
    editor().run("delete painted;");
    dialog.check();
    EXPECT_EQ(list.count(), 0);
    EXPECT_TRUE(std::ranges::any_of(dialog.findChildren<QLabel*>(), [](const QLabel* label) {
        return label->text().contains(", 0 bytes of cloud data");
    })) << "a sky without clouds";
    dialog.setTarget(QString::fromStdString((folder_ / "window.atmos").string()));
    dialog.exportNow();
    ASSERT_TRUE(window().document().save());
    std::string said;
    ASSERT_EQ(runProgram(folder_, {"--project", ".", "export", "scenes/opened.ma", "program.atmos"}, &said), 0) << said;
    EXPECT_EQ(content(folder_ / "window.atmos"), content(folder_ / "program.atmos"));
    EXPECT_EQ(content(folder_ / "window.cdata"), content(folder_ / "program.cdata"));
    editor().run("delete settings;");
    dialog.exportNow();
    EXPECT_GE(list.count(), 1);
    EXPECT_EQ(content(folder_ / "window.atmos"), content(folder_ / "program.atmos")) << "the earlier file stays";
    EXPECT_FALSE(Editor::scene().fileName.empty());
}

TEST_F(Window, SavesWhatTheViewShows) {
    open();
    ASSERT_TRUE(window().savePicture(QString::fromStdString((folder_ / "sky.png").string())));
    const QImage read(QString::fromStdString((folder_ / "sky.png").string()));
    EXPECT_EQ(read.convertToFormat(QImage::Format_RGB888), window().view().picture());
    EXPECT_FALSE(window().savePicture(QString::fromStdString((folder_ / "none/sky.png").string())));
    editor().run("playbackOptions -min 9 -max 11; setKeyframe -v 0 -t 9 persp.rx; "
                 "setKeyframe -v 40 -t 11 persp.rx; currentTime 10;");
    const QImage middle = window().view().picture();
    EXPECT_EQ(window().savePictures(QString::fromStdString((folder_ / "frame.###.png").string())), 3);
    const auto frame = [&](const char* number) {
        return QImage(QString::fromStdString((folder_ / ("frame." + std::string(number) + ".png")).string()))
            .convertToFormat(QImage::Format_RGB888);
    };
    EXPECT_EQ(frame("010"), middle);
    EXPECT_NE(frame("009"), middle);
    EXPECT_NE(frame("011"), frame("009"));
    EXPECT_EQ(number("currentTime -q"), 10) << "the time stays as it was";
}

// Faults: work that is lost by closing, opening or a file that cannot be opened; a question where nothing would be
// lost.
TEST_F(Window, NothingIsLostByOpening) {
    open();
    Document& document = window().document();
    EXPECT_EQ(document.title(), "opened.ma");
    editor().run("setAttr fogShape.fogHeight 99;");
    EXPECT_EQ(document.title(), "opened.ma*");
    write(folder_ / "scenes/other.ma",
          "//Maya ASCII 2010 scene\nrequires maya \"2010\";\ncreateNode transform -n \"o\";\n");
    write(folder_ / "scenes/broken.ma", "//Maya ASCII 2010 scene\ncreateNode transform -n \"t;\nsetAttr {");
    answer("unsaved", "Cancel");
    EXPECT_FALSE(document.open(QString::fromStdString((folder_ / "scenes/other.ma").string())));
    answer("unsaved", "Do Not Save");
    EXPECT_FALSE(document.open(QString::fromStdString((folder_ / "scenes/broken.ma").string())));
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 99) << "the present scene stays";
    EXPECT_EQ(document.title(), "opened.ma*");
    answer("unsaved", "Save");
    EXPECT_TRUE(document.open(QString::fromStdString((folder_ / "scenes/other.ma").string())));
    EXPECT_THAT(content(folder_ / "scenes/opened.ma"), HasSubstr(".fogHeight\" 99"));
    EXPECT_TRUE(document.open(QString::fromStdString((folder_ / "scenes/opened.ma").string()))) << "nobody is asked";
    EXPECT_EQ(document.recent().front().toStdString(), (folder_ / "scenes/opened.ma").string());
    // A disk that takes nothing: the old file stays, and the work is still here.
    editor().run("setAttr fogShape.fogHeight 11;");
    const std::string before = content(folder_ / "scenes/opened.ma");
    fs::remove(folder_ / "scenes/opened.ma");
    fs::create_directory(folder_ / "scenes/opened.ma");
    EXPECT_FALSE(document.save());
    EXPECT_EQ(document.title(), "opened.ma*");
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 11);
}

// Faults: no copy, one that stays after saving, a crash's copy that is not offered or is taken for another's.
TEST_F(Window, WorkOutlivesACrash) {
    open();
    Document& document = window().document();
    const fs::path copies = folder_ / "autosave";
    document.keepCopy();
    EXPECT_FALSE(fs::exists(copies)) << "there is nothing to keep";
    editor().run("setAttr fogShape.fogHeight 77;");
    document.keepCopy();
    ASSERT_EQ(std::distance(fs::directory_iterator(copies), {}), 1);
    const fs::path mine = fs::directory_iterator(copies)->path();
    EXPECT_FALSE(document.recover()) << "its owner lives";
    // As a process that was killed would have left it.
    const pid_t gone = fork();
    if (gone == 0) _exit(0);
    waitpid(gone, nullptr, 0);
    std::string name = mine.filename();
    name.replace(name.find(std::to_string(getpid())), std::to_string(getpid()).size(), std::to_string(gone));
    fs::copy(mine, copies / name);
    ASSERT_TRUE(document.save());
    EXPECT_FALSE(fs::exists(mine)) << "saved work needs no copy";
    editor().run("setAttr fogShape.fogHeight 1;");
    ASSERT_TRUE(document.save());
    close();
    answer("recover", "Recover");
    open("");
    EXPECT_EQ(number("getAttr fogShape.fogHeight"), 77);
    EXPECT_EQ(window().document().title(), "opened.ma*");
    EXPECT_FALSE(fs::exists(copies / name));
    ASSERT_TRUE(window().document().save());
    EXPECT_THAT(content(folder_ / "scenes/opened.ma"), HasSubstr(".fogHeight\" 77"));
    EXPECT_THAT(content(folder_ / "scenes/opened.ma"), testing::Not(HasSubstr("orvoskyEditedFile")));
}

} // namespace
} // namespace orvosky::window
