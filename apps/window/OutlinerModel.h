#pragma once

#include "scene/Node.h"

#include <QAbstractItemModel>

#include <memory>
#include <unordered_map>
#include <vector>

namespace orvosky::window {

class Editor;

/// The tree of the scene's DAG, node by node as it is opened; names, icons and marks are read from the scene when they
/// are shown. Edits (names, drags, the eye) go out as MEL.
class OutlinerModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { Name, Shown, Columns };
    /// The role of the file that a node names and that is not there; empty when there is none such.
    static constexpr int MissingFile = Qt::UserRole;

    explicit OutlinerModel(Editor& editor, QObject* parent = nullptr);
    ~OutlinerModel() override;

    /// Lists what has this text in its name, without its tree; empty: the tree.
    void setSearch(const QString& text);
    void setShapesShown(bool shown);
    /// Lists what holds nodes of plug-ins before the rest. Nothing can be dragged to a place then.
    void setPluginsFirst(bool first);

    host::scene::DagNode* node(const QModelIndex& index) const;
    /// The index of a node, what is above it being fetched; invalid when the tree does not show it.
    QModelIndex indexOf(host::scene::DagNode& node);
    /// Brings what has been fetched in line with the scene.
    void sync();

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& = {}) const override { return Columns; }
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override { return {"application/x-orvosky-nodes"}; }
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

private:
    struct Item;
    using Items = std::unordered_map<const host::scene::Node*, Item*>;
    Item* item(const QModelIndex& index) const;
    QModelIndex indexOf(Item& item, int column = 0) const;
    std::vector<host::scene::DagNode*> shownChildren(const Item& item) const;
    bool isShown(const host::scene::DagNode& node) const;
    void fetch(Item& item);
    void sync(Item& item);
    void restart();

    Editor& editor_;
    Items items_; ///< what has been fetched, by node
    std::unique_ptr<Item> root_;
    QString search_;
    bool shapes_ = false, pluginsFirst_ = false;
};

/// The icon of a node: that of its type, or of the shape that it holds.
QIcon iconOf(const host::scene::DagNode& node);

} // namespace orvosky::window
