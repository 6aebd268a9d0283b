#pragma once

#include <maya/MDagPath.h>
#include <maya/detail/ValueArray.h>

/// An array of MDagPath.
class OPENMAYA_EXPORT MDagPathArray : public maya_detail::ValueArray<MDagPath> {
public:
    MDagPathArray();
    MDagPathArray(const MDagPathArray& other);
    MDagPathArray(unsigned int initialSize, const MDagPath& initialValue);
    MDagPathArray(const MDagPath src[], unsigned int count);
    MDagPathArray& operator=(const MDagPathArray& other);
    /// Copies length() elements.
    MStatus get(MDagPath array[]) const;
    static const char* className();
};
