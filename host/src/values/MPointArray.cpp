#include <maya/MPointArray.h>

#include "values/ArrayText.h"

namespace {

constexpr auto toPoint = [](const auto& numbers) { return MPoint(numbers); };

template <class Number>
MStatus copyTo(const MPointArray& array, Number (*target)[4]) {
    for (const MPoint& element : array) {
        for (unsigned int i = 0; i < 4; ++i) (*target)[i] = static_cast<Number>(element[i]);
        ++target;
    }
    return MStatus::kSuccess;
}

} // namespace

MPointArray::MPointArray() = default;
MPointArray::MPointArray(const MPointArray& other) = default;
MPointArray::MPointArray(const MPoint src[], unsigned int count) : ValueArray(src, count, toPoint) {}
MPointArray::MPointArray(const double src[][4], unsigned int count) : ValueArray(src, count, toPoint) {}
MPointArray::MPointArray(const float src[][4], unsigned int count) : ValueArray(src, count, toPoint) {}
MPointArray::MPointArray(unsigned int initialSize, const MPoint& initialValue)
    : ValueArray(initialSize, initialValue) {}
MPointArray& MPointArray::operator=(const MPointArray& other) = default;

MStatus MPointArray::set(unsigned int index, double x, double y, double z, double w) {
    return ValueArray::set(MPoint(x, y, z, w), index);
}
MStatus MPointArray::set(double val[4], unsigned int index) { return ValueArray::set(MPoint(val), index); }
MStatus MPointArray::set(float val[4], unsigned int index) { return ValueArray::set(MPoint(val), index); }
MStatus MPointArray::append(double x, double y, double z, double w) { return ValueArray::append(MPoint(x, y, z, w)); }
MStatus MPointArray::get(double dest[][4]) const { return copyTo(*this, dest); }
MStatus MPointArray::get(float dest[][4]) const { return copyTo(*this, dest); }
const char* MPointArray::className() { return "MPointArray"; }

std::ostream& operator<<(std::ostream& os, const MPointArray& array) { return host::writeArray(os, array); }
