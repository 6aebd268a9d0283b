#include <maya/MFloatArray.h>

#include "values/ArrayText.h"

#include <algorithm>

MFloatArray::MFloatArray() = default;
MFloatArray::MFloatArray(const MFloatArray& other) = default;
MFloatArray::MFloatArray(const float src[], unsigned int count) : ValueArray(src, count, [](auto x) { return x; }) {}
MFloatArray::MFloatArray(const double src[], unsigned int count)
    : ValueArray(src, count, [](auto x) { return static_cast<float>(x); }) {}
MFloatArray::MFloatArray(unsigned int initialSize, float initialValue) : ValueArray(initialSize, initialValue) {}
MFloatArray& MFloatArray::operator=(const MFloatArray& other) = default;

MStatus MFloatArray::set(float element, unsigned int index) { return ValueArray::set(element, index); }
MStatus MFloatArray::set(double element, unsigned int index) {
    return ValueArray::set(static_cast<float>(element), index);
}

MStatus MFloatArray::get(float array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

MStatus MFloatArray::get(double array[]) const {
    std::transform(begin(), end(), array, [](auto x) { return static_cast<double>(x); });
    return MStatus::kSuccess;
}

const char* MFloatArray::className() { return "MFloatArray"; }

std::ostream& operator<<(std::ostream& os, const MFloatArray& array) { return host::writeArray(os, array); }
