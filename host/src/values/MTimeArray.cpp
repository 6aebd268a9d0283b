#include <maya/MTimeArray.h>

#include "values/ArrayText.h"

#include <algorithm>

MTimeArray::MTimeArray() = default;
MTimeArray::MTimeArray(const MTimeArray& other) = default;
MTimeArray::MTimeArray(const MTime src[], unsigned int count)
    : ValueArray(src, count, [](const MTime& t) { return t; }) {}
MTimeArray::MTimeArray(unsigned int initialSize, const MTime& initialValue) : ValueArray(initialSize, initialValue) {}
MTimeArray& MTimeArray::operator=(const MTimeArray& other) = default;

MStatus MTimeArray::get(MTime array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

const char* MTimeArray::className() { return "MTimeArray"; }

std::ostream& operator<<(std::ostream& os, const MTimeArray& array) { return host::writeArray(os, array); }
