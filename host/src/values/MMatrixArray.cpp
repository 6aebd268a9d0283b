#include <maya/MMatrixArray.h>

#include "values/ArrayText.h"

MMatrixArray::MMatrixArray() = default;
MMatrixArray::MMatrixArray(const MMatrixArray& other) = default;
MMatrixArray::MMatrixArray(unsigned initialSize) : ValueArray(initialSize, MMatrix()) {}
MMatrixArray& MMatrixArray::operator=(const MMatrixArray& other) = default;
const char* MMatrixArray::className() { return "MMatrixArray"; }

std::ostream& operator<<(std::ostream& os, const MMatrixArray& array) { return host::writeArray(os, array); }
