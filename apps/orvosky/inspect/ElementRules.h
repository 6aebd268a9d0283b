#pragma once

#include "Inspection.h"
#include "XmlFile.h"

#include <initializer_list>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace orvosky::inspect {

/// @name Limits of attributes
/// @{
inline constexpr double infinite = std::numeric_limits<double>::infinity();
inline constexpr double above0 = 1e-6; ///< the smallest number of six decimals
/// @}

enum class Kind {
    Number,
    Triple, ///< three numbers: a vector or a colour
    Flag,   ///< 0 or 1
    Integer,
    Text,
};

/// What an attribute has to be. Limits hold for each number of a triple.
struct AttributeRule {
    const char* name;
    Kind kind;
    double min = -infinite;
    double max = infinite;
    std::string_view unit = {};
    const char* onlyWith = nullptr; ///< a flag before it; the attribute is there just when that is 1
};

/// An element and all of its attributes.
struct ElementRule {
    const char* name;
    std::vector<AttributeRule> attributes;
};

/// Three numbers, or nothing. Digits are read in the same way in every locale.
std::optional<Triple> readTriple(std::string_view text);

/// Reads an element's attributes by its rule and adds what does not fit to the problems. Children are not looked at.
Element readElement(const XmlElement& xml, const ElementRule& rule, int number, Problems& problems);

/// Adds child elements that are not among the known ones, and text, to the problems.
void checkChildren(const XmlElement& xml, std::initializer_list<std::string_view> known, const std::string& where,
                   Problems& problems);

} // namespace orvosky::inspect
