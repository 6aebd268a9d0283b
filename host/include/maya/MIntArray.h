#pragma once

#include <maya/MStatus.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of integers.
class OPENMAYA_EXPORT MIntArray : public maya_detail::ValueArray<int> {
public:
    MIntArray();
    MIntArray(const MIntArray& other);
    MIntArray(const int src[], unsigned int count);
    MIntArray(unsigned int initialSize, int initialValue = 0);
    MIntArray& operator=(const MIntArray& other);

    /// Copies length() elements.
    MStatus get(int array[]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MIntArray& array);
