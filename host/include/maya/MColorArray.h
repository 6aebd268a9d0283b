#pragma once

#include <maya/MColor.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of colours.
class OPENMAYA_EXPORT MColorArray : public maya_detail::ValueArray<MColor> {
public:
    MColorArray();
    MColorArray(const MColorArray& other);
    MColorArray(const MColor src[], unsigned int count);
    MColorArray(const float src[][4], unsigned int count);
    MColorArray(const double src[][4], unsigned int count);
    MColorArray(unsigned int initialSize, const MColor& initialValue = MColor::kOpaqueBlack);
    MColorArray& operator=(const MColorArray& other);

    using ValueArray<MColor>::set;
    MStatus set(unsigned int index, float r, float g, float b, float a = 1);
    MStatus set(float val[4], unsigned int index);
    /// Takes over `size` colours; the array gets that length.
    MStatus set(float elements[][4], unsigned int size);
    MStatus set(double elements[][4], unsigned int size);

    using ValueArray<MColor>::append;
    MStatus append(float r, float g, float b, float a = 1);

    /// Copies length() elements.
    MStatus get(float dest[][4]) const;
    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MColorArray& array);
