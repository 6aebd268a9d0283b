#include <maya/MStringArray.h>

#include "values/ArrayText.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr auto text = [](const auto& source) { return MString(source); };

} // namespace

MStringArray::MStringArray() = default;
MStringArray::MStringArray(const MStringArray& other) = default;
MStringArray::MStringArray(const MString src[], unsigned int count) : ValueArray(src, count, text) {}
MStringArray::MStringArray(const char* src[], unsigned int count) : ValueArray(src, count, text) {}
MStringArray::MStringArray(unsigned int initialSize, const MString& initialValue)
    : ValueArray(initialSize, initialValue) {}
MStringArray& MStringArray::operator=(const MStringArray& other) = default;

MString MStringArray::operator[](unsigned int index) const { return ValueArray::operator[](index); }
MStatus MStringArray::set(char* element, unsigned int index) { return ValueArray::set(MString(element), index); }

MStatus MStringArray::get(MString array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

MStatus MStringArray::get(char* array[]) const {
    for (const MString& element : *this) std::memcpy(*array++, element.asChar(), element.length() + 1);
    return MStatus::kSuccess;
}

const char* MStringArray::className() { return "MStringArray"; }

std::ostream& operator<<(std::ostream& os, const MStringArray& array) { return host::writeArray(os, array); }
