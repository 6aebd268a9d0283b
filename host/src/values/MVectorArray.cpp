#include <maya/MVectorArray.h>

#include "values/ArrayText.h"

using Base = maya_detail::ValueArray<MVector>;

namespace {

constexpr auto element = [](const auto& numbers) { return MVector(numbers); };

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
MVectorArray::MVectorArray(const MVector src[], unsigned int count) : Base(src, count, element) {}
MVectorArray::MVectorArray(const double src[][3], unsigned int count) : Base(src, count, element) {}
MVectorArray::MVectorArray(const float src[][3], unsigned int count) : Base(src, count, element) {}
MVectorArray::MVectorArray(unsigned int initialSize, const MVector& initialValue) : Base(initialSize, initialValue) {}
MVectorArray& MVectorArray::operator=(const MVectorArray& other) = default;

MStatus MVectorArray::set(double element[3], unsigned int index) { return Base::set(MVector(element), index); }
MStatus MVectorArray::set(float element[3], unsigned int index) { return Base::set(MVector(element), index); }
MStatus MVectorArray::get(double array[][3]) const { return copyTo(*this, array); }
MStatus MVectorArray::get(float array[][3]) const { return copyTo(*this, array); }
const char* MVectorArray::className() { return "MVectorArray"; }

std::ostream& operator<<(std::ostream& os, const MVectorArray& array) { return host::writeArray(os, array); }
