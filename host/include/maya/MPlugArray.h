#pragma once

#include <maya/MPlug.h>
#include <maya/detail/ValueArray.h>

/// An array of MPlug.
class OPENMAYA_EXPORT MPlugArray : public maya_detail::ValueArray<MPlug> {
public:
    MPlugArray();
    MPlugArray(const MPlugArray& other);
    MPlugArray(unsigned int initialSize, const MPlug& initialValue);
    MPlugArray(const MPlug src[], unsigned int count);
    MPlugArray& operator=(const MPlugArray& other);
    /// Copies length() elements.
    MStatus get(MPlug array[]) const;
    static const char* className();
};
