#include <maya/MDoubleArray.h>

#include "values/ArrayText.h"

#include <algorithm>

MDoubleArray::MDoubleArray() = default;
MDoubleArray::MDoubleArray(const MDoubleArray& other) = default;
MDoubleArray::MDoubleArray(const double src[], unsigned int count) : ValueArray(src, count, [](auto x) { return x; }) {}
MDoubleArray::MDoubleArray(const float src[], unsigned int count)
    : ValueArray(src, count, [](auto x) { return static_cast<double>(x); }) {}
MDoubleArray::MDoubleArray(unsigned int initialSize, double initialValue) : ValueArray(initialSize, initialValue) {}
MDoubleArray& MDoubleArray::operator=(const MDoubleArray& other) = default;

MStatus MDoubleArray::set(double element, unsigned int index) { return ValueArray::set(element, index); }
MStatus MDoubleArray::set(float element, unsigned int index) {
    return ValueArray::set(static_cast<double>(element), index);
}

MStatus MDoubleArray::get(double array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

MStatus MDoubleArray::get(float array[]) const {
    std::transform(begin(), end(), array, [](auto x) { return static_cast<float>(x); });
    return MStatus::kSuccess;
}

const char* MDoubleArray::className() { return "MDoubleArray"; }

std::ostream& operator<<(std::ostream& os, const MDoubleArray& array) { return host::writeArray(os, array); }
