#pragma once

#include <maya/MStatus.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of unsigned integers.
class OPENMAYA_EXPORT MUintArray : public maya_detail::ValueArray<unsigned int> {
public:
    MUintArray();
    MUintArray(const MUintArray& other);
    MUintArray(const unsigned int src[], unsigned int count);
    MUintArray(unsigned int initialSize, unsigned int initialValue = 0);
    MUintArray& operator=(const MUintArray& other);

    /// Copies length() elements.
    MStatus get(unsigned int array[]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MUintArray& array);
