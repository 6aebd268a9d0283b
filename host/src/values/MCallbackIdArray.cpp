#include <maya/MCallbackIdArray.h>

#include "values/ArrayText.h"

#include <algorithm>

MCallbackIdArray::MCallbackIdArray() = default;
MCallbackIdArray::MCallbackIdArray(const MCallbackIdArray& other) = default;
MCallbackIdArray::MCallbackIdArray(const MCallbackId src[], unsigned int count)
    : ValueArray(src, count, [](MCallbackId id) { return id; }) {}
MCallbackIdArray::MCallbackIdArray(unsigned int initialSize, MCallbackId initialValue)
    : ValueArray(initialSize, initialValue) {}
MCallbackIdArray& MCallbackIdArray::operator=(const MCallbackIdArray& other) = default;

MStatus MCallbackIdArray::get(MCallbackId array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

const char* MCallbackIdArray::className() { return "MCallbackIdArray"; }

std::ostream& operator<<(std::ostream& os, const MCallbackIdArray& array) { return host::writeArray(os, array); }
