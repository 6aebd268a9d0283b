#pragma once

#include "scene/CurveKeys.h"
#include "scene/Node.h"

#include <string_view>
#include <utility>
#include <vector>

namespace host::scene {

class Scene;

/// The scene's clock: its outTime is the scene's current time.
std::unique_ptr<NodeBehavior> makeTimeBehavior(Node& node);

/// A curve over time, or over a number. Over time its input is the scene's current time unless something is connected.
///
/// Fixed tangents are evaluated from the vectors that the curve holds: as slopes, or with weighted tangents as the
/// control points of a Bezier curve in time and value. Linear, flat, step and stepnext do as named. Spline tangents
/// have the slope between the neighbours; clamped ones, too, but level where values are close together; plateau and
/// auto ones are level at ends and extremes, and never swing beyond the neighbours. Infinity: constant, linear, cycle,
/// cycle with offset and oscillate.
///
/// The lists of keys are kept as plain data: cells of their plugs come into being for those who ask for them.
std::unique_ptr<NodeBehavior> makeAnimCurve(Node& node);

/// The keys of a curve; null for nodes of other kinds. Whoever changes them tells so with curveChanged().
CurveKeys* curveKeys(Node& curve);
void curveChanged(Node& curve);
/// The list of a curve that a name means ("ktv", "keyTanInX"); nothing for other names.
std::optional<CurveKey::List> curveList(std::string_view name);
/// A number of a list of a key as the plug shows it, and the other way round. `list` is not TimeValue.
double curveNumber(const CurveKey& key, CurveKey::List list);
/// False when the list cannot have the value.
bool setCurveNumber(CurveKey& key, CurveKey::List list, double value);
/// What the curve's other attributes say.
CurveKeys::Shape curveShape(Node& curve);

/// Puts a key on the plug, making a curve of the fitting kind when it has none. Time in ticks, value in internal
/// units; a key at the same time is replaced. Throws SceneError for plugs that cannot be animated.
void setKey(Scene& scene, Cell& plug, double time, double value, Tangent in, Tangent out);

/// The same for a curve that is there: `at` is a time in ticks, or what its input is compared with.
void setCurveKey(Scene& scene, Node& curve, double at, double value, Tangent in, Tangent out);
/// @name The keys of a curve one by one, by their places in the order of their times (undoable)
/// @{
/// Puts in a key; one at the same time is replaced. @return its place
int addKey(Scene& scene, Node& curve, const CurveKey& key);
/// Puts in many at once, as addKey would one after another. Without `keepOthers` the keys between the first and the
/// last of them go.
void addKeys(Scene& scene, Node& curve, std::vector<CurveKey> keys, bool keepOthers);
/// Replaces the key at a place by one that belongs there, too.
void changeKey(Scene& scene, Node& curve, int place, const CurveKey& key);
void removeKey(Scene& scene, Node& curve, int place);
/// @}

/// The kind of curve over time that the attribute takes; null when it cannot be animated.
const char* curveTypeFor(const Attribute& attribute);

/// The curve that drives the plug; null when there is none.
Node* curveOf(const Cell& plug);

/// The curve's keys as (time, value), in order of time.
std::vector<std::pair<double, double>> keysOf(Node& curve);

/// Removes the keys at times from `first` to `last`; the curve goes when none is left. @return how many went
int removeKeys(Scene& scene, Cell& plug, double first, double last);

} // namespace host::scene
