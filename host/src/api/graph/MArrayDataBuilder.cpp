#include <maya/MArrayDataBuilder.h>

#include "api/graph/Handle.h"
#include "values/StatusOut.h"

#include <maya/MPlug.h>

#include <set>

using namespace host;
using host::api::Access;
using scene::Cell;

/// The elements, in cells that no plug shows yet.
struct MArrayDataBuilder::Elements {
    std::shared_ptr<scene::Node> node;
    scene::AttributePtr attribute;
    Cell array;
    Elements(std::shared_ptr<scene::Node> n, scene::AttributePtr a)
        : node(std::move(n)), attribute(std::move(a)), array(*node, *attribute, nullptr, -1) {}
};

namespace {

/// A node that is in no scene, for builders that are made without one.
std::shared_ptr<scene::Node> nobody() {
    auto& scene = scene::Scene::current();
    return std::make_shared<scene::Node>(scene, *scene.findType("node"));
}

/// Copies the values of a cell and of what it is made of.
void copyValues(Cell& from, Cell& to) {
    api::takeText(from);
    to.apiView.reset();
    if (!to.isArray() && !to.isTupleChild()) to.value = from.value;
    for (std::size_t k = 0; k < from.children.size(); ++k)
        if (from.children[k]) copyValues(*from.children[k], to.child(static_cast<int>(k)));
    if (!from.isArray()) return;
    for (auto& [index, element] : from.elements) copyValues(*element, to.element(index));
}

/// Whether others know the cell: by a connection, an undo, or because it is being computed.
bool known(const Cell& cell) {
    if (cell.source || !cell.destinations.empty() || cell.written || cell.computing) return true;
    for (const auto& child : cell.children)
        if (child && known(*child)) return true;
    for (const auto& [index, element] : cell.elements)
        if (known(*element)) return true;
    return false;
}

void forget(Cell& cell) {
    cell.apiView.reset();
    if (!cell.isArray() && !cell.isTupleChild()) cell.value = cell.attribute.defaultValue;
    for (auto& child : cell.children)
        if (child) forget(*child);
    for (auto& [index, element] : cell.elements) forget(*element);
}

bool builds(const scene::AttributePtr& attribute) {
    return attribute && attribute->array && attribute->usesArrayDataBuilder;
}

} // namespace

MArrayDataBuilder::MArrayDataBuilder(std::shared_ptr<Elements> elements) : elements_(std::move(elements)) {}

MArrayDataBuilder::MArrayDataBuilder(const MObject& attribute, unsigned int, MStatus* ReturnStatus) {
    auto a = Access::attribute(attribute);
    setStatus(ReturnStatus, builds(a) ? MStatus::kSuccess : MStatus::kFailure);
    if (builds(a)) elements_ = std::make_shared<Elements>(nobody(), std::move(a));
}

MArrayDataBuilder::MArrayDataBuilder(MDataBlock*, const MObject& attribute, unsigned int numElements,
                                     MStatus* ReturnStatus)
    : MArrayDataBuilder(attribute, numElements, ReturnStatus) {}

MArrayDataBuilder::MArrayDataBuilder(const MArrayDataBuilder& other) = default;
MArrayDataBuilder& MArrayDataBuilder::operator=(const MArrayDataBuilder& other) = default;
MArrayDataBuilder::~MArrayDataBuilder() = default;

MDataHandle MArrayDataBuilder::addElement(unsigned int index, MStatus* ReturnStatus) {
    const bool inRange = index <= static_cast<unsigned int>(scene::Scene::maxArrayIndex);
    setStatus(ReturnStatus, !elements_ ? MStatus::kFailure : inRange ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!elements_ || !inRange) return MDataHandle();
    return Access::dataHandle(elements_->array.element(static_cast<int>(index)));
}

MDataHandle MArrayDataBuilder::addLast(MStatus* ReturnStatus) {
    const bool empty = !elements_ || elements_->array.elements.empty();
    return addElement(empty ? 0 : static_cast<unsigned int>(elements_->array.elements.rbegin()->first) + 1,
                      ReturnStatus);
}

MArrayDataHandle MArrayDataBuilder::addLastArray(MStatus* s) { return MArrayDataHandle(addLast(), s); }
MArrayDataHandle MArrayDataBuilder::addElementArray(unsigned int index, MStatus* s) {
    return MArrayDataHandle(addElement(index), s);
}

MStatus MArrayDataBuilder::removeElement(unsigned int index) {
    if (!elements_) return MStatus::kFailure;
    const bool known = index <= static_cast<unsigned int>(scene::Scene::maxArrayIndex) &&
                       elements_->array.elements.contains(static_cast<int>(index));
    if (!known) return MStatus::kInvalidParameter;
    elements_->array.elements.erase(static_cast<int>(index));
    return MStatus::kSuccess;
}

unsigned int MArrayDataBuilder::elementCount(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, elements_ ? MStatus::kSuccess : MStatus::kFailure);
    return elements_ ? static_cast<unsigned int>(elements_->array.elements.size()) : 0;
}

MStatus MArrayDataBuilder::growArray(unsigned int) { return elements_ ? MStatus::kSuccess : MStatus::kFailure; }
MStatus MArrayDataBuilder::setGrowSize(unsigned int) { return elements_ ? MStatus::kSuccess : MStatus::kFailure; }
const char* MArrayDataBuilder::className() { return "MArrayDataBuilder"; }

MArrayDataBuilder MArrayDataHandle::builder(MStatus* ReturnStatus) {
    Cell* cell = Access::cell(array_);
    const auto attribute =
        cell ? std::const_pointer_cast<scene::Attribute>(cell->attribute.shared_from_this()) : nullptr;
    const bool good = cell && cell->isArray() && builds(attribute);
    setStatus(ReturnStatus, good ? MStatus::kSuccess : MStatus::kFailure);
    if (!good) return MArrayDataBuilder(nullptr);
    auto elements = std::make_shared<MArrayDataBuilder::Elements>(cell->node.shared_from_this(), attribute);
    copyValues(*cell, elements->array);
    return MArrayDataBuilder(std::move(elements));
}

MStatus MArrayDataHandle::set(MArrayDataBuilder& builder) {
    Cell* cell = Access::cell(array_);
    if (!cell || !cell->isArray() || !builder.elements_) return MStatus::kFailure;
    if (builder.elements_->attribute.get() != &cell->attribute) return MStatus::kInvalidParameter;
    Cell& built = builder.elements_->array;
    for (auto at = cell->elements.begin(); at != cell->elements.end();) {
        if (built.elements.contains(at->first)) {
            ++at;
        } else if (known(*at->second)) {
            // It stays, without a value of its own.
            forget(*at->second);
            ++at;
        } else {
            at->second->noteFreed();
            at = cell->elements.erase(at);
        }
    }
    copyValues(built, *cell);
    return MStatus::kSuccess;
}
