#pragma once

#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/detail/ValueArray.h>

/// An array of MObject.
class OPENMAYA_EXPORT MObjectArray : public maya_detail::ValueArray<MObject> {
public:
    MObjectArray();
    MObjectArray(const MObjectArray& other);
    MObjectArray(unsigned int initialSize, const MObject& initialValue = MObject::kNullObj);
    MObjectArray(const MObject src[], unsigned int count);
    MObjectArray& operator=(const MObjectArray& other);
    /// Copies length() elements.
    MStatus get(MObject array[]) const;
    static const char* className();
};
