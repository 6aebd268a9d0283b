#pragma once

#include <maya/MStatus.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of double precision numbers.
class OPENMAYA_EXPORT MDoubleArray : public maya_detail::ValueArray<double> {
public:
    MDoubleArray();
    MDoubleArray(const MDoubleArray& other);
    MDoubleArray(const double src[], unsigned int count);
    MDoubleArray(const float src[], unsigned int count);
    MDoubleArray(unsigned int initialSize, double initialValue = 0);
    MDoubleArray& operator=(const MDoubleArray& other);

    MStatus set(double element, unsigned int index);
    MStatus set(float element, unsigned int index);

    /// Copies length() elements.
    MStatus get(double array[]) const;
    MStatus get(float array[]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MDoubleArray& array);
