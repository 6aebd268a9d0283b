#include <maya/MDagPathArray.h>

#include <algorithm>

MDagPathArray::MDagPathArray() = default;
MDagPathArray::MDagPathArray(const MDagPathArray& other) = default;
MDagPathArray::MDagPathArray(unsigned int initialSize, const MDagPath& initialValue)
    : ValueArray(initialSize, initialValue) {}
MDagPathArray::MDagPathArray(const MDagPath src[], unsigned int count)
    : ValueArray(src, count, [](const MDagPath& x) { return x; }) {}
MDagPathArray& MDagPathArray::operator=(const MDagPathArray& other) = default;

MStatus MDagPathArray::get(MDagPath array[]) const {
    std::copy(begin(), end(), array);
    return MStatus::kSuccess;
}

const char* MDagPathArray::className() { return "MDagPathArray"; }
