#include <maya/MFloatVectorArray.h>

#include "values/ArrayText.h"

namespace {

constexpr auto toFloatVector = [](const auto& numbers) { return MFloatVector(numbers); };

template <class Number>
MStatus copyTo(const MFloatVectorArray& array, Number (*target)[3]) {
    for (const MFloatVector& element : array) {
        for (unsigned int i = 0; i < 3; ++i) (*target)[i] = static_cast<Number>(element[i]);
        ++target;
    }
    return MStatus::kSuccess;
}

} // namespace

MFloatVectorArray::MFloatVectorArray() = default;
MFloatVectorArray::MFloatVectorArray(const MFloatVectorArray& other) = default;
MFloatVectorArray::MFloatVectorArray(const MFloatVector src[], unsigned int count)
    : ValueArray(src, count, toFloatVector) {}
MFloatVectorArray::MFloatVectorArray(const double src[][3], unsigned int count)
    : ValueArray(src, count, toFloatVector) {}
MFloatVectorArray::MFloatVectorArray(const float src[][3], unsigned int count)
    : ValueArray(src, count, toFloatVector) {}
MFloatVectorArray::MFloatVectorArray(unsigned int initialSize, const MFloatVector& initialValue)
    : ValueArray(initialSize, initialValue) {}
MFloatVectorArray& MFloatVectorArray::operator=(const MFloatVectorArray& other) = default;

MStatus MFloatVectorArray::set(double element[3], unsigned int index) {
    return ValueArray::set(MFloatVector(element), index);
}
MStatus MFloatVectorArray::set(float element[3], unsigned int index) {
    return ValueArray::set(MFloatVector(element), index);
}
MStatus MFloatVectorArray::get(double array[][3]) const { return copyTo(*this, array); }
MStatus MFloatVectorArray::get(float array[][3]) const { return copyTo(*this, array); }
const char* MFloatVectorArray::className() { return "MFloatVectorArray"; }

std::ostream& operator<<(std::ostream& os, const MFloatVectorArray& array) { return host::writeArray(os, array); }
