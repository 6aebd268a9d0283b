#pragma once

#include "scene/Value.h"

#include <maya/MFnNumericData.h>

namespace host::api {

/// What the API calls a kind of numbers, and how they are held.
struct NumericKind {
    MFnNumericData::Type name;
    scene::NumericType type;
    int count;
};

inline constexpr NumericKind kNumericKinds[] = {
    {MFnNumericData::kBoolean, scene::NumericType::Bool, 1},
    {MFnNumericData::kByte, scene::NumericType::Byte, 1},
    {MFnNumericData::kChar, scene::NumericType::Char, 1},
    {MFnNumericData::kShort, scene::NumericType::Short, 1},
    {MFnNumericData::k2Short, scene::NumericType::Short, 2},
    {MFnNumericData::k3Short, scene::NumericType::Short, 3},
    {MFnNumericData::kInt, scene::NumericType::Int, 1},
    {MFnNumericData::k2Int, scene::NumericType::Int, 2},
    {MFnNumericData::k3Int, scene::NumericType::Int, 3},
    {MFnNumericData::kInt64, scene::NumericType::Int64, 1},
    {MFnNumericData::kFloat, scene::NumericType::Float, 1},
    {MFnNumericData::k2Float, scene::NumericType::Float, 2},
    {MFnNumericData::k3Float, scene::NumericType::Float, 3},
    {MFnNumericData::kDouble, scene::NumericType::Double, 1},
    {MFnNumericData::k2Double, scene::NumericType::Double, 2},
    {MFnNumericData::k3Double, scene::NumericType::Double, 3},
    {MFnNumericData::k4Double, scene::NumericType::Double, 4},
};

/// Numbers of type None, 0 of them, for a name that is none of these.
constexpr NumericKind numericKind(MFnNumericData::Type name) {
    for (const NumericKind& kind : kNumericKinds)
        if (kind.name == name) return kind;
    return {MFnNumericData::kInvalid, scene::NumericType::None, 0};
}

constexpr MFnNumericData::Type numericName(scene::NumericType type, int count) {
    for (const NumericKind& kind : kNumericKinds)
        if (kind.type == type && kind.count == count) return kind.name;
    return MFnNumericData::kInvalid;
}

} // namespace host::api
