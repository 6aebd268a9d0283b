#include "OutlinerModel.h"

#include "Editor.h"
#include "PlugView.h"
#include "ProjectFiles.h"
#include "Theme.h"

#include "scene/Scene.h"

#include <QFont>
#include <QMimeData>

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace orvosky::window {

using host::scene::DagNode;

namespace {

constexpr int mostRuns = 100; ///< of rows that go one after the other

DagNode* firstShape(const DagNode& node) {
    for (DagNode* child : node.children)
        if (child->isShape()) return child;
    return nullptr;
}

/// Whether a node of a plug-in is here or not far below.
bool holdsPlugin(const DagNode& node, int depth) {
    if (!node.type.plugin.empty()) return true;
    return depth > 0 && std::ranges::any_of(node.children, [&](DagNode* c) { return holdsPlugin(*c, depth - 1); });
}

/// A file that the node or one of its shapes names and that is not there; empty when there is none such.
QString missingFile(DagNode& node) {
    const auto of = [](DagNode& dag) -> QString {
        for (const host::scene::Attribute* attribute : dag.attributes())
            if (attribute->usedAsFilename) {
                QString named = PlugView(dag.shared_from_this(), *attribute).text();
                if (!named.isEmpty() && fileOnDisk(named).isEmpty()) return named;
            }
        return {};
    };
    QString missing = of(node);
    for (DagNode* child : node.children)
        if (missing.isEmpty() && child->isShape()) missing = of(*child);
    return missing;
}

QIcon iconNamed(const host::scene::NodeType* type) {
    for (; type; type = type->base)
        if (QIcon found = theme::icon("out_" + QString::fromStdString(type->name)); !found.isNull()) return found;
    return {};
}

} // namespace

QIcon iconOf(const DagNode& node) {
    const DagNode* shape = node.isTransform() ? firstShape(node) : nullptr;
    return iconNamed(shape ? &shape->type : &node.type);
}

struct OutlinerModel::Item {
    Item(Items& listed, host::scene::NodePtr shown, Item* above, int at)
        : all(listed), node(std::move(shown)), parent(above), row(at) {
        all[node.get()] = this;
    }
    ~Item() {
        // One that moves below another parent may be listed there already.
        if (const auto found = all.find(node.get()); found != all.end() && found->second == this) all.erase(found);
    }
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
    DagNode& dag() const { return *node->dag(); }

    Items& all;
    host::scene::NodePtr node; ///< keeps it from being forgotten while it is listed
    Item* parent;
    int row;
    bool fetched = false;
    std::vector<std::unique_ptr<Item>> children{};
};

OutlinerModel::OutlinerModel(Editor& editor, QObject* parent) : QAbstractItemModel(parent), editor_(editor) {
    restart();
}

OutlinerModel::~OutlinerModel() = default;

void OutlinerModel::restart() {
    beginResetModel();
    DagNode* world = Editor::scene().world();
    root_ = std::make_unique<Item>(items_, world ? world->shared_from_this() : nullptr, nullptr, 0);
    if (root_->node) fetch(*root_);
    endResetModel();
}

void OutlinerModel::setSearch(const QString& text) {
    if (text == search_) return;
    search_ = text;
    restart();
}

void OutlinerModel::setShapesShown(bool shown) {
    shapes_ = shown;
    restart();
}

void OutlinerModel::setPluginsFirst(bool first) {
    pluginsFirst_ = first;
    restart();
}

bool OutlinerModel::isShown(const DagNode& node) const {
    if (node.isDefault && !shapes_) return false;
    return shapes_ || node.isTransform();
}

std::vector<DagNode*> OutlinerModel::shownChildren(const Item& item) const {
    std::vector<DagNode*> found;
    if (!search_.isEmpty()) {
        if (&item != root_.get()) return found;
        for (const auto& [serial, node] : Editor::scene().nodes())
            if (DagNode* dag = node->dag(); dag && isShown(*dag) && !dag->isWorld() &&
                                            QString::fromStdString(dag->name).contains(search_, Qt::CaseInsensitive))
                found.push_back(dag);
        return found;
    }
    for (DagNode* child : item.dag().children)
        if (isShown(*child)) found.push_back(child);
    if (pluginsFirst_)
        std::stable_partition(found.begin(), found.end(), [](DagNode* node) { return holdsPlugin(*node, 2); });
    return found;
}

void OutlinerModel::fetch(Item& item) {
    item.fetched = true;
    for (DagNode* child : shownChildren(item)) {
        const int row = static_cast<int>(item.children.size());
        item.children.push_back(std::make_unique<Item>(items_, child->shared_from_this(), &item, row));
    }
}

OutlinerModel::Item* OutlinerModel::item(const QModelIndex& index) const {
    return index.isValid() ? static_cast<Item*>(index.internalPointer()) : root_.get();
}

DagNode* OutlinerModel::node(const QModelIndex& index) const {
    Item* found = index.isValid() ? item(index) : nullptr;
    return found && found->node->inScene ? &found->dag() : nullptr;
}

QModelIndex OutlinerModel::indexOf(Item& item, int column) const {
    return item.parent ? createIndex(item.row, column, &item) : QModelIndex();
}

QModelIndex OutlinerModel::indexOf(DagNode& wanted) {
    const auto listed = [this](const DagNode& node) {
        const auto found = items_.find(&node);
        return found == items_.end() ? nullptr : found->second;
    };
    if (Item* found = listed(wanted)) return indexOf(*found);
    if (!search_.isEmpty()) return {};
    // What is above it is opened from the lowest that is listed.
    std::vector<DagNode*> path;
    for (DagNode* at = &wanted; at && !listed(*at); at = at->parent) path.push_back(at);
    while (!path.empty()) {
        Item* above = path.back()->parent ? listed(*path.back()->parent) : nullptr;
        if (!above || above->fetched) return {};
        fetchMore(indexOf(*above));
        path.pop_back();
    }
    Item* found = listed(wanted);
    return found ? indexOf(*found) : QModelIndex();
}

void OutlinerModel::sync() {
    DagNode* world = Editor::scene().world();
    if (!world || root_->node.get() != world) {
        restart();
        return;
    }
    sync(*root_);
}

void OutlinerModel::sync(Item& item) {
    if (!item.fetched) return;
    const std::vector<DagNode*> now = shownChildren(item);
    const auto same = [&] {
        return now.size() == item.children.size() &&
               std::equal(now.begin(), now.end(), item.children.begin(),
                          [](DagNode* node, const auto& child) { return child->node.get() == node; });
    };
    if (!same()) {
        const QModelIndex at = indexOf(item);
        const auto renumber = [&item](int row) {
            for (const int count = static_cast<int>(item.children.size()); row < count; ++row)
                item.children[static_cast<std::size_t>(row)]->row = row;
        };
        const auto removeRows = [&](int from, int to) {
            beginRemoveRows(at, from, to);
            item.children.erase(item.children.begin() + from, item.children.begin() + to + 1);
            renumber(from);
            endRemoveRows();
        };
        // What goes goes in runs, the last first.
        const std::unordered_set<const host::scene::Node*> staying(now.begin(), now.end());
        std::vector<std::pair<int, int>> runs;
        for (int i = static_cast<int>(item.children.size()) - 1; i >= 0; --i) {
            if (staying.contains(item.children[static_cast<std::size_t>(i)]->node.get())) continue;
            if (!runs.empty() && runs.back().first == i + 1)
                runs.back().first = i;
            else
                runs.emplace_back(i, i);
        }
        // Where they are many, all is listed anew: each costs a look at every row.
        if (static_cast<int>(runs.size()) > mostRuns) runs = {{0, static_cast<int>(item.children.size()) - 1}};
        for (const auto& [from, to] : runs) removeRows(from, to);
        std::unordered_set<const host::scene::Node*> listed;
        for (const auto& child : item.children) listed.insert(child->node.get());
        for (std::size_t i = 0; i < now.size();) {
            if (i < item.children.size() && item.children[i]->node.get() == now[i]) {
                ++i;
                continue;
            }
            const int row = static_cast<int>(i);
            if (listed.contains(now[i])) {
                std::size_t from = i + 1;
                while (item.children[from]->node.get() != now[i]) ++from;
                beginMoveRows(at, static_cast<int>(from), static_cast<int>(from), at, row);
                const auto begin = item.children.begin();
                std::rotate(begin + row, begin + static_cast<std::ptrdiff_t>(from),
                            begin + static_cast<std::ptrdiff_t>(from) + 1);
                renumber(row);
                endMoveRows();
                ++i;
                continue;
            }
            // What is new comes in runs: a whole group at once.
            std::size_t end = i;
            while (end < now.size() && !listed.contains(now[end])) ++end;
            std::vector<std::unique_ptr<Item>> fresh;
            for (std::size_t k = i; k < end; ++k)
                fresh.push_back(std::make_unique<Item>(items_, now[k]->shared_from_this(), &item, static_cast<int>(k)));
            beginInsertRows(at, row, static_cast<int>(end) - 1);
            item.children.insert(item.children.begin() + row, std::make_move_iterator(fresh.begin()),
                                 std::make_move_iterator(fresh.end()));
            renumber(row);
            endInsertRows();
            i = end;
        }
    }
    for (const auto& child : item.children) sync(*child);
}

QModelIndex OutlinerModel::index(int row, int column, const QModelIndex& parent) const {
    const Item* above = item(parent);
    if (row < 0 || row >= static_cast<int>(above->children.size()) || column < 0 || column >= Columns) return {};
    return createIndex(row, column, above->children[static_cast<std::size_t>(row)].get());
}

QModelIndex OutlinerModel::parent(const QModelIndex& index) const {
    const Item* at = item(index);
    return at->parent ? indexOf(*at->parent) : QModelIndex();
}

int OutlinerModel::rowCount(const QModelIndex& parent) const {
    return parent.column() > 0 ? 0 : static_cast<int>(item(parent)->children.size());
}

bool OutlinerModel::hasChildren(const QModelIndex& parent) const {
    const Item* at = item(parent);
    if (at->fetched) return !at->children.empty();
    return search_.isEmpty() && at->node->inScene &&
           std::ranges::any_of(at->dag().children, [this](DagNode* child) { return isShown(*child); });
}

bool OutlinerModel::canFetchMore(const QModelIndex& parent) const { return !item(parent)->fetched; }

void OutlinerModel::fetchMore(const QModelIndex& parent) {
    Item& at = *item(parent);
    if (at.fetched) return;
    const auto count = static_cast<int>(shownChildren(at).size());
    if (count > 0) beginInsertRows(parent, 0, count - 1);
    fetch(at);
    if (count > 0) endInsertRows();
}

QVariant OutlinerModel::data(const QModelIndex& index, int role) const {
    DagNode* dag = node(index);
    if (!dag) return {};
    if (index.column() == Shown) {
        if (role == Qt::DecorationRole) return theme::icon(dag->visible() ? "shown" : "hidden");
        if (role == Qt::ToolTipRole) return tr("Shown in the view; a click hides it and what is below it");
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: return QString::fromStdString(dag->name);
    case Qt::DecorationRole: return missingFile(*dag).isEmpty() ? iconOf(*dag) : theme::marked(iconOf(*dag));
    case MissingFile: return missingFile(*dag);
    case Qt::ToolTipRole: {
        const DagNode* shape = dag->isTransform() ? firstShape(*dag) : nullptr;
        const QString missing = missingFile(*dag);
        return QString::fromStdString(dag->fullPath() + "\n" + (shape ? shape->type.name : dag->type.name)) +
               (missing.isEmpty() ? QString() : tr("\n%1 is missing").arg(missing));
    }
    case Qt::ForegroundRole:
        if (!dag->visible() || dag->templated()) return theme::grey(5);
        return {};
    case Qt::FontRole:
        if (dag->templated()) {
            QFont font;
            font.setItalic(true);
            return font;
        }
        return {};
    default: return {};
    }
}

bool OutlinerModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    DagNode* dag = node(index);
    if (!dag) return false;
    if (index.column() == Shown)
        return editor_.run("setAttr " + quoted(dag->fullPath() + ".visibility") + (dag->visible() ? " 0;" : " 1;"));
    const std::string name = value.toString().trimmed().toStdString();
    if (role != Qt::EditRole || name.empty() || name == dag->name) return false;
    return editor_.run("rename " + quoted(dag->fullPath()) + " " + quoted(name) + ";");
}

