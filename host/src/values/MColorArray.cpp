#include <maya/MColorArray.h>

#include "values/ArrayText.h"

namespace {

constexpr auto toColor = [](const auto& c) {
    return MColor(static_cast<float>(c[0]), static_cast<float>(c[1]), static_cast<float>(c[2]),
                  static_cast<float>(c[3]));
};

template <class Number>
MStatus takeAll(MColorArray& array, Number (*elements)[4], unsigned int size) {
    if (!elements && size > 0) return MStatus::kInvalidParameter;
    const MStatus status = array.setLength(size);
    for (unsigned int i = 0; status && i < size; ++i) array[i] = toColor(elements[i]);
    return status;
}

} // namespace

MColorArray::MColorArray() = default;
MColorArray::MColorArray(const MColorArray& other) = default;
MColorArray::MColorArray(const MColor src[], unsigned int count)
    : ValueArray(src, count, [](const MColor& c) { return c; }) {}
MColorArray::MColorArray(const float src[][4], unsigned int count) : ValueArray(src, count, toColor) {}
MColorArray::MColorArray(const double src[][4], unsigned int count) : ValueArray(src, count, toColor) {}
MColorArray::MColorArray(unsigned int initialSize, const MColor& initialValue)
    : ValueArray(initialSize, initialValue) {}
MColorArray& MColorArray::operator=(const MColorArray& other) = default;

MStatus MColorArray::set(unsigned int index, float r, float g, float b, float a) {
    return ValueArray::set(MColor(r, g, b, a), index);
}
MStatus MColorArray::set(float val[4], unsigned int index) { return ValueArray::set(toColor(val), index); }
MStatus MColorArray::set(float elements[][4], unsigned int size) { return takeAll(*this, elements, size); }
MStatus MColorArray::set(double elements[][4], unsigned int size) { return takeAll(*this, elements, size); }
MStatus MColorArray::append(float r, float g, float b, float a) { return ValueArray::append(MColor(r, g, b, a)); }

MStatus MColorArray::get(float dest[][4]) const {
    for (const MColor& c : *this) {
        for (unsigned int i = 0; i < 4; ++i) (*dest)[i] = c[i];
        ++dest;
    }
    return MStatus::kSuccess;
}

const char* MColorArray::className() { return "MColorArray"; }

std::ostream& operator<<(std::ostream& os, const MColorArray& array) { return host::writeArray(os, array); }
