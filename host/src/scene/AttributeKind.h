#pragma once

#include "scene/Attribute.h"

#include <optional>
#include <string>
#include <string_view>

namespace host::scene {

/// What the name of a type says of an attribute.
struct AttributeKind {
    AttributeType type = AttributeType::Numeric;
    NumericType numeric = NumericType::None; ///< of numbers
    DataKind data = DataKind::None;          ///< of Data
    int count = 0;                           ///< of a tuple: 2 to 4
};

/// The type that "addAttr -attributeType" takes by this name, such as "double3", "enum" or "compound"; nothing for one
/// that is not known here.
std::optional<AttributeKind> attributeTypeNamed(std::string_view name);
/// The same for "addAttr -dataType" and "setAttr -type": "string", "matrix", "Int32Array".
std::optional<AttributeKind> dataTypeNamed(std::string_view name);

/// The name of data of a kind, as setAttr, getAttr and addAttr have it.
std::string_view dataTypeName(DataKind kind);
/// The name that addAttr takes for an attribute like this one: that of its type, but "compound" for a compound.
std::string addedTypeName(const Attribute& attribute);

} // namespace host::scene
