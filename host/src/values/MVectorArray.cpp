#include <maya/MVectorArray.h>

#include "values/ArrayText.h"

namespace {

constexpr auto toVector = [](const auto& numbers) { return MVector(numbers); };

template <class Number>
MStatus copyTo(const MVectorArray& array, Number (*target)[3]) {
    for (const MVector& element : array) {
        for (unsigned int i = 0; i < 3; ++i) (*target)[i] = static_cast<Number>(element[i]);
        ++target;
    }
    return MStatus::kSuccess;
}

} // namespace

MVectorArray::MVectorArray() = default;
MVectorArray::MVectorArray(const MVectorArray& other) = default;
MVectorArray::MVectorArray(const MVector src[], unsigned int count) : ValueArray(src, count, toVector) {}
MVectorArray::MVectorArray(const double src[][3], unsigned int count) : ValueArray(src, count, toVector) {}
MVectorArray::MVectorArray(const float src[][3], unsigned int count) : ValueArray(src, count, toVector) {}
MVectorArray::MVectorArray(unsigned int initialSize, const MVector& initialValue)
    : ValueArray(initialSize, initialValue) {}
MVectorArray& MVectorArray::operator=(const MVectorArray& other) = default;

MStatus MVectorArray::set(double element[3], unsigned int index) { return ValueArray::set(MVector(element), index); }
MStatus MVectorArray::set(float element[3], unsigned int index) { return ValueArray::set(MVector(element), index); }
MStatus MVectorArray::get(double array[][3]) const { return copyTo(*this, array); }
MStatus MVectorArray::get(float array[][3]) const { return copyTo(*this, array); }
const char* MVectorArray::className() { return "MVectorArray"; }

std::ostream& operator<<(std::ostream& os, const MVectorArray& array) { return host::writeArray(os, array); }
