// Files from elsewhere: what is dropped onto the window, and the dialog that files are chosen in.
#include "WindowFixture.h"

#include "AttributePage.h"
#include "AttributePanel.h"
#include "FileChooser.h"
#include "NumberField.h"
#include "OutlinerPanel.h"
#include "ScriptPanel.h"
#include "StartPage.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <QTreeView>
#include <QUrl>
#include <QWindow>

namespace orvosky::window {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A scene with one transform of that name.
std::string sceneOf(const std::string& node) {
    return "//Maya ASCII 2010 scene\nrequires maya \"2010\";\ncreateNode transform -n \"" + node + "\";\n";
}

class Files : public Window {
protected:
    /// Drags files of another program, which would move them, onto the middle of a widget and lets them go.
    /// @return whether they were taken
    bool drop(QWidget& on, const std::vector<fs::path>& files) {
        QMimeData data;
        QList<QUrl> urls;
        for (const fs::path& file : files) urls << QUrl::fromLocalFile(QString::fromStdString(file.string()));
        data.setUrls(urls);
        QWindow* window = on.window()->windowHandle();
        const QPoint at = on.mapTo(on.window(), on.rect().center());
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        enter.setDropAction(Qt::MoveAction);
        QCoreApplication::sendEvent(window, &enter);
        if (!enter.isAccepted()) return false;
        EXPECT_EQ(enter.dropAction(), Qt::CopyAction) << "a file that is moved is gone";
        QDragMoveEvent move(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        move.setDropAction(enter.dropAction());
        move.accept();
        QCoreApplication::sendEvent(window, &move);
        QDropEvent let(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window, &let);
        settle();
        return let.isAccepted();
    }
    std::string title() { return window().document().title().toStdString(); }
    fs::path scene(const std::string& name) {
        write(folder_ / ("scenes/" + name + ".ma"), sceneOf(name));
        return folder_ / ("scenes/" + name + ".ma");
    }
};

// Faults: a place of the window that does not take scenes, or takes their address as text; work that is lost; a file
// that is moved away; nothing said of what cannot be opened.
TEST_F(Files, AreOpenedWhereverTheyAreDropped) {
    open("");
    ASSERT_TRUE(window().startPage());
    write(folder_ / "scenes/broken.ma", "//Maya ASCII 2010 scene\ncreateNode transform -n \"t;\nsetAttr {");
    drop(*window().startPage(), {folder_ / "scenes/broken.ma"});
    ASSERT_TRUE(window().startPage()) << "what cannot be opened leaves the choice";
    EXPECT_THAT(window().startPage()->findChild<QLabel*>("said")->text().toStdString(), HasSubstr("broken.ma"));
    ASSERT_TRUE(drop(*window().startPage(), {scene("first")}));
    EXPECT_FALSE(window().startPage());
    EXPECT_EQ(title(), "first.ma");
    window().scripts().parentWidget()->show();
    settle(100);
    auto& command = *window().findChild<QLineEdit*>("command");
    auto& search = *window().outliner().findChild<QLineEdit*>();
    auto& tree = *window().outliner().findChild<QTreeView*>();
    int made = 0;
    const auto takes = [&](QWidget* place) {
        ASSERT_TRUE(place && place->isVisible());
        const std::string name = "scene" + std::to_string(++made);
        EXPECT_TRUE(drop(*place, {scene(name)}));
        EXPECT_EQ(title(), name + ".ma");
    };
    for (QWidget* place :
         std::initializer_list<QWidget*>{&window().view(), &tree, &search, &command, &window().scripts().input()})
        takes(place);
    editor().runAside("createNode orvosky_ExpHeightFog -n mist;");
    editor().announce();
    settle(100);
    takes(window().attributes().page()->control("fogHeight")->findChild<NumberField*>());
    EXPECT_EQ(command.text() + search.text() + window().scripts().input().toPlainText(), "");

    editor().run("createNode transform -n work;");
    answer("unsaved", "Cancel");
    drop(window().view(), {scene("another")});
    EXPECT_EQ(title(), "scene6.ma*");
    std::vector<std::string> said;
    QObject::connect(&editor(), &Editor::message,
                     [&](Editor::Kind, const QString& text) { said.push_back(text.toStdString()); });
    drop(window().view(), {scene("one"), scene("two")});
    write(folder_ / "notes.txt", "words");
    drop(window().view(), {folder_ / "notes.txt"});
    EXPECT_THAT(said, ElementsAre(HasSubstr("2 files"), HasSubstr("notes.txt is no scene (.ma, .mel)")));
    EXPECT_EQ(title(), "scene6.ma*");
    answer("unsaved", "Do Not Save");
    drop(window().view(), {folder_ / "scenes/another.ma"});
    EXPECT_EQ(title(), "another.ma");
}

// Faults: a picture's address as a field's text, a field that is set to a scene or to the first of many.
TEST_F(Files, AreTakenByTheirFields) {
    open();
    editor().run("orvoskyCreate orvosky_GradientSkyLocator \"painted\"; select -r painted1;");
    settle(100);
    fs::create_directories(folder_ / "build");
    QImage(4, 4, QImage::Format_RGB888).save(QString::fromStdString((folder_ / "build/dusk.png").string()));
    const auto field = [&] { return window().attributes().page()->control("gradientTexture"); };
    ASSERT_TRUE(field());
    EXPECT_TRUE(drop(*field()->findChild<QLineEdit*>(), {folder_ / "build/dusk.png"}));
    EXPECT_EQ(text("getAttr painted1Shape.gradientTexture"), "build/dusk.png");
    drop(*field(), {folder_ / "build/dusk.png", folder_ / "build/dawn.png"});
    EXPECT_EQ(text("getAttr painted1Shape.gradientTexture"), "build/dusk.png");
    editor().run("setAttr -lock 1 painted1Shape.gradientTexture;");
    settle();
    drop(*field(), {folder_ / "build/dawn.png"});
    EXPECT_EQ(text("getAttr painted1Shape.gradientTexture"), "build/dusk.png");
    answer("unsaved", "Do Not Save");
    drop(*field(), {scene("other")});
    EXPECT_EQ(title(), "other.ma");
}

// Faults: a dialog with all kinds of files, or without their pictures.
TEST_F(Files, AreChosenByTheirPictures) {
    fs::create_directories(folder_ / "build/skies");
    const auto paint = [&](const char* name, QColor colour) {
        QImage image(200, 100, QImage::Format_RGB888);
        image.fill(colour);
        EXPECT_TRUE(image.save(QString::fromStdString((folder_ / "build/skies" / name).string())));
    };
    paint("tall.png", Qt::red);
    paint("wide.PNG", Qt::blue);
    write(folder_ / "build/skies/tall.xml", "no clouds, but a picture of its name");
    write(folder_ / "build/skies/plain.xml", "neither");
    const auto look = [&](const char* name) {
        return lookOf(QString::fromStdString((folder_ / "build/skies" / name).string()), {64, 36});
    };
    EXPECT_EQ(look("wide.PNG").pixelColor(20, 20), QColor(Qt::blue));
    EXPECT_EQ(look("wide.PNG").size(), QSize(64, 32));
    EXPECT_EQ(look("tall.xml").pixelColor(20, 20), QColor(Qt::red));
    EXPECT_TRUE(look("plain.xml").isNull());
    EXPECT_FALSE(
        lookOf(QString::fromStdString(orvo::test::sourceTree("examples/project/build/clouds/cumulus.xml")), {64, 36})
            .isNull());

    open();
    // What a script asks for, the field of a texture, and the field of a library.
    editor().run("orvoskyCreate orvosky_GradientSkyLocator \"painted\"; "
                 "setAttr -type \"string\" painted1Shape.gradientTexture \"build/skies/tall.png\"; "
                 "createNode transform -n dome1 -p OrvoSkyData; "
                 "createNode orvosky_ParticleCloudDome -n dome1Shape -p dome1; "
                 "setAttr -type \"string\" dome1Shape.cloudDataDir \"build/skies/plain.xml\";");
    struct Seen {
        QStringList filters, files;
        QColor tall;
    };
    const auto chosenBy = [&](const std::function<void()>& asks) {
        Seen seen;
        QTimer looks;
        QObject::connect(&looks, &QTimer::timeout, [&, tries = 0]() mutable {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!dialog) return;
            auto& list = *dialog->findChild<QAbstractItemView*>("treeView");
            seen.filters = dialog->nameFilters();
            seen.files.clear();
            const QModelIndex root = list.rootIndex();
            for (int row = 0; row < list.model()->rowCount(root); ++row) {
                const QModelIndex index = list.model()->index(row, 0, root);
                seen.files << index.data().toString();
                if (!seen.files.back().startsWith("tall")) continue;
                const QImage icon = index.data(Qt::DecorationRole).value<QIcon>().pixmap(64, 36).toImage();
                seen.tall = icon.isNull() ? QColor() : icon.pixelColor(icon.width() / 2, icon.height() / 2);
            }
            if (seen.tall == QColor(Qt::red) || ++tries > 100) dialog->reject();
        });
        looks.start(30);
        asks();
        return seen;
    };
    const auto press = [&](const char* node, const char* attribute) {
        editor().run("select -r " + std::string(node) + ";");
        settle(100);
        window().attributes().page()->control(attribute)->findChild<QPushButton*>()->click();
    };
    const Seen script = chosenBy([&] {
        editor().ask("fileDialog2 -fm 1 -ff \"Tall Ones (tall*);;Rest (*.*)\" -dir " +
                     quoted((folder_ / "build/skies").string()));
    });
    EXPECT_EQ(script.filters, QStringList({"Tall Ones (tall*)", "Rest (*.*)"}));
    EXPECT_EQ(script.files, QStringList({"tall.png", "tall.xml"}));
    EXPECT_EQ(script.tall, QColor(Qt::red));
    const Seen picture = chosenBy([&] { press("painted1", "gradientTexture"); });
    EXPECT_EQ(picture.files, QStringList({"tall.png", "wide.PNG"}));
    EXPECT_EQ(picture.tall, QColor(Qt::red));
    const Seen library = chosenBy([&] { press("dome1", "cloudDataDir"); });
    EXPECT_EQ(library.files, QStringList({"plain.xml", "tall.xml"}));
    EXPECT_EQ(library.tall, QColor(Qt::red)) << "the picture beside it";
}

} // namespace
} // namespace orvosky::window
