#pragma once

#include "scene/Components.h"

#include <optional>
#include <string>
#include <vector>

namespace host::scene {

/// One item of a selection: a node, a plug of one, or components of a mesh shape.
struct Selected {
    NodePtr node;
    std::string part{}; ///< a plug's path ("translateX")
    std::optional<Components> components{};

    bool isWhole() const { return part.empty() && !components; }
    bool operator==(const Selected&) const = default;
};

/// @name Sets of items: each item once, at its first place; components of one kind and shape are one item
/// @{
std::vector<Selected> merged(const std::vector<Selected>& items);
std::vector<Selected> without(const std::vector<Selected>& items, const std::vector<Selected>& taken);
/// What is in one of the lists but not in both.
std::vector<Selected> toggled(const std::vector<Selected>& items, const std::vector<Selected>& others);
/// @}

} // namespace host::scene
