#include <maya/MSelectionList.h>

#include "api/graph/Handle.h"
#include "values/StatusOut.h"
#include "values/Text.h"

#include <maya/MStringArray.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::ComponentObject;
using host::api::fromText;
using host::api::toText;
using scene::Scene;

MSelectionList::MSelectionList() = default;
MSelectionList::MSelectionList(const MSelectionList& srcList) = default;
MSelectionList::~MSelectionList() = default;
MSelectionList& MSelectionList::operator=(const MSelectionList& other) = default;

namespace {

/// Components of a mesh, of the one below the path where that ends at a transform. `shape` stays null for others.
const ComponentObject* componentsAt(const MDagPath& path, const MObject& component, MObject& shape) {
    const auto* held = Access::component(component);
    const auto node = Access::dagNode(path.node());
    if (!held || !node || held->components().isEmpty()) return nullptr;
    const auto found = scene::findComponents(*node, held->components().names().front());
    if (!found) return nullptr;
    shape = Access::object(found->shape);
    return held;
}

} // namespace

bool MSelectionList::same(const Item& a, const Item& b) const {
    return a.node == b.node && a.component.apiType() == b.component.apiType() && a.plug.isNull() == b.plug.isNull() &&
           (a.plug.isNull() || a.plug == b.plug);
}

void MSelectionList::combine(const Item& item, MergeStrategy strategy) {
    const auto at = std::find_if(items_.begin(), items_.end(), [&](const Item& i) { return same(i, item); });
    if (at == items_.end()) {
        if (strategy != kRemoveFromList) items_.push_back(item);
        return;
    }
    const auto* given = Access::component(item.component);
    if (!given) {
        if (strategy != kMergeNormal) items_.erase(at);
        return;
    }
    scene::Components all = Access::component(at->component)->components(), others = given->components();
    if (strategy == kMergeNormal)
        all.add(others);
    else if (strategy == kRemoveFromList)
        all.remove(others);
    else {
        others.remove(all);
        all.remove(given->components());
        all.add(others);
    }
    if (all.isEmpty())
        items_.erase(at);
    else
        at->component = Access::object(std::make_shared<ComponentObject>(std::move(all)));
}

MStatus MSelectionList::append(Item item, bool merge) {
    if (item.node.isNull()) return MStatus::kInvalidParameter;
    if (merge)
        combine(item, kMergeNormal);
    else
        items_.push_back(std::move(item));
    return MStatus::kSuccess;
}

MStatus MSelectionList::clear() {
    items_.clear();
    return MStatus::kSuccess;
}

bool MSelectionList::isEmpty(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return items_.empty();
}

unsigned int MSelectionList::length(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return static_cast<unsigned int>(items_.size());
}

MStatus MSelectionList::getDependNode(unsigned int index, MObject& depNode) const {
    if (index >= items_.size()) return MStatus::kInvalidParameter;
    if (!Access::node(items_[index].node)) return MStatus::kFailure;
    depNode = items_[index].node;
    return MStatus::kSuccess;
}

MStatus MSelectionList::getDagPath(unsigned int index, MDagPath& dagPath, MObject& component) const {
    if (index >= items_.size()) return MStatus::kInvalidParameter;
    if (&component != &MObject::kNullObj) component = items_[index].component;
    return MDagPath::getAPathTo(items_[index].node, dagPath);
}

MStatus MSelectionList::getPlug(unsigned int index, MPlug& plug) const {
    if (index >= items_.size()) return MStatus::kInvalidParameter;
    if (items_[index].plug.isNull()) return MStatus::kFailure;
    plug = items_[index].plug;
    return MStatus::kSuccess;
}

MStatus MSelectionList::add(const MObject& object, const bool mergeWithExisting) {
    if (!Access::node(object)) return MStatus::kInvalidParameter;
    return append({object, MPlug(), {}}, mergeWithExisting);
}

MStatus MSelectionList::add(const MDagPath& object, const MObject& component, const bool mergeWithExisting) {
    if (component.isNull()) return append({object.node(), MPlug(), {}}, mergeWithExisting);
    MObject shape;
    const auto* held = componentsAt(object, component, shape);
    if (!held) return MStatus::kInvalidParameter;
    return append({shape, MPlug(), Access::object(std::make_shared<ComponentObject>(*held))}, mergeWithExisting);
}

MStatus MSelectionList::add(const MPlug& plug, const bool mergeWithExisting) {
    if (plug.isNull()) return MStatus::kInvalidParameter;
    return append({plug.node(), plug, {}}, mergeWithExisting);
}

MStatus MSelectionList::add(const MString& matchString, const bool) {
    const std::string text = toText(matchString);
    Scene& s = Scene::current();
    const auto dot = text.find('.');
    if (dot == std::string::npos) {
        const auto nodes = s.findNodes(text);
        const bool pattern = text.find_first_of("*?") != std::string::npos;
        if (nodes.empty() || (nodes.size() > 1 && !pattern)) return MStatus::kInvalidParameter;
        for (scene::Node* n : nodes) append({Access::object(n), MPlug(), {}}, true);
        return MStatus::kSuccess;
    }
    scene::Node* node = s.findNode(std::string_view(text).substr(0, dot));
    if (!node) return MStatus::kInvalidParameter;
    const std::string part = text.substr(dot + 1);
    if (scene::Cell* cell = s.tryPlug(*node, part))
        return append({Access::object(node), Access::plug(*cell), {}}, true);
    const auto found = scene::findComponents(*node, part);
    if (!found) return MStatus::kInvalidParameter;
    return append(
        {Access::object(found->shape), MPlug(), Access::object(std::make_shared<ComponentObject>(found->components))},
        true);
}

