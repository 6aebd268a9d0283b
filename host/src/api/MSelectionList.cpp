#include <maya/MSelectionList.h>

#include "api/Handle.h"
#include "api/StatusOut.h"
#include "api/Text.h"

#include <maya/MStringArray.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::toText;
using scene::Scene;

MSelectionList::MSelectionList() = default;
MSelectionList::MSelectionList(const MSelectionList& srcList) = default;
MSelectionList::~MSelectionList() = default;
MSelectionList& MSelectionList::operator=(const MSelectionList& other) = default;

bool MSelectionList::same(const Item& a, const Item& b) const {
    return a.node == b.node && a.part == b.part && a.plug.isNull() == b.plug.isNull() &&
           (a.plug.isNull() || a.plug == b.plug);
}

MStatus MSelectionList::append(Item item, bool merge) {
    if (item.node.isNull()) return MStatus::kInvalidParameter;
    if (merge && std::any_of(items_.begin(), items_.end(), [&](const Item& i) { return same(i, item); }))
        return MStatus::kSuccess;
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
    if (&component != &MObject::kNullObj) component = MObject();
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

MStatus MSelectionList::add(const MDagPath& object, const MObject&, const bool mergeWithExisting) {
    return append({object.node(), MPlug(), {}}, mergeWithExisting);
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
    // Components are kept as their text.
    static const char* const components[] = {"vtx[", "f[", "e[", "map[", "vtxFace["};
    const bool component =
        std::any_of(std::begin(components), std::end(components), [&](const char* c) { return part.rfind(c, 0) == 0; });
    return component ? append({Access::object(node), MPlug(), part}, true) : MStatus(MStatus::kInvalidParameter);
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

MStatus MSelectionList::replace(unsigned int index, const MDagPath& item, const MObject&) {
    return replace(index, item.node());
}

MStatus MSelectionList::replace(unsigned int index, const MPlug& plug) {
    if (index >= items_.size() || plug.isNull()) return MStatus::kInvalidParameter;
    items_[index] = {plug.node(), plug, {}};
    return MStatus::kSuccess;
}

bool MSelectionList::hasItem(const MObject& item, MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return std::any_of(items_.begin(), items_.end(),
                       [&](const Item& i) { return i.node == item && i.plug.isNull() && i.part.empty(); });
}

bool MSelectionList::hasItem(const MDagPath& item, const MObject&, MStatus* ReturnStatus) const {
    return hasItem(item.node(), ReturnStatus);
}

bool MSelectionList::hasItem(const MPlug& plug, MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return std::any_of(items_.begin(), items_.end(), [&](const Item& i) { return !i.plug.isNull() && i.plug == plug; });
}

MStatus MSelectionList::merge(const MSelectionList& other, const MergeStrategy strategy) {
    for (const Item& item : std::vector<Item>(other.items_)) {
        const auto at = std::find_if(items_.begin(), items_.end(), [&](const Item& i) { return same(i, item); });
        if (at == items_.end() && strategy != kRemoveFromList)
            items_.push_back(item);
        else if (at != items_.end() && strategy != kMergeNormal)
            items_.erase(at);
    }
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
    std::string text = n->scene.displayName(*n);
    if (!item.part.empty()) text += "." + item.part;
    return array.append(fromText(text));
}

const char* MSelectionList::className() { return "MSelectionList"; }
