#include "api/graph/Handle.h"

#include <maya/MFnData.h>
#include <maya/MObjectHandle.h>

#include <functional>

using namespace host;
using host::api::Access;
using host::api::Handle;

namespace {

MFn::Type attributeType(const scene::Attribute& a) {
    using scene::AttributeType;
    switch (a.type) {
    case AttributeType::Numeric: return MFn::kNumericAttribute;
    case AttributeType::Tuple: {
        const bool two = a.children.size() == 2;
        switch (a.numeric) {
        case scene::NumericType::Double:
            return two                      ? MFn::kAttribute2Double
                   : a.children.size() == 4 ? MFn::kAttribute4Double
                                            : MFn::kAttribute3Double;
        case scene::NumericType::Float: return two ? MFn::kAttribute2Float : MFn::kAttribute3Float;
        case scene::NumericType::Short: return two ? MFn::kAttribute2Short : MFn::kAttribute3Short;
        default: return two ? MFn::kAttribute2Int : MFn::kAttribute3Int;
        }
    }
    case AttributeType::Angle: return MFn::kDoubleAngleAttribute;
    case AttributeType::Distance: return MFn::kDoubleLinearAttribute;
    case AttributeType::Time: return MFn::kTimeAttribute;
    case AttributeType::Enum: return MFn::kEnumAttribute;
    case AttributeType::Matrix: return MFn::kMatrixAttribute;
    case AttributeType::FloatMatrix: return MFn::kFloatMatrixAttribute;
    case AttributeType::Message: return MFn::kMessageAttribute;
    case AttributeType::Compound: return MFn::kCompoundAttribute;
    case AttributeType::Generic: return MFn::kGenericAttribute;
    case AttributeType::String:
    case AttributeType::Data: return MFn::kTypedAttribute;
    }
    return MFn::kAttribute;
}

MFn::Type dataType(const scene::Value& v) {
    if (std::holds_alternative<scene::Numeric>(v)) return MFn::kNumericData;
    if (std::holds_alternative<std::string>(v)) return MFn::kStringData;
    if (scene::matrixIn(v)) return MFn::kMatrixData;
    if (scene::floatMatrixIn(v)) return MFn::kMatrixFloatData;
    if (auto* d = std::get_if<scene::DataPtr>(&v); d && *d) {
        switch ((*d)->kind()) {
        case scene::DataKind::Mesh: return MFn::kMeshData;
        case scene::DataKind::StringArray: return MFn::kStringArrayData;
        case scene::DataKind::DoubleArray: return MFn::kDoubleArrayData;
        case scene::DataKind::IntArray: return MFn::kIntArrayData;
        case scene::DataKind::PointArray: return MFn::kPointArrayData;
        case scene::DataKind::VectorArray: return MFn::kVectorArrayData;
        case scene::DataKind::ComponentList: return MFn::kComponentListData;
        default: break;
        }
    }
    return MFn::kData;
}

MFn::Type componentType(scene::ComponentKind kind) {
    switch (kind) {
    case scene::ComponentKind::Vertex: return MFn::kMeshVertComponent;
    case scene::ComponentKind::Edge: return MFn::kMeshEdgeComponent;
    case scene::ComponentKind::Face: return MFn::kMeshPolygonComponent;
    case scene::ComponentKind::Uv: return MFn::kMeshMapComponent;
    }
    return MFn::kComponent;
}

} // namespace

MObject MObject::kNullObj;

MObject::MObject() = default;
MObject::MObject(const MObject& other) = default;
MObject::~MObject() = default;
MObject& MObject::operator=(const MObject& other) = default;

bool MObject::isNull() const { return !handle_; }

MFn::Type MObject::apiType() const {
    if (!handle_) return MFn::kInvalid;
    if (auto a = Access::attribute(*this)) return attributeType(*a);
    if (auto* d = Access::data(*this)) return dataType(d->value);
    if (handle_->kind == Handle::Kind::Plugin) return MFn::kPlugin;
    if (const auto* c = Access::component(*this)) return componentType(c->type());
    const auto n = Access::node(*this);
    return n ? static_cast<MFn::Type>(n->type.apiType) : MFn::kInvalid;
}

