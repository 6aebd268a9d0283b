#include <maya/MIntArray.h>

#include "values/ArrayText.h"

#include <algorithm>

MIntArray::MIntArray() = default;
MIntArray::MIntArray(const MIntArray& other) = default;
MIntArray::MIntArray(const int src[], unsigned int count) : ValueArray(src, count, [](auto x) { return x; }) {}
MIntArray::MIntArray(unsigned int initialSize, int initialValue) : ValueArray(initialSize, initialValue) {}
MIntArray& MIntArray::operator=(const MIntArray& other) = default;

MStatus MIntArray::get(int array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

const char* MIntArray::className() { return "MIntArray"; }

std::ostream& operator<<(std::ostream& os, const MIntArray& array) { return host::writeArray(os, array); }
