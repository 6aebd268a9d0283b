#pragma once

#include <maya/MFloatPoint.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of points in single precision.
class OPENMAYA_EXPORT MFloatPointArray : public maya_detail::ValueArray<MFloatPoint> {
public:
    MFloatPointArray();
    MFloatPointArray(const MFloatPointArray& other);
    MFloatPointArray(const MFloatPoint src[], unsigned int count);
    MFloatPointArray(const double src[][4], unsigned int count);
    MFloatPointArray(const float src[][4], unsigned int count);
    MFloatPointArray(unsigned int initialSize, const MFloatPoint& initialValue = MFloatPoint::origin);
    MFloatPointArray& operator=(const MFloatPointArray& other);

    using ValueArray<MFloatPoint>::set;
    MStatus set(unsigned int index, float x, float y, float z = 0, float w = 1);
    MStatus set(double val[4], unsigned int index);
    MStatus set(float val[4], unsigned int index);

    using ValueArray<MFloatPoint>::append;
    MStatus append(float x, float y, float z = 0, float w = 1);

    /// Copies length() elements.
    MStatus get(double dest[][4]) const;
    MStatus get(float dest[][4]) const;

    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MFloatPointArray& array);
