#include <maya/MColorArray.h>

#include "values/ArrayText.h"

using Base = maya_detail::ValueArray<MColor>;

namespace {

constexpr auto element = [](const auto& c) {
    return MColor(static_cast<float>(c[0]), static_cast<float>(c[1]), static_cast<float>(c[2]),
                  static_cast<float>(c[3]));
};

template <class Number>
MStatus takeAll(MColorArray& array, Number (*elements)[4], unsigned int size) {
    if (!elements && size > 0) return MStatus::kInvalidParameter;
    const MStatus status = array.setLength(size);
    for (unsigned int i = 0; status && i < size; ++i) array[i] = element(elements[i]);
    return status;
}

} // namespace

MColorArray::MColorArray() = default;
MColorArray::MColorArray(const MColorArray& other) = default;
MColorArray::MColorArray(const MColor src[], unsigned int count)
    : Base(src, count, [](const MColor& c) { return c; }) {}
MColorArray::MColorArray(const float src[][4], unsigned int count) : Base(src, count, element) {}
MColorArray::MColorArray(const double src[][4], unsigned int count) : Base(src, count, element) {}
MColorArray::MColorArray(unsigned int initialSize, const MColor& initialValue) : Base(initialSize, initialValue) {}
MColorArray& MColorArray::operator=(const MColorArray& other) = default;

MStatus MColorArray::set(unsigned int index, float r, float g, float b, float a) {
    return Base::set(MColor(r, g, b, a), index);
}
MStatus MColorArray::set(float val[4], unsigned int index) { return Base::set(element(val), index); }
MStatus MColorArray::set(float elements[][4], unsigned int size) { return takeAll(*this, elements, size); }
MStatus MColorArray::set(double elements[][4], unsigned int size) { return takeAll(*this, elements, size); }
MStatus MColorArray::append(float r, float g, float b, float a) { return Base::append(MColor(r, g, b, a)); }

MStatus MColorArray::get(float dest[][4]) const {
    for (const MColor& c : *this) {
        for (unsigned int i = 0; i < 4; ++i) (*dest)[i] = c[i];
        ++dest;
    }
    return MStatus::kSuccess;
}

const char* MColorArray::className() { return "MColorArray"; }

std::ostream& operator<<(std::ostream& os, const MColorArray& array) { return host::writeArray(os, array); }
