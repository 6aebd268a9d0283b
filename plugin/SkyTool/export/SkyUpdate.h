#pragma once

namespace orvo {

/// Brings all live sky nodes of the scene up to date without GL, hidden ones and those of scenes without a renderer,
/// too: each class's bringUpToDate, in an order that settles. That is: procedural skies, whose colours feed others; the
/// fogs, whose colours follow one another; paths and meshes; particle clouds; domes.
///
/// Procedural skies, height fogs and shading parameters count wherever they lie, as they work by themselves; the other
/// kinds, which the renderer draws, below "OrvoSkyData".
/// Then it warns of what the nodes that take part in an export hold and no reader can use (warnOfUnusableValues).
/// @return false when an error was reported on the way; what it did not concern is up to date
bool updateSkySystem();

} // namespace orvo
