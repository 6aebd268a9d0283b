#include <maya/MPlugArray.h>

#include <algorithm>

MPlugArray::MPlugArray() = default;
MPlugArray::MPlugArray(const MPlugArray& other) = default;
MPlugArray::MPlugArray(unsigned int initialSize, const MPlug& initialValue) : ValueArray(initialSize, initialValue) {}
MPlugArray::MPlugArray(const MPlug src[], unsigned int count)
    : ValueArray(src, count, [](const MPlug& x) { return x; }) {}
MPlugArray& MPlugArray::operator=(const MPlugArray& other) = default;

MStatus MPlugArray::get(MPlug array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

const char* MPlugArray::className() { return "MPlugArray"; }
