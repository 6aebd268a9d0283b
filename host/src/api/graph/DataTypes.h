#pragma once

#include "scene/Attribute.h"

#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>

#include <optional>

namespace host::api {

/// The API's name for a kind of data.
inline MFnData::Type typeOf(scene::DataKind kind) {
    switch (kind) {
    case scene::DataKind::Mesh: return MFnData::kMesh;
    case scene::DataKind::StringArray: return MFnData::kStringArray;
    case scene::DataKind::IntArray: return MFnData::kIntArray;
    case scene::DataKind::FloatArray: return MFnData::kFloatArray;
    case scene::DataKind::DoubleArray: return MFnData::kDoubleArray;
    case scene::DataKind::VectorArray: return MFnData::kVectorArray;
    case scene::DataKind::PointArray: return MFnData::kPointArray;
    case scene::DataKind::MatrixArray: return MFnData::kMatrixArray;
    case scene::DataKind::ComponentList: return MFnData::kComponentList;
    case scene::DataKind::None: break;
    }
    return MFnData::kInvalid;
}

/// The kind of value that the API's names mean; nothing where there is no such value here.
inline std::optional<scene::ValueKind> kindOf(MFnData::Type type) {
    using scene::ValueKind;
    if (type == MFnData::kNumeric) return ValueKind{ValueKind::Form::Number};
    if (type == MFnData::kString) return ValueKind{ValueKind::Form::Text};
    if (type == MFnData::kMatrix) return ValueKind{ValueKind::Form::Matrix};
    for (int k = 1; k <= static_cast<int>(scene::DataKind::ComponentList); ++k)
        if (typeOf(static_cast<scene::DataKind>(k)) == type)
            return ValueKind{ValueKind::Form::Data, static_cast<scene::DataKind>(k)};
    return std::nullopt;
}

inline std::optional<scene::ValueKind> kindOf(MFnNumericData::Type type) {
    using scene::NumericType;
    const auto numbers = [](NumericType t, int count) {
        return scene::ValueKind{scene::ValueKind::Form::Number, scene::DataKind::None, t, count};
    };
    switch (type) {
    case MFnNumericData::kBoolean: return numbers(NumericType::Bool, 1);
    case MFnNumericData::kByte: return numbers(NumericType::Byte, 1);
    case MFnNumericData::kChar: return numbers(NumericType::Char, 1);
    case MFnNumericData::kShort: return numbers(NumericType::Short, 1);
    case MFnNumericData::k2Short: return numbers(NumericType::Short, 2);
    case MFnNumericData::k3Short: return numbers(NumericType::Short, 3);
    case MFnNumericData::kInt: return numbers(NumericType::Int, 1);
    case MFnNumericData::k2Int: return numbers(NumericType::Int, 2);
    case MFnNumericData::k3Int: return numbers(NumericType::Int, 3);
    case MFnNumericData::kInt64: return numbers(NumericType::Int64, 1);
    case MFnNumericData::kFloat: return numbers(NumericType::Float, 1);
    case MFnNumericData::k2Float: return numbers(NumericType::Float, 2);
    case MFnNumericData::k3Float: return numbers(NumericType::Float, 3);
    case MFnNumericData::kDouble: return numbers(NumericType::Double, 1);
    case MFnNumericData::k2Double: return numbers(NumericType::Double, 2);
    case MFnNumericData::k3Double: return numbers(NumericType::Double, 3);
    case MFnNumericData::k4Double: return numbers(NumericType::Double, 4);
    default: return std::nullopt;
    }
}

} // namespace host::api
