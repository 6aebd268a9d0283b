#pragma once

#include "api/fn/MeshAccess.h"
#include "values/StatusOut.h"

#include <maya/MFloatArray.h>
#include <maya/MIntArray.h>

#include <span>
#include <type_traits>
#include <vector>

namespace host::api {

/// Whether an index is one of `count`.
inline bool among(int index, int count) { return index >= 0 && index < count; }

/// Runs a look at the object's mesh that answers a status; kFailure when there is no mesh.
template <class Look>
MStatus withMesh(const MObject& object, Look&& look) {
    const auto mesh = meshOf(object);
    return mesh ? look(*mesh) : MStatus(MStatus::kFailure);
}

/// Takes a number from the object's mesh; 0 when there is none.
template <class Look>
auto countOf(const MObject& object, MStatus* status, Look&& look) {
    const auto mesh = meshOf(object);
    setStatus(status, mesh ? MStatus::kSuccess : MStatus::kFailure);
    using Count = std::decay_t<decltype(look(*mesh))>;
    return mesh ? look(*mesh) : Count();
}

/// Fills an array of the API with one element for each of `values`.
template <class Array, class Values, class Convert>
MStatus fill(Array& array, const Values& values, Convert convert) {
    array.clear();
    if (const MStatus status = array.setLength(static_cast<unsigned int>(values.size())); !status) return status;
    unsigned int i = 0;
    for (const auto& value : values) array[i++] = convert(value);
    return MStatus::kSuccess;
}

inline MStatus fill(MIntArray& array, std::span<const int> values) {
    return fill(array, values, [](int v) { return v; });
}

inline std::span<const int> ints(const MIntArray& array) {
    return {array.length() ? &*array.begin() : nullptr, array.length()};
}
inline std::vector<float> floats(const MFloatArray& array) { return {array.begin(), array.end()}; }

} // namespace host::api
