#pragma once

#include <maya/MPoint.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of points.
class OPENMAYA_EXPORT MPointArray : public maya_detail::ValueArray<MPoint> {
public:
    MPointArray();
    MPointArray(const MPointArray& other);
    MPointArray(const MPoint src[], unsigned int count);
    MPointArray(const double src[][4], unsigned int count);
    MPointArray(const float src[][4], unsigned int count);
    MPointArray(unsigned int initialSize, const MPoint& initialValue = MPoint::origin);
    MPointArray& operator=(const MPointArray& other);

    using ValueArray<MPoint>::set;
    MStatus set(unsigned int index, double x, double y, double z = 0, double w = 1);
    MStatus set(double val[4], unsigned int index);
    MStatus set(float val[4], unsigned int index);

    using ValueArray<MPoint>::append;
    MStatus append(double x, double y, double z = 0, double w = 1);

    /// Copies length() elements.
    MStatus get(double dest[][4]) const;
    MStatus get(float dest[][4]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MPointArray& array);
