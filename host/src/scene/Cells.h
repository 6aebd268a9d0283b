#pragma once

#include "scene/Node.h"

namespace host::scene {

/// Calls `visit` with the cell and all that have been made below it: parts of a compound, elements of an array.
template <class Visit>
void forEachCell(Cell& cell, const Visit& visit) {
    visit(cell);
    for (auto& child : cell.children)
        if (child) forEachCell(*child, visit);
    for (auto& [index, element] : cell.elements) forEachCell(*element, visit);
}

} // namespace host::scene
