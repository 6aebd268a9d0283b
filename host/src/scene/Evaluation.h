#pragma once

#include "scene/Node.h"

namespace host::scene {

/// Brings the cell's value up to date: pulls connections and computes what is dirty. A cycle is reported once a
/// cell as a warning, and ends with the value that was there.
void evaluate(Cell& cell);

/// Marks as dirty everything that depends on the cell (not the cell itself).
void dirtyDependents(Cell& cell);
/// Marks the cell, what it is made of, and everything that depends on it, as dirty.
void dirtyWithDependents(Cell& cell);

/// Forgets the world matrices at and below the node, with everything that depends on them.
void dirtyWorld(DagNode& node);

/// Clears the dirty flag of the cell and of what it is made of.
void setClean(Cell& cell);

/// Copies the source's value, converting numbers, and angles and times to and from plain numbers by the user's
/// units. Cells that cannot be converted are left alone.
void assign(Cell& destination, Cell& source);

/// @name Unit attributes: internal values (radians, centimetres, ticks) to and from the user's units
/// Plain numbers pass as they are.
/// @{
double toUi(const Attribute& attribute, double internalValue);
double fromUi(const Attribute& attribute, double uiValue);
/// @}

/// Whether a value may flow from one attribute to the other.
bool compatible(const Cell& source, const Cell& destination);

} // namespace host::scene
