#pragma once

#include "base/NumberText.h"

#include <ostream>
#include <type_traits>

namespace host {

/// Writes "[a, b, c]".
template <class Array>
std::ostream& writeArray(std::ostream& os, const Array& array) {
    os << '[';
    const char* separator = "";
    for (const auto& element : array) {
        os << separator;
        if constexpr (std::is_floating_point_v<std::remove_cvref_t<decltype(element)>>)
            os << numberText(static_cast<double>(element), static_cast<int>(os.precision()));
        else if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(element)>>)
            os << std::to_string(element);
        else
            os << element;
        separator = ", ";
    }
    return os << ']';
}

} // namespace host
