// The outliner: one tree with the scene, edits as MEL.
#include "WindowFixture.h"

#include "OutlinerModel.h"
#include "OutlinerPanel.h"

#include "scene/Scene.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMimeData>

namespace orvosky::window {
namespace {

using testing::ElementsAre;

std::vector<std::string> names(QAbstractItemModel& model, const QModelIndex& parent = {}) {
    std::vector<std::string> found;
    for (int row = 0; row < model.rowCount(parent); ++row)
        found.push_back(model.index(row, 0, parent).data().toString().toStdString());
    return found;
}

class Outliner : public Window {
protected:
    OutlinerModel& model() { return *window().outliner().findChild<OutlinerModel*>(); }
    QTreeView& tree() { return *window().outliner().findChild<QTreeView*>(); }
    QModelIndex at(const std::string& name) { return model().indexOf(*Editor::scene().findNode(name)->dag()); }
    void drop(const std::vector<std::string>& what, const QModelIndex& parent, int row) {
        QModelIndexList dragged;
        for (const auto& name : what) dragged << at(name);
        const std::unique_ptr<QMimeData> data(model().mimeData(dragged));
        model().dropMimeData(data.get(), Qt::MoveAction, row, 0, parent);
        settle();
    }
};

// Faults: rows that the model's own rules forbid, a tree that misses what scripts, undo and redo do.
TEST_F(Outliner, FollowsTheScene) {
    open();
    const QAbstractItemModelTester tester(&model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_THAT(names(model()), ElementsAre("OrvoSkyData", "renderer"));
    EXPECT_THAT(names(model(), at("OrvoSkyData")), ElementsAre("settings", "sky", "fog"));
    editor().run("createNode transform -n late -p OrvoSkyData; reorder -front late; delete fog; rename sky \"blue\";");
    EXPECT_THAT(names(model(), at("OrvoSkyData")), ElementsAre("late", "settings", "blue"));
    editor().run("undo;");
    EXPECT_THAT(names(model(), at("OrvoSkyData")), ElementsAre("settings", "sky", "fog"));
    editor().run("redo;");
    EXPECT_THAT(names(model(), at("OrvoSkyData")), ElementsAre("late", "settings", "blue"));
    auto& search = *window().outliner().findChild<QLineEdit*>();
    QTest::keyClicks(&search, "LAT");
    EXPECT_THAT(names(model()), ElementsAre("late"));
}

// Faults: a place that counts from elsewhere, several nodes in another order, a drag of more than one step.
TEST_F(Outliner, DragsToReparentAndReorder) {
    open();
    const std::string before = saved();
    drop({"fog"}, at("OrvoSkyData"), 0);
    EXPECT_THAT(names(model(), at("OrvoSkyData")), ElementsAre("fog", "settings", "sky"));
    drop({"fog", "settings"}, at("OrvoSkyData"), 3);
    EXPECT_THAT(names(model(), at("OrvoSkyData")), ElementsAre("sky", "fog", "settings"));
    drop({"renderer"}, at("OrvoSkyData"), 1);
    EXPECT_THAT(names(model(), at("OrvoSkyData")), ElementsAre("sky", "renderer", "fog", "settings"));
    drop({"renderer"}, {}, -1);
    EXPECT_THAT(names(model()), ElementsAre("OrvoSkyData", "renderer"));
    drop({"OrvoSkyData"}, at("sky"), -1);
    EXPECT_THAT(names(model()), ElementsAre("OrvoSkyData", "renderer")) << "nothing goes below itself";
    for (int i = 0; i < 4; ++i) editor().run("undo;");
    EXPECT_EQ(saved(), before);
}

// Faults: a selection that goes one way alone, an eye or a name that changes something without MEL.
TEST_F(Outliner, SelectsRenamesAndHides) {
    open();
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, tree().visualRect(at("sky")).center());
    EXPECT_EQ(text("ls -sl"), "sky");
    EXPECT_EQ(echoed().back(), "select -r \"sky\";");
    editor().run("select -r fog settings;");
    EXPECT_EQ(tree().selectionModel()->selectedRows().size(), 2);
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {},
                      tree().visualRect(at("fog").siblingAtColumn(OutlinerModel::Shown)).center());
    EXPECT_EQ(number("getAttr fog.visibility"), 0);
    editor().run("select -r fog settings;");
    for (const int shown : {0, 1}) { // one of them is shown, so both go; then both come back
        QTest::keyClick(&window(), Qt::Key_H);
        EXPECT_EQ(number("getAttr fog.visibility"), shown);
        EXPECT_EQ(number("getAttr settings.visibility"), shown);
    }
    model().setData(at("fog"), "mist", Qt::EditRole);
    EXPECT_EQ(number("objExists mist"), 1);
    EXPECT_EQ(echoed().back(), "rename \"|OrvoSkyData|fog\" \"mist\";");
}

// Fault: a tree that is built, or looked through, node by node at each change.
TEST_F(Outliner, FetchesWhatIsOpened) {
    open();
    editor().run(
        "createNode transform -n many; for ($i = 0; $i < 20000; ++$i) createNode transform -p many; select -cl;");
    EXPECT_EQ(model().rowCount(at("many")), 0) << "nothing of it has been looked at";
    EXPECT_TRUE(model().canFetchMore(at("many")));
    tree().expand(at("many"));
    settle(300);
    EXPECT_EQ(model().rowCount(at("many")), 20000);
}

} // namespace
} // namespace orvosky::window
