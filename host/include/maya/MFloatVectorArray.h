#pragma once

#include <maya/MFloatVector.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of vectors in single precision.
class OPENMAYA_EXPORT MFloatVectorArray : public maya_detail::ValueArray<MFloatVector> {
public:
    MFloatVectorArray();
    MFloatVectorArray(const MFloatVectorArray& other);
    MFloatVectorArray(const MFloatVector src[], unsigned int count);
    MFloatVectorArray(const double src[][3], unsigned int count);
    MFloatVectorArray(const float src[][3], unsigned int count);
    MFloatVectorArray(unsigned int initialSize, const MFloatVector& initialValue = MFloatVector::zero);
    MFloatVectorArray& operator=(const MFloatVectorArray& other);

    using ValueArray<MFloatVector>::set;
    MStatus set(double element[3], unsigned int index);
    MStatus set(float element[3], unsigned int index);

    /// Copies length() elements.
    MStatus get(double array[][3]) const;
    MStatus get(float array[][3]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MFloatVectorArray& array);
