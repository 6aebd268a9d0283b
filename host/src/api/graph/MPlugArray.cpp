#include <maya/MPlugArray.h>

#include <algorithm>

using Base = maya_detail::ValueArray<MPlug>;

MPlugArray::MPlugArray() = default;
MPlugArray::MPlugArray(const MPlugArray& other) = default;
MPlugArray::MPlugArray(unsigned int initialSize, const MPlug& initialValue) : Base(initialSize, initialValue) {}
MPlugArray::MPlugArray(const MPlug src[], unsigned int count) : Base(src, count, [](const MPlug& x) { return x; }) {}
MPlugArray& MPlugArray::operator=(const MPlugArray& other) = default;

MStatus MPlugArray::get(MPlug array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

const char* MPlugArray::className() { return "MPlugArray"; }
