#pragma once

#include "scene/Value.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host::scene {

class Attribute;
using AttributePtr = std::shared_ptr<Attribute>;

enum class AttributeType : std::uint8_t {
    Numeric,  ///< one number
    Tuple,    ///< two to four numbers with a child attribute each
    Angle,    ///< radians, a double
    Distance, ///< centimetres, a double
    Time,     ///< ticks of 1/6000 s, a double
    Enum,     ///< a short with named fields
    String,
    Matrix,      ///< 4 x 4 doubles
    FloatMatrix, ///< 4 x 4 floats
    Data,        ///< heap data of one kind
    Message,
    Compound,
    Generic,
};

/// One component's limits; an empty limit does not bind.
struct Limits {
    std::optional<double> min, max, softMin, softMax;
};

/// A kind of value, as a generic attribute says what it takes.
struct ValueKind {
    enum class Form : std::uint8_t { Number, Text, Matrix, Data };
    Form form = Form::Number;
    DataKind data = DataKind::None;          ///< of Data
    NumericType numeric = NumericType::None; ///< of Number; None stands for any numbers
    int count = 0;                           ///< of Number
    bool operator==(const ValueKind&) const = default;
};
/// Nothing for an empty value.
std::optional<ValueKind> kindOf(const Value& value);

/// The definition of an attribute: shared by all nodes of a type, or a dynamic one of a single node.
class Attribute : public std::enable_shared_from_this<Attribute> {
public:
    std::string longName, shortName, niceName;
    AttributeType type = AttributeType::Numeric;
    NumericType numeric = NumericType::None; ///< of Numeric and Tuple
    DataKind dataKind = DataKind::None;      ///< of Data
    bool readable = true, writable = true, storable = true, connectable = true, cached = true;
    bool keyable = false, channelBox = false, hidden = false, array = false, indexMatters = true;
    bool usedAsColor = false, usedAsFilename = false, internal = false, worldSpace = false, dynamic = false;
    bool indeterminant = false, renderSource = false, affectsWorldSpace = false, affectsAppearance = false;
    bool usesArrayDataBuilder = false, proxy = false;
    int disconnectBehavior = 2;                        ///< MFnAttribute::kNothing
    Limits limits[4];                                  ///< Numeric, unit and Enum types use the first
    Value defaultValue;                                ///< of a leaf, or of a Tuple as a whole
    std::vector<std::pair<std::string, short>> fields; ///< Enum
    std::vector<AttributePtr> children;                ///< Tuple and Compound
    std::vector<ValueKind> accepted;                   ///< Generic: what it takes; empty for anything
    Attribute* parent = nullptr;
    int childIndex = 0; ///< place within the parent

    bool isCompound() const { return type == AttributeType::Tuple || type == AttributeType::Compound; }
    bool isUnit() const {
        return type == AttributeType::Angle || type == AttributeType::Distance || type == AttributeType::Time;
    }
    /// Whether a leaf of this attribute is held as numbers.
    bool isNumber() const { return type == AttributeType::Numeric || type == AttributeType::Enum || isUnit(); }
    /// Whether a Generic one takes values of the kind.
    bool accepts(const ValueKind& kind) const;
    bool named(std::string_view name) const { return longName == name || shortName == name; }
    const Attribute* child(std::string_view name) const;
    const Attribute& root() const;
    void addChild(AttributePtr child);
    std::optional<short> fieldIndex(std::string_view field) const;
    std::optional<std::string> fieldName(short index) const;

    /// The name that getAttr -type answers: "double3", "bool", "doubleLinear", "string", ...
    std::string typeName() const;

    /// @name Construction
    /// Names are taken as given; a tuple's children are named by the suffixes, or X, Y, Z where none are given.
    /// @{
    static AttributePtr number(std::string longName, std::string shortName, NumericType type, double value = 0);
    static AttributePtr unit(std::string longName, std::string shortName, AttributeType unitType, double value = 0);
    static AttributePtr tuple(std::string longName, std::string shortName, NumericType type, int count,
                              const char* suffixes = "XYZW", AttributeType childType = AttributeType::Numeric,
                              double value = 0);
    static AttributePtr tupleOf(std::string longName, std::string shortName, std::vector<AttributePtr> children);
    static AttributePtr enumeration(std::string longName, std::string shortName, short value,
                                    std::vector<std::string> fields);
    static AttributePtr text(std::string longName, std::string shortName);
    static AttributePtr matrix(std::string longName, std::string shortName);
    static AttributePtr data(std::string longName, std::string shortName, DataKind kind);
    static AttributePtr message(std::string longName, std::string shortName);
    static AttributePtr compound(std::string longName, std::string shortName, std::vector<AttributePtr> children);
    /// @}
};

/// Calls `visit` with the attribute and all that are part of it, depth first.
template <class Visit>
void forEachPart(const Attribute& attribute, const Visit& visit) {
    visit(attribute);
    for (const AttributePtr& part : attribute.children) forEachPart(*part, visit);
}

} // namespace host::scene
