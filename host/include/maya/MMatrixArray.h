#pragma once

#include <maya/MMatrix.h>
#include <maya/detail/ValueArray.h>

#include <iosfwd>

/// An array of matrices.
class OPENMAYA_EXPORT MMatrixArray : public maya_detail::ValueArray<MMatrix> {
public:
    MMatrixArray();
    MMatrixArray(const MMatrixArray& other);
    MMatrixArray(unsigned initialSize);
    MMatrixArray& operator=(const MMatrixArray& other);
    static const char* className();
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MMatrixArray& array);
