#pragma once

#include <maya/MString.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of texts.
class OPENMAYA_EXPORT MStringArray : public maya_detail::ValueArray<MString> {
public:
    MStringArray();
    MStringArray(const MStringArray& other);
    MStringArray(const MString src[], unsigned int count);
    MStringArray(const char* src[], unsigned int count);
    MStringArray(unsigned int initialSize, const MString& initialValue);
    MStringArray& operator=(const MStringArray& other);

    using ValueArray<MString>::operator[];
    MString operator[](unsigned int index) const;

    using ValueArray<MString>::set;
    MStatus set(char* element, unsigned int index);

    /// Copies length() texts; in the second form into buffers of the caller that are long enough for each text and its
    /// terminating zero.
    MStatus get(MString array[]) const;
    MStatus get(char* array[]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MStringArray& array);
