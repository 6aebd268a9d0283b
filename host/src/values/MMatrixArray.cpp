#include <maya/MMatrixArray.h>

#include "values/ArrayText.h"

using Base = maya_detail::ValueArray<MMatrix>;

MMatrixArray::MMatrixArray() = default;
MMatrixArray::MMatrixArray(const MMatrixArray& other) = default;
MMatrixArray::MMatrixArray(unsigned initialSize) : Base(initialSize, MMatrix()) {}
MMatrixArray& MMatrixArray::operator=(const MMatrixArray& other) = default;
const char* MMatrixArray::className() { return "MMatrixArray"; }

std::ostream& operator<<(std::ostream& os, const MMatrixArray& array) { return host::writeArray(os, array); }
