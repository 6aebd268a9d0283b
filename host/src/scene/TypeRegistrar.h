#pragma once

#include "scene/Scene.h"

#include <maya/MFn.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace host::scene {

/// @name Marks on attributes, for the tables of node types
/// @{
inline AttributePtr readOnly(AttributePtr a) {
    a->writable = false;
    a->storable = false;
    return a;
}

inline AttributePtr array(AttributePtr a) {
    a->array = true;
    return a;
}

/// An array whose elements have no order: connections take the next free one.
inline AttributePtr unordered(AttributePtr a) {
    a->array = true;
    a->indexMatters = false;
    return a;
}

inline AttributePtr worldArray(AttributePtr a) {
    a->array = true;
    a->worldSpace = true;
    a->writable = false;
    a->storable = false;
    return a;
}

inline AttributePtr keyable(AttributePtr a) {
    // Of a tuple the parts are keyable, not the whole.
    a->keyable = a->children.empty();
    for (auto& c : a->children) c->keyable = true;
    return a;
}

inline AttributePtr limited(AttributePtr a, std::optional<double> min, std::optional<double> max = {}) {
    a->limits[0].min = min;
    a->limits[0].max = max;
    return a;
}

inline AttributePtr color(const char* longName, const char* shortName, double r, double g, double b) {
    auto a = Attribute::tuple(longName, shortName, NumericType::Float, 3, "RGB");
    a->usedAsColor = true;
    const double rgb[3] = {r, g, b};
    for (int k = 0; k < 3; ++k)
        a->children[static_cast<std::size_t>(k)]->defaultValue = Numeric(NumericType::Float, 1, rgb[k]);
    a->defaultValue = Numeric(NumericType::Float, 3, r, g, b);
    return a;
}
/// @}

/// Enters node types into a scene.
class Registrar {
public:
    explicit Registrar(Scene& scene) : scene_(scene) {}

    NodeType& type(const char* name, const char* base, NodeType::Kind kind, MFn::Type apiType,
                   std::vector<AttributePtr> attributes, NodeType::MakeBehavior behavior = {}) {
        auto t = std::make_unique<NodeType>(name, base ? scene_.findType(base) : nullptr, kind, apiType);
        for (auto& a : attributes) t->add(std::move(a));
        t->makeBehavior = std::move(behavior);
        if (!t->makeBehavior && base) t->makeBehavior = t->base->makeBehavior;
        return *scene_.registerType(std::move(t));
    }

    NodeType& abstract(const char* name, const char* base, NodeType::Kind kind, MFn::Type apiType,
                       std::vector<AttributePtr> attributes, NodeType::MakeBehavior behavior = {}) {
        NodeType& t = type(name, base, kind, apiType, std::move(attributes), std::move(behavior));
        t.isAbstract = true;
        return t;
    }

private:
    Scene& scene_;
};

/// @name Types by theme; those of BuiltinTypes.cpp come first
/// @{
/// Nodes that only calculate: multiplyDivide and its like.
void registerUtilityTypes(Registrar& registrar);
/// Nodes that hold a transform to others: pointConstraint and its like.
void registerConstraintTypes(Registrar& registrar);
/// @}

} // namespace host::scene
