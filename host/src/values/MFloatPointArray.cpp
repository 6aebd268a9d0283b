#include <maya/MFloatPointArray.h>

#include "values/ArrayText.h"

namespace {

constexpr auto toFloatPoint = [](const auto& numbers) { return MFloatPoint(numbers); };

template <class Number>
MStatus copyTo(const MFloatPointArray& array, Number (*target)[4]) {
    for (const MFloatPoint& element : array) {
        for (unsigned int i = 0; i < 4; ++i) (*target)[i] = static_cast<Number>(element[i]);
        ++target;
    }
    return MStatus::kSuccess;
}

} // namespace

MFloatPointArray::MFloatPointArray() = default;
MFloatPointArray::MFloatPointArray(const MFloatPointArray& other) = default;
MFloatPointArray::MFloatPointArray(const MFloatPoint src[], unsigned int count)
    : ValueArray(src, count, toFloatPoint) {}
MFloatPointArray::MFloatPointArray(const double src[][4], unsigned int count) : ValueArray(src, count, toFloatPoint) {}
MFloatPointArray::MFloatPointArray(const float src[][4], unsigned int count) : ValueArray(src, count, toFloatPoint) {}
MFloatPointArray::MFloatPointArray(unsigned int initialSize, const MFloatPoint& initialValue)
    : ValueArray(initialSize, initialValue) {}
MFloatPointArray& MFloatPointArray::operator=(const MFloatPointArray& other) = default;

MStatus MFloatPointArray::set(unsigned int index, float x, float y, float z, float w) {
    return ValueArray::set(MFloatPoint(x, y, z, w), index);
}
MStatus MFloatPointArray::set(double val[4], unsigned int index) { return ValueArray::set(MFloatPoint(val), index); }
MStatus MFloatPointArray::set(float val[4], unsigned int index) { return ValueArray::set(MFloatPoint(val), index); }
MStatus MFloatPointArray::append(float x, float y, float z, float w) {
    return ValueArray::append(MFloatPoint(x, y, z, w));
}
MStatus MFloatPointArray::get(double dest[][4]) const { return copyTo(*this, dest); }
MStatus MFloatPointArray::get(float dest[][4]) const { return copyTo(*this, dest); }
const char* MFloatPointArray::className() { return "MFloatPointArray"; }

std::ostream& operator<<(std::ostream& os, const MFloatPointArray& array) { return host::writeArray(os, array); }