bool MObject::hasFn(MFn::Type fs) const {
    if (!handle_) return false;
    if (fs == MFn::kBase) return true;
    const MFn::Type own = apiType();
    if (own == fs && own != MFn::kInvalid) return true;
    switch (handle_->kind) {
    case Handle::Kind::Node:
        if (const auto n = Access::node(*this)) {
            for (const scene::NodeType* t = &n->type; t; t = t->base)
                if (t->apiType == fs) return true;
        }
        return false;
    case Handle::Kind::Attribute: {
        const auto a = Access::attribute(*this);
        if (fs == MFn::kAttribute) return true;
        if (fs == MFn::kNumericAttribute) return a->type == scene::AttributeType::Tuple;
        if (fs == MFn::kCompoundAttribute) return a->isCompound();
        if (fs == MFn::kUnitAttribute) return a->isUnit();
        // Both function sets make attributes that are told by another type.
        if (fs == MFn::kMatrixAttribute) return a->type == scene::AttributeType::FloatMatrix;
        if (fs == MFn::kTypedAttribute)
            return a->type == scene::AttributeType::Matrix || a->type == scene::AttributeType::Generic;
        return false;
    }
    case Handle::Kind::Data:
        return fs == MFn::kData || (fs == MFn::kMesh && own == MFn::kMeshData) ||
               (fs == MFn::kGeometryData && own == MFn::kMeshData);
    case Handle::Kind::Component:
        return fs == MFn::kComponent || fs == MFn::kMeshComponent || fs == MFn::kSingleIndexedComponent;
    case Handle::Kind::Plugin: return false;
    }
    return false;
}

const char* MObject::apiTypeStr() const {
    if (!handle_) return "kInvalid";
    switch (handle_->kind) {
    case Handle::Kind::Attribute: return "kAttribute";
    case Handle::Kind::Data: return "kData";
    case Handle::Kind::Plugin: return "kPlugin";
    case Handle::Kind::Component:
        switch (Access::component(*this)->type()) {
        case scene::ComponentKind::Vertex: return "kMeshVertComponent";
        case scene::ComponentKind::Edge: return "kMeshEdgeComponent";
        case scene::ComponentKind::Face: return "kMeshPolygonComponent";
        case scene::ComponentKind::Uv: return "kMeshMapComponent";
        }
        break;
    case Handle::Kind::Node: break;
    }
    const auto n = Access::node(*this);
    if (!n) return "kInvalid";
    if (hasFn(MFn::kTransform)) return "kTransform";
    if (hasFn(MFn::kMesh)) return "kMesh";
    if (hasFn(MFn::kCamera)) return "kCamera";
    if (hasFn(MFn::kPluginLocatorNode)) return "kPluginLocatorNode";
    if (hasFn(MFn::kLocator)) return "kLocator";
    return hasFn(MFn::kPluginDependNode) ? "kPluginDependNode" : "kDependencyNode";
}

bool MObject::operator==(const MObject& other) const {
    if (handle_ == other.handle_) return true;
    if (!handle_ || !other.handle_ || handle_->kind != other.handle_->kind) return false;
    const auto a = Access::attribute(*this);
    return a && a == Access::attribute(other);
}

bool MObject::operator!=(const MObject& other) const { return !(*this == other); }

