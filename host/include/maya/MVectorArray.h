#pragma once

#include <maya/MVector.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of vectors.
class OPENMAYA_EXPORT MVectorArray : public maya_detail::ValueArray<MVector> {
public:
    MVectorArray();
    MVectorArray(const MVectorArray& other);
    MVectorArray(const MVector src[], unsigned int count);
    MVectorArray(const double src[][3], unsigned int count);
    MVectorArray(const float src[][3], unsigned int count);
    MVectorArray(unsigned int initialSize, const MVector& initialValue = MVector::zero);
    MVectorArray& operator=(const MVectorArray& other);

    using ValueArray<MVector>::set;
    MStatus set(double element[3], unsigned int index);
    MStatus set(float element[3], unsigned int index);

    /// Copies length() elements.
    MStatus get(double array[][3]) const;
    MStatus get(float array[][3]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MVectorArray& array);
