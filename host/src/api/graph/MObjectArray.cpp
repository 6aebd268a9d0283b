#include <maya/MObjectArray.h>

#include <algorithm>

MObjectArray::MObjectArray() = default;
MObjectArray::MObjectArray(const MObjectArray& other) = default;
MObjectArray::MObjectArray(unsigned int initialSize, const MObject& initialValue)
    : ValueArray(initialSize, initialValue) {}
MObjectArray::MObjectArray(const MObject src[], unsigned int count)
    : ValueArray(src, count, [](const MObject& x) { return x; }) {}
MObjectArray& MObjectArray::operator=(const MObjectArray& other) = default;

MStatus MObjectArray::get(MObject array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

const char* MObjectArray::className() { return "MObjectArray"; }
