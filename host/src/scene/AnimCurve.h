#pragma once

#include "scene/Node.h"

namespace host::scene {

class Scene;

/// The scene's clock: its outTime is the scene's current time.
std::unique_ptr<NodeBehavior> makeTimeBehavior(Node& node);

/// A curve over time. Its input is the scene's current time unless something is connected.
///
/// Tangents: linear, step and stepnext as named; flat gives a cubic with level tangents; fixed, spline, clamped,
/// plateau and auto are evaluated as level tangents at local extremes and ends, and as the slope between the
/// neighbours elsewhere. Infinity: constant, linear, cycle, cycle with offset and oscillate.
std::unique_ptr<NodeBehavior> makeAnimCurve(Node& node);

/// Tangent kinds by their stored number.
enum class Tangent {
    Fixed = 1,
    Linear = 2,
    Flat = 3,
    Step = 5,
    Spline = 9,
    Clamped = 10,
    Plateau = 16,
    StepNext = 17,
    Auto = 18
};

/// Puts a key on the plug, making a curve of the fitting kind when it has none. Time in ticks, value in internal
/// units; a key at the same time is replaced. Throws SceneError for plugs that cannot be animated.
void setKey(Scene& scene, Cell& plug, double time, double value, Tangent in, Tangent out);

/// The curve that drives the plug; null when there is none.
Node* curveOf(Cell& plug);

/// The curve's keys as (time, value), in order of time.
std::vector<std::pair<double, double>> keysOf(Node& curve);

/// Removes the keys at times from `first` to `last`; the curve goes when none is left. @return how many went
int removeKeys(Scene& scene, Cell& plug, double first, double last);

} // namespace host::scene
