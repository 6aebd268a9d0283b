#include <maya/MUintArray.h>

#include "values/ArrayText.h"

#include <algorithm>

MUintArray::MUintArray() = default;
MUintArray::MUintArray(const MUintArray& other) = default;
MUintArray::MUintArray(const unsigned int src[], unsigned int count)
    : ValueArray(src, count, [](auto x) { return x; }) {}
MUintArray::MUintArray(unsigned int initialSize, unsigned int initialValue) : ValueArray(initialSize, initialValue) {}
MUintArray& MUintArray::operator=(const MUintArray& other) = default;

MStatus MUintArray::get(unsigned int array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

const char* MUintArray::className() { return "MUintArray"; }

std::ostream& operator<<(std::ostream& os, const MUintArray& array) { return host::writeArray(os, array); }
