#include "scene/Attribute.h"

#include <algorithm>

namespace host::scene {
namespace {

AttributePtr make(std::string longName, std::string shortName, AttributeType type) {
    auto a = std::make_shared<Attribute>();
    a->longName = std::move(longName);
    a->shortName = std::move(shortName);
    a->type = type;
    return a;
}

} // namespace

const Attribute* Attribute::child(std::string_view name) const {
    for (const auto& c : children)
        if (c->named(name)) return c.get();
    return nullptr;
}

const Attribute& Attribute::root() const {
    const Attribute* a = this;
    while (a->parent) a = a->parent;
    return *a;
}

void Attribute::addChild(AttributePtr c) {
    c->parent = this;
    c->childIndex = static_cast<int>(children.size());
    children.push_back(std::move(c));
}

std::optional<short> Attribute::fieldIndex(std::string_view field) const {
    for (const auto& [name, index] : fields)
        if (name == field) return index;
    return std::nullopt;
}

std::optional<std::string> Attribute::fieldName(short index) const {
    for (const auto& [name, i] : fields)
        if (i == index) return name;
    return std::nullopt;
}

AttributePtr Attribute::number(std::string longName, std::string shortName, NumericType type, double value) {
    auto a = make(std::move(longName), std::move(shortName), AttributeType::Numeric);
    a->numeric = type;
    a->defaultValue = Numeric(type, 1, value);
    return a;
}

std::optional<ValueKind> kindOf(const Value& value) {
    using Form = ValueKind::Form;
    if (const auto* n = std::get_if<Numeric>(&value)) return ValueKind{Form::Number, DataKind::None, n->type, n->count};
    if (std::holds_alternative<std::string>(value)) return ValueKind{Form::Text};
    if (matrixIn(value) || floatMatrixIn(value)) return ValueKind{Form::Matrix};
    const auto* data = std::get_if<DataPtr>(&value);
    return data && *data ? std::optional(ValueKind{Form::Data, (*data)->kind()}) : std::nullopt;
}

bool Attribute::accepts(const ValueKind& kind) const {
    return accepted.empty() || std::any_of(accepted.begin(), accepted.end(), [&](const ValueKind& a) {
               return a == kind ||
                      (a.form == kind.form && a.form == ValueKind::Form::Number && a.numeric == NumericType::None);
           });
}

AttributePtr Attribute::unit(std::string longName, std::string shortName, AttributeType unitType, double value) {
    auto a = make(std::move(longName), std::move(shortName), unitType);
    a->numeric = NumericType::Double;
    a->defaultValue = Numeric(NumericType::Double, 1, value);
    return a;
}

AttributePtr Attribute::tuple(std::string longName, std::string shortName, NumericType type, int count,
                              const char* suffixes, AttributeType childType, double value) {
    std::vector<AttributePtr> parts;
    for (int k = 0; k < count; ++k) {
        // Short names take the suffix in lower case when they are abbreviations ("tx"), as it stands otherwise.
        const std::string suffix(1, suffixes[k]);
        const bool abbreviated = shortName != longName;
        std::string brief = shortName;
        brief += abbreviated && suffixes[k] >= 'A' && suffixes[k] <= 'Z' ? static_cast<char>(suffixes[k] - 'A' + 'a')
                                                                         : suffixes[k];
        parts.push_back(childType == AttributeType::Numeric ? number(longName + suffix, brief, type, value)
                                                            : unit(longName + suffix, brief, childType, value));
    }
    return tupleOf(std::move(longName), std::move(shortName), std::move(parts));
}

AttributePtr Attribute::tupleOf(std::string longName, std::string shortName, std::vector<AttributePtr> parts) {
    auto a = make(std::move(longName), std::move(shortName), AttributeType::Tuple);
    a->numeric = parts.front()->numeric;
    Numeric value(a->numeric, static_cast<int>(parts.size()));
    for (std::size_t k = 0; k < parts.size(); ++k) {
        if (auto* n = std::get_if<Numeric>(&parts[k]->defaultValue)) value.set(static_cast<int>(k), n->get());
        a->addChild(std::move(parts[k]));
    }
    a->defaultValue = value;
    return a;
}

AttributePtr Attribute::enumeration(std::string longName, std::string shortName, short value,
                                    std::vector<std::string> names) {
    auto a = make(std::move(longName), std::move(shortName), AttributeType::Enum);
    a->numeric = NumericType::Short;
    a->defaultValue = Numeric(NumericType::Short, 1, value);
    short index = 0;
    for (auto& name : names) a->fields.emplace_back(std::move(name), index++);
    return a;
}

AttributePtr Attribute::text(std::string longName, std::string shortName) {
    auto a = make(std::move(longName), std::move(shortName), AttributeType::String);
    a->defaultValue = std::string();
    return a;
}

AttributePtr Attribute::matrix(std::string longName, std::string shortName) {
    auto a = make(std::move(longName), std::move(shortName), AttributeType::Matrix);
    a->defaultValue = MMatrix();
    return a;
}

AttributePtr Attribute::data(std::string longName, std::string shortName, DataKind kind) {
    auto a = make(std::move(longName), std::move(shortName), AttributeType::Data);
    a->dataKind = kind;
    a->defaultValue = DataPtr();
    return a;
}

AttributePtr Attribute::message(std::string longName, std::string shortName) {
    auto a = make(std::move(longName), std::move(shortName), AttributeType::Message);
    a->storable = false;
    return a;
}

AttributePtr Attribute::compound(std::string longName, std::string shortName, std::vector<AttributePtr> parts) {
    auto a = make(std::move(longName), std::move(shortName), AttributeType::Compound);
    for (auto& part : parts) a->addChild(std::move(part));
    return a;
}

} // namespace host::scene
