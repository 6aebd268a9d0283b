#include "OutlinerPanel.h"

#include "Editor.h"
#include "OutlinerModel.h"
#include "Theme.h"

#include "commands/Host.h"
#include "scene/Scene.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace orvosky::window {

using host::scene::DagNode;

OutlinerPanel::OutlinerPanel(Editor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), model_(new OutlinerModel(editor, this)), tree_(new QTreeView),
      search_(new QLineEdit) {
    setObjectName("outliner");
    search_->setPlaceholderText(tr("Search"));
    search_->setClearButtonEnabled(true);
    tree_->setModel(model_);
    tree_->setHeaderHidden(true);
    tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree_->setDragDropMode(QAbstractItemView::DragDrop);
    tree_->setDefaultDropAction(Qt::MoveAction);
    tree_->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    tree_->setExpandsOnDoubleClick(false);
    tree_->setUniformRowHeights(true); // a long tree scrolls without being measured
    tree_->setIndentation(14);
    tree_->setContextMenuPolicy(Qt::CustomContextMenu);
    tree_->header()->setStretchLastSection(false);
    tree_->header()->setSectionResizeMode(OutlinerModel::Name, QHeaderView::Stretch);
    tree_->header()->setSectionResizeMode(OutlinerModel::Shown, QHeaderView::Fixed);
    tree_->header()->resizeSection(OutlinerModel::Shown, 28);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 4, 0, 4);
    layout->setSpacing(6);
    layout->addWidget(search_);
    layout->addWidget(tree_);

    connect(search_, &QLineEdit::textChanged, model_, &OutlinerModel::setSearch);
    connect(tree_, &QTreeView::customContextMenuRequested, this, &OutlinerPanel::showMenu);
    connect(tree_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &OutlinerPanel::giveSelection);
    connect(tree_, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() == OutlinerModel::Shown) model_->setData(index, {}, Qt::EditRole);
    });
    connect(&editor_, &Editor::changed, this, [this] {
        quiet_ = true;
        model_->sync();
        tree_->viewport()->update();
        quiet_ = false;
        takeSelection();
    });
    connect(model_, &QAbstractItemModel::modelReset, this, [this] {
        tree_->expandToDepth(0);
        takeSelection();
    });
    tree_->expandToDepth(0);
}

void OutlinerPanel::takeSelection() {
    std::vector<QModelIndex> chosen;
    for (const auto& selected : Editor::scene().selection()) {
        DagNode* dag = selected.node->dag();
        QModelIndex at = dag ? model_->indexOf(*dag) : QModelIndex();
        if (!at.isValid() && dag && dag->isShape() && dag->parent) at = model_->indexOf(*dag->parent);
        if (at.isValid()) chosen.push_back(at);
    }
    const QModelIndex last = chosen.empty() ? QModelIndex() : chosen.back();
    // Neighbours are one range: the view looks through all ranges for each row that it draws.
    std::ranges::sort(chosen, {}, [](const QModelIndex& at) { return std::pair(at.parent(), at.row()); });
    QItemSelection items;
    for (std::size_t i = 0, end; i < chosen.size(); i = end) {
        end = i + 1;
        while (end < chosen.size() && chosen[end].parent() == chosen[i].parent() &&
               chosen[end].row() <= chosen[end - 1].row() + 1)
            ++end;
        items.select(chosen[i], chosen[end - 1].siblingAtColumn(OutlinerModel::Shown));
    }
    if (items == tree_->selectionModel()->selection()) return;
    quiet_ = true;
    tree_->selectionModel()->select(items, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (last.isValid()) tree_->scrollTo(last);
    quiet_ = false;
}

void OutlinerPanel::giveSelection() {
    if (quiet_) return;
    std::string names;
    for (const QModelIndex& index : tree_->selectionModel()->selectedRows())
        if (DagNode* dag = model_->node(index)) names += " " + quoted(dag->partialPath());
    quiet_ = true;
    editor_.run(names.empty() ? "select -clear;" : "select -r" + names + ";");
    quiet_ = false;
}

void OutlinerPanel::showMenu(QPoint at) {
    QMenu menu;
    const QModelIndex index = tree_->indexAt(at);
    if (DagNode* dag = model_->node(index)) {
        const std::string path = quoted(dag->fullPath());
        const auto add = [&](const QString& label, const std::string& mel) {
            connect(menu.addAction(label), &QAction::triggered, this, [this, mel] { editor_.run(mel); });
        };
        if (!dag->isDefault) {
            const QModelIndex first = index.siblingAtColumn(OutlinerModel::Name);
            connect(menu.addAction(tr("Rename")), &QAction::triggered, this, [this, first] { tree_->edit(first); });
            const bool withSprites = host::Host::instance().interpreter().isCallable("orvoskyDuplicate");
            add(tr("Duplicate"),
                withSprites ? "{ select -r " + path + "; orvoskyDuplicate; }" : "duplicate " + path + ";");
            add(tr("Delete"), "delete " + path + ";");
            menu.addSeparator();
        }
        add(dag->visible() ? tr("Hide") : tr("Show"),
            "setAttr " + quoted(dag->fullPath() + ".visibility") + (dag->visible() ? " 0;" : " 1;"));
        add(dag->templated() ? tr("End Template") : tr("Template"),
            "setAttr " + quoted(dag->fullPath() + ".template") + (dag->templated() ? " 0;" : " 1;"));
        menu.addSeparator();
        connect(menu.addAction(tr("Expand All Below")), &QAction::triggered, this,
                [this, index] { tree_->expandRecursively(index); });
        menu.addSeparator();
    }
    addOptions(menu);
    menu.exec(tree_->viewport()->mapToGlobal(at));
}

void OutlinerPanel::addOptions(QMenu& menu) {
    const auto option = [&](const QString& label, const char* name, void (OutlinerModel::*set)(bool)) {
        QAction* action = menu.addAction(label);
        action->setCheckable(true);
        action->setChecked(property(name).toBool());
        connect(action, &QAction::toggled, this, [this, name, set](bool on) {
            setProperty(name, on);
            std::invoke(set, *model_, on); // by ->* GCC 12 with its sanitizers would read `this` from nowhere
        });
    };
    option(tr("Shapes and Default Cameras"), "shapes", &OutlinerModel::setShapesShown);
    option(tr("Sky Nodes First"), "pluginsFirst", &OutlinerModel::setPluginsFirst);
}

} // namespace orvosky::window
