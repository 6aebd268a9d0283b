#include "AttributePanel.h"

#include "AttributePage.h"
#include "Editor.h"
#include "OutlinerModel.h"
#include "Theme.h"

#include "scene/Scene.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTabBar>
#include <QVBoxLayout>

#include <algorithm>

namespace orvosky::window {

using host::scene::DagNode;
using host::scene::Node;

namespace {

/// The nodes that are shown for a selected one: its shapes, itself, and the transform of a shape.
std::vector<Node*> shownFor(Node& selected) {
    std::vector<Node*> nodes;
    DagNode* dag = selected.dag();
    if (dag && dag->isTransform())
        for (DagNode* child : dag->children)
            if (child->isShape() && nodes.size() < 8) nodes.push_back(child);
    nodes.push_back(&selected);
    if (dag && dag->isShape() && dag->parent) nodes.push_back(dag->parent);
    return nodes;
}

} // namespace

AttributePanel::AttributePanel(Editor& editor, InterfaceCommands& commands, QWidget* parent)
    : QWidget(parent), editor_(editor), commands_(commands), tabs_(new QTabBar), icon_(new QLabel), type_(new QLabel),
      nothing_(new QLabel(tr("Nothing is selected."))), name_(new QLineEdit), head_(new QWidget),
      scroll_(new QScrollArea) {
    setObjectName("attributes");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    tabs_->setDrawBase(false);
    tabs_->setExpanding(false);
    tabs_->setUsesScrollButtons(true);
    layout->addWidget(tabs_);
    auto* row = new QHBoxLayout(head_);
    row->setContentsMargins(12, 4, 12, 4);
    row->setSpacing(8);
    type_->setProperty("dim", true);
    row->addWidget(icon_);
    row->addWidget(name_);
    type_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    row->addWidget(type_, 1);
    layout->addWidget(head_);
    nothing_->setProperty("dim", true);
    nothing_->setContentsMargins(12, 8, 12, 8);
    nothing_->setAlignment(Qt::AlignTop);
    layout->addWidget(nothing_);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(scroll_, 1);
    connect(tabs_, &QTabBar::currentChanged, this, &AttributePanel::showTab);
    connect(name_, &QLineEdit::editingFinished, this, [this] {
        Node* node = page_ ? page_->node() : nullptr;
        if (!name_->isModified() || !node) return;
        name_->setModified(false);
        const std::string wanted = name_->text().trimmed().toStdString();
        if (!wanted.empty() && wanted != node->name)
            editor_.run("rename " + quoted(Editor::scene().displayName(*node)) + " " + quoted(wanted) + ";");
        name_->setText(QString::fromStdString(node->name));
    });
    connect(&editor_, &Editor::selectionChanged, this, &AttributePanel::takeSelection);
    connect(&editor_, &Editor::changed, this, [this] {
        if (!page_ || !page_->node()) {
            takeSelection();
            return;
        }
        for (std::size_t i = 0; i < nodes_.size(); ++i)
            if (const auto node = nodes_[i].lock()) {
                const QString name = QString::fromStdString(node->name);
                if (tabs_->tabText(static_cast<int>(i)) != name) tabs_->setTabText(static_cast<int>(i), name);
            }
        if (!name_->isModified()) name_->setText(QString::fromStdString(page_->node()->name));
        page_->refresh();
    });
    takeSelection();
}

AttributePage* AttributePanel::page() const { return page_; }

void AttributePanel::takeSelection() {
    std::vector<std::weak_ptr<Node>> wanted;
    const auto& selection = Editor::scene().selection();
    // The one that was selected last is shown.
    if (!selection.empty())
        for (Node* node : shownFor(*selection.back().node)) wanted.push_back(node->shared_from_this());
    const auto same = [](const auto& a, const auto& b) { return a.lock() == b.lock(); };
    if (page_ && page_->node() && std::ranges::equal(wanted, nodes_, same)) return;
    nodes_ = std::move(wanted);
    const QSignalBlocker quiet(tabs_);
    while (tabs_->count() > 0) tabs_->removeTab(0);
    for (const auto& node : nodes_) tabs_->addTab(QString::fromStdString(node.lock()->name));
    tabs_->setVisible(nodes_.size() > 1);
    showTab(nodes_.empty() ? -1 : 0);
}

void AttributePanel::showTab(int tab) {
    const auto node =
        tab >= 0 && tab < static_cast<int>(nodes_.size()) ? nodes_[static_cast<std::size_t>(tab)].lock() : nullptr;
    head_->setVisible(node != nullptr);
    nothing_->setVisible(!node);
    scroll_->setVisible(node != nullptr);
    if (QWidget* old = scroll_->takeWidget()) old->deleteLater();
    page_ = nullptr;
    if (!node) return;
    page_ = new AttributePage(editor_, commands_, node);
    scroll_->setWidget(page_);
    name_->setModified(false);
    name_->setText(QString::fromStdString(node->name));
    name_->setReadOnly(node->isDefault);
    const QString type = QString::fromStdString(node->unknownType.empty() ? node->type.name : node->unknownType);
    type_->setText(type.section('_', -1)); // a plug-in's prefix would leave the name no room
    type_->setToolTip(type);
    name_->setFixedWidth(std::clamp(name_->fontMetrics().horizontalAdvance(name_->text()) + 24, 120, 230));
    if (DagNode* dag = node->dag())
        icon_->setPixmap(iconOf(*dag).pixmap(16, 16));
    else
        icon_->clear();
}

} // namespace orvosky::window
