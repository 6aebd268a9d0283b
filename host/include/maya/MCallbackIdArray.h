#pragma once

#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of the numbers that callbacks are told by.
class OPENMAYA_EXPORT MCallbackIdArray : public maya_detail::ValueArray<MCallbackId> {
public:
    MCallbackIdArray();
    MCallbackIdArray(const MCallbackIdArray& other);
    MCallbackIdArray(const MCallbackId src[], unsigned int count);
    MCallbackIdArray(unsigned int initialSize, MCallbackId initialValue = 0);
    MCallbackIdArray& operator=(const MCallbackIdArray& other);
    /// Copies length() elements.
    MStatus get(MCallbackId array[]) const;
    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MCallbackIdArray& array);