MStatus MSelectionList::remove(unsigned int index) {
    if (index >= items_.size()) return MStatus::kInvalidParameter;
    items_.erase(items_.begin() + index);
    return MStatus::kSuccess;
}

MStatus MSelectionList::replace(unsigned int index, const MObject& item) {
    if (index >= items_.size() || !Access::node(item)) return MStatus::kInvalidParameter;
    items_[index] = {item, MPlug(), {}};
    return MStatus::kSuccess;
}

MStatus MSelectionList::replace(unsigned int index, const MDagPath& item, const MObject& component) {
    if (index >= items_.size()) return MStatus::kInvalidParameter;
    MSelectionList one;
    const MStatus status = one.add(item, component);
    if (status) items_[index] = one.items_.front();
    return status;
}

MStatus MSelectionList::replace(unsigned int index, const MPlug& plug) {
    if (index >= items_.size() || plug.isNull()) return MStatus::kInvalidParameter;
    items_[index] = {plug.node(), plug, {}};
    return MStatus::kSuccess;
}

bool MSelectionList::hasItem(const MObject& item, MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return std::any_of(items_.begin(), items_.end(),
                       [&](const Item& i) { return i.node == item && i.plug.isNull() && i.component.isNull(); });
}

bool MSelectionList::hasItem(const MDagPath& item, const MObject& component, MStatus* ReturnStatus) const {
    if (component.isNull()) return hasItem(item.node(), ReturnStatus);
    MObject shape;
    const auto* wanted = componentsAt(item, component, shape);
    setStatus(ReturnStatus, wanted ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return wanted && std::any_of(items_.begin(), items_.end(), [&](const Item& i) {
               const auto* held = Access::component(i.component);
               return i.node == shape && held && held->components().contains(wanted->components());
           });
}

bool MSelectionList::hasItemPartly(const MDagPath& item, const MObject& component, MStatus* ReturnStatus) const {
    MObject shape;
    const auto* wanted = componentsAt(item, component, shape);
    setStatus(ReturnStatus, wanted ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return wanted && std::any_of(items_.begin(), items_.end(), [&](const Item& i) {
               const auto* held = Access::component(i.component);
               if (i.node != shape || !held || held->components().kind() != wanted->components().kind()) return false;
               scene::Components left = wanted->components();
               left.remove(held->components());
               return left.count() < wanted->components().count();
           });
}

MStatus MSelectionList::toggle(const MDagPath& item, const MObject& component) {
    return merge(item, component, kXORWithList);
}

MStatus MSelectionList::merge(const MDagPath& item, const MObject& component, const MergeStrategy strategy) {
    MSelectionList one;
    const MStatus status = one.add(item, component);
    return status ? merge(one, strategy) : status;
}

bool MSelectionList::hasItem(const MPlug& plug, MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return std::any_of(items_.begin(), items_.end(), [&](const Item& i) { return !i.plug.isNull() && i.plug == plug; });
}

MStatus MSelectionList::merge(const MSelectionList& other, const MergeStrategy strategy) {
    for (const Item& item : std::vector<Item>(other.items_)) combine(item, strategy);
    return MStatus::kSuccess;
}

MStatus MSelectionList::getSelectionStrings(MStringArray& array) const {
    array.clear();
    for (unsigned int i = 0; i < length(); ++i) {
        MStringArray one;
        if (getSelectionStrings(i, one))
            for (unsigned int k = 0; k < one.length(); ++k) array.append(one[k]);
    }
    return MStatus::kSuccess;
}

MStatus MSelectionList::getSelectionStrings(unsigned int index, MStringArray& array) const {
    array.clear();
    if (index >= items_.size()) return MStatus::kInvalidParameter;
    const Item& item = items_[index];
    const auto n = Access::node(item.node);
    if (!n) return MStatus::kFailure;
    if (!item.plug.isNull()) return array.append(item.plug.name());
    const auto* held = Access::component(item.component);
    if (!held) return array.append(fromText(n->scene.displayName(*n)));
    const std::string head = n->scene.displayName(scene::componentOwner(*n)) + ".";
    for (const auto& name : held->components().names()) array.append(fromText(head + name));
    return MStatus::kSuccess;
}

const char* MSelectionList::className() { return "MSelectionList"; }

std::vector<scene::Selected> Access::items(const MSelectionList& list) {
    std::vector<scene::Selected> items;
    for (const auto& item : list.items_) {
        const auto n = node(item.node);
        if (!n) continue;
        items.push_back({n});
        if (!item.plug.isNull()) {
            std::shared_ptr<scene::Node> keep;
            if (const scene::Cell* held = cell(item.plug, keep))
                items.back().part = held->attributePath();
            else
                items.pop_back();
        } else if (const auto* held = component(item.component))
            items.back().components = held->components();
    }
    return items;
}

void Access::append(MSelectionList& list, const scene::Selected& item) {
    MSelectionList::Item added{object(item.node.get()), MPlug(), {}};
    if (item.components) added.component = object(std::make_shared<ComponentObject>(*item.components));
    if (!item.part.empty())
        if (scene::Cell* cell = item.node->scene.tryPlug(*item.node, item.part)) added.plug = plug(*cell);
    list.append(std::move(added), false);
}