MObjectHandle::MObjectHandle() = default;
MObjectHandle::MObjectHandle(const MObject& object) : object_(object) {}
MObjectHandle::MObjectHandle(const MObjectHandle& handle) = default;
MObjectHandle& MObjectHandle::operator=(const MObjectHandle& other) = default;
MObjectHandle& MObjectHandle::operator=(const MObject& other) {
    object_ = other;
    return *this;
}
MObject MObjectHandle::object() const { return isAlive() ? object_ : MObject(); }
const MObject& MObjectHandle::objectRef() const { return object_; }
unsigned int MObjectHandle::hashCode() const {
    // Each object of an attribute has a handle of its own; equal objects have equal codes.
    const auto a = Access::attribute(object_);
    const void* const identity = a ? static_cast<const void*>(a.get()) : Access::handle(object_);
    return static_cast<unsigned int>(std::hash<const void*>()(identity));
}
bool MObjectHandle::isAlive() const {
    if (object_.isNull()) return false;
    return Access::handle(object_)->kind != Handle::Kind::Node || Access::node(object_) != nullptr;
}
bool MObjectHandle::isValid() const {
    if (!isAlive()) return false;
    const auto n = Access::node(object_);
    return !n || n->inScene;
}
bool MObjectHandle::operator==(const MObject& obj) const { return object_ == obj; }
bool MObjectHandle::operator==(const MObjectHandle& handle) const { return object_ == handle.object_; }
bool MObjectHandle::operator!=(const MObject& obj) const { return object_ != obj; }
bool MObjectHandle::operator!=(const MObjectHandle& handle) const { return object_ != handle.object_; }

namespace host::api {

bool belongsToType(const scene::Attribute& root) {
    for (const auto* type : scene::Scene::current().types())
        if (type->find(root.longName) == &root) return true;
    return false;
}

MObject Access::object(std::shared_ptr<Handle> handle) {
    MObject o;
    o.handle_ = std::move(handle);
    return o;
}

MObject Access::object(scene::Node* node) {
    if (!node) return MObject();
    if (!node->apiHandle) node->apiHandle = std::make_shared<NodeHandle>(node->weak_from_this());
    return object(std::static_pointer_cast<Handle>(std::static_pointer_cast<NodeHandle>(node->apiHandle)));
}

MObject Access::object(const scene::Attribute* attribute) {
    if (!attribute) return MObject();
    return object(
        std::make_shared<AttributeHandle>(std::const_pointer_cast<scene::Attribute>(attribute->shared_from_this())));
}

MObject Access::object(scene::Value value) { return object(std::make_shared<DataObject>(std::move(value))); }

std::shared_ptr<scene::Node> Access::node(const MObject& o) {
    const auto* h = handle(o);
    return h && h->kind == Handle::Kind::Node ? static_cast<const NodeHandle*>(h)->node.lock() : nullptr;
}

std::shared_ptr<scene::Node> Access::dagNode(const MObject& o) {
    auto n = node(o);
    return n && n->dag() ? n : nullptr;
}

scene::AttributePtr Access::attribute(const MObject& o) {
    const auto* h = handle(o);
    return h && h->kind == Handle::Kind::Attribute ? static_cast<const AttributeHandle*>(h)->attribute : nullptr;
}

DataObject* Access::data(const MObject& o) {
    auto* h = handle(o);
    return h && h->kind == Handle::Kind::Data ? static_cast<DataObject*>(h) : nullptr;
}

const scene::Components& ComponentObject::components() const {
    if (!added_.empty()) {
        set_.add(scene::Components::of(set_.kind(), std::move(added_)));
        added_.clear();
        indices_.clear();
    }
    return set_;
}

const std::vector<int>& ComponentObject::indices() const {
    const auto& all = components();
    if (indices_.empty()) indices_ = all.indices();
    return indices_;
}

void ComponentObject::replace(scene::Components components) {
    set_ = std::move(components);
    added_.clear();
    indices_.clear();
}

ComponentObject* Access::component(const MObject& o) {
    auto* h = handle(o);
    return h && h->kind == Handle::Kind::Component ? static_cast<ComponentObject*>(h) : nullptr;
}

Plugin* Access::plugin(const MObject& o) {
    const auto* h = handle(o);
    return h && h->kind == Handle::Kind::Plugin ? static_cast<const PluginHandle*>(h)->plugin : nullptr;
}

} // namespace host::api
