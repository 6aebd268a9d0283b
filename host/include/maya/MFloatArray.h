#pragma once

#include <maya/MStatus.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of single precision numbers.
class OPENMAYA_EXPORT MFloatArray : public maya_detail::ValueArray<float> {
public:
    MFloatArray();
    MFloatArray(const MFloatArray& other);
    MFloatArray(const float src[], unsigned int count);
    MFloatArray(const double src[], unsigned int count);
    MFloatArray(unsigned int initialSize, float initialValue = 0);
    MFloatArray& operator=(const MFloatArray& other);

    MStatus set(float element, unsigned int index);
    MStatus set(double element, unsigned int index);

    /// Copies length() elements.
    MStatus get(float array[]) const;
    MStatus get(double array[]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MFloatArray& array);
