#pragma once

#include <maya/MTime.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of times.
class OPENMAYA_EXPORT MTimeArray : public maya_detail::ValueArray<MTime> {
public:
    MTimeArray();
    MTimeArray(const MTimeArray& other);
    MTimeArray(const MTime src[], unsigned int count);
    MTimeArray(unsigned int initialSize, const MTime& initialValue);
    MTimeArray& operator=(const MTimeArray& other);
    /// Copies length() elements.
    MStatus get(MTime array[]) const;
    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MTimeArray& array);
