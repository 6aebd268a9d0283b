#include "scene/AttributeKind.h"

#include <algorithm>
#include <iterator>

namespace host::scene {
namespace {

/// Where a name is used.
enum Use : unsigned {
    Attributes = 1, ///< addAttr -attributeType
    DataTypes = 2,  ///< addAttr -dataType, setAttr -type
    Answers = 4,    ///< the one that getAttr -type answers
};

struct Row {
    std::string_view name;
    unsigned use;
    AttributeKind kind;
};

using T = AttributeType;
using N = NumericType;
using D = DataKind;

constexpr Row table[] = {
    {"bool", Attributes | Answers, {T::Numeric, N::Bool}},
    {"char", Attributes | Answers, {T::Numeric, N::Char}},
    {"byte", Attributes | Answers, {T::Numeric, N::Byte}},
    {"short", Attributes | Answers, {T::Numeric, N::Short}},
    {"long", Attributes | Answers, {T::Numeric, N::Int}},
    {"int", Attributes, {T::Numeric, N::Int}},
    {"Int64", Attributes | Answers, {T::Numeric, N::Int64}},
    {"int64", Attributes, {T::Numeric, N::Int64}},
    {"float", Attributes | Answers, {T::Numeric, N::Float}},
    {"double", Attributes | Answers, {T::Numeric, N::Double}},
    {"enum", Attributes | Answers, {T::Enum, N::Short}},
    {"doubleAngle", Attributes | Answers, {T::Angle, N::Double}},
    {"floatAngle", Attributes, {T::Angle, N::Double}},
    {"doubleLinear", Attributes | Answers, {T::Distance, N::Double}},
    {"floatLinear", Attributes, {T::Distance, N::Double}},
    {"time", Attributes | Answers, {T::Time, N::Double}},
    {"message", Attributes | Answers, {T::Message}},
    {"compound", Attributes, {T::Compound}},
    {"TdataCompound", Answers, {T::Compound}},
    {"generic", Attributes | Answers, {T::Generic}},
    {"string", DataTypes | Answers, {T::String}},
    {"matrix", Attributes | DataTypes | Answers, {T::Matrix}},
    {"fltMatrix", Attributes | DataTypes | Answers, {T::FloatMatrix}},
    {"mesh", DataTypes | Answers, {T::Data, N::None, D::Mesh}},
    {"stringArray", DataTypes | Answers, {T::Data, N::None, D::StringArray}},
    {"Int32Array", DataTypes | Answers, {T::Data, N::None, D::IntArray}},
    {"floatArray", DataTypes | Answers, {T::Data, N::None, D::FloatArray}},
    {"doubleArray", DataTypes | Answers, {T::Data, N::None, D::DoubleArray}},
    {"vectorArray", DataTypes | Answers, {T::Data, N::None, D::VectorArray}},
    {"pointArray", DataTypes | Answers, {T::Data, N::None, D::PointArray}},
    {"matrixArray", DataTypes | Answers, {T::Data, N::None, D::MatrixArray}},
    {"componentList", DataTypes | Answers, {T::Data, N::None, D::ComponentList}},
    {"data", Answers, {T::Data}},
};

const Row* rowNamed(std::string_view name, Use use) {
    const auto row =
        std::find_if(std::begin(table), std::end(table), [&](const Row& r) { return (r.use & use) && r.name == name; });
    return row == std::end(table) ? nullptr : row;
}

/// The kind of "double3" and its like.
std::optional<AttributeKind> tupleNamed(std::string_view name) {
    if (name.empty() || name.back() < '2' || name.back() > '4') return std::nullopt;
    const Row* scalar = rowNamed(name.substr(0, name.size() - 1), Attributes);
    if (!scalar || scalar->kind.type != T::Numeric) return std::nullopt;
    return AttributeKind{T::Tuple, scalar->kind.numeric, D::None, name.back() - '0'};
}

std::optional<AttributeKind> kindNamed(std::string_view name, Use use) {
    const Row* row = rowNamed(name, use);
    return row ? std::optional(row->kind) : tupleNamed(name);
}

/// The numbers' type counts of Numeric alone, the data's of Data.
std::string_view answerFor(AttributeType type, NumericType numeric, DataKind data) {
    const auto row = std::find_if(std::begin(table), std::end(table), [&](const Row& r) {
        return (r.use & Answers) && r.kind.type == type && (type != T::Numeric || r.kind.numeric == numeric) &&
               (type != T::Data || r.kind.data == data);
    });
    return row == std::end(table) ? "double" : row->name;
}

} // namespace

std::optional<AttributeKind> attributeTypeNamed(std::string_view name) { return kindNamed(name, Attributes); }
std::optional<AttributeKind> dataTypeNamed(std::string_view name) { return kindNamed(name, DataTypes); }

std::string_view dataTypeName(DataKind kind) { return answerFor(T::Data, N::None, kind); }

std::string Attribute::typeName() const {
    if (type != T::Tuple) return std::string(answerFor(type, numeric, dataKind));
    return std::string(answerFor(T::Numeric, numeric, D::None)) + std::to_string(children.size());
}

std::string addedTypeName(const Attribute& attribute) {
    return attribute.type == T::Compound ? "compound" : attribute.typeName();
}

} // namespace host::scene