Qt::ItemFlags OutlinerModel::flags(const QModelIndex& index) const {
    // Beside the rows is the world.
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    const DagNode* dag = node(index);
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!dag || index.column() != Name) return flags;
    if (!dag->isDefault) flags |= Qt::ItemIsEditable;
    if (search_.isEmpty() && !dag->isDefault && dag->isTransform()) flags |= Qt::ItemIsDragEnabled;
    if (search_.isEmpty() && dag->isTransform()) flags |= Qt::ItemIsDropEnabled;
    return flags;
}

QMimeData* OutlinerModel::mimeData(const QModelIndexList& indexes) const {
    QStringList paths;
    for (const QModelIndex& index : indexes)
        if (DagNode* dag = index.column() == Name ? node(index) : nullptr)
            paths << QString::fromStdString(dag->fullPath());
    auto* data = new QMimeData;
    data->setData(mimeTypes().front(), paths.join('\n').toUtf8());
    return data;
}

bool OutlinerModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                 const QModelIndex& parent) {
    if (action != Qt::MoveAction || !data->hasFormat(mimeTypes().front())) return false;
    DagNode* to = parent.isValid() ? node(parent) : Editor::scene().world();
    if (!to) return false;
    std::string moving, reordered;
    std::vector<DagNode*> nodes;
    for (const QString& path : QString::fromUtf8(data->data(mimeTypes().front())).split('\n')) {
        host::scene::Node* found = Editor::scene().findNode(path.toStdString());
        DagNode* dag = found ? found->dag() : nullptr;
        if (!dag || dag == to || to->isBelow(*dag)) return false;
        nodes.push_back(dag);
    }
    for (DagNode* dag : nodes) {
        reordered += " " + quoted(dag->fullPath());
        if (dag->parent != to) moving += " " + quoted(dag->fullPath());
    }
    std::string mel;
    if (!moving.empty())
        mel = to->isWorld() ? "parent -w" + moving + ";" : "parent" + moving + " " + quoted(to->fullPath()) + ";";
    if (row >= 0 && !pluginsFirst_ && search_.isEmpty()) {
        // The place counts all of the parent's children, also those that the tree leaves out, and the moved ones come
        // to it one by one.
        const Item* above = item(parent);
        const auto& all = to->children;
        std::size_t place = all.size();
        if (row < static_cast<int>(above->children.size()))
            place = static_cast<std::size_t>(
                std::ranges::find(all, above->children[static_cast<std::size_t>(row)]->node->dag()) - all.begin());
        std::size_t stays = place;
        for (DagNode* dag : nodes)
            if (dag->parent == to && std::ranges::find(all, dag) - all.begin() < static_cast<std::ptrdiff_t>(place))
                --stays;
        if (moving.empty())
            mel = "reorder -front" + reordered + "; reorder -relative " + std::to_string(stays) + reordered + ";";
        else if (moving == reordered)
            mel = "string $moved[] = `" + mel.substr(0, mel.size() - 1) +
                  "`; reorder -front $moved; reorder -relative " + std::to_string(stays) + " $moved;";
    }
    if (mel.empty()) return false;
    if (mel.find("; ") != mel.npos) mel = "{ " + mel + " }";
    // The view is told by the scene, not by this drag.
    QMetaObject::invokeMethod(
        this, [this, mel] { editor_.run(mel); }, Qt::QueuedConnection);
    return false;
}

} // namespace orvosky::window
