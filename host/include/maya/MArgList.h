#pragma once

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

#include <iosfwd>
#include <variant>
#include <vector>

namespace host {
class ArgListAccess;
}

/// The arguments of a command.
///
/// Every read takes the argument's own type: numbers and truth values read as one another (a double read as an integer
/// loses its fraction), texts only as text and arrays only as arrays. A read of another type gives kFailure, one past
/// the end kInvalidParameter; the value is then 0 or empty, and a `get` leaves its target alone. Reads of several
/// elements take the index by reference and move it to the argument after them; it stays when they fail.
class OPENMAYA_EXPORT MArgList {
public:
    enum { kInvalidArgIndex = 0xFFFFFFFF };

    MArgList();
    MArgList(const MArgList& other);
    ~MArgList();

    unsigned int length(MStatus* ReturnStatus = NULL) const;

    bool asBool(unsigned int index, MStatus* ReturnStatus = NULL) const;
    int asInt(unsigned int index, MStatus* ReturnStatus = NULL) const;
    double asDouble(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MString asString(unsigned int index, MStatus* ReturnStatus = NULL) const;
    /// A number in UI units.
    MDistance asDistance(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MAngle asAngle(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MTime asTime(unsigned int index, MStatus* ReturnStatus = NULL) const;
    /// `numElements` numbers: 1 to 3 for a vector, 1 to 4 for a point, 16 for a matrix by rows.
    MVector asVector(unsigned int& index, unsigned int numElements = 3, MStatus* ReturnStatus = NULL) const;
    MPoint asPoint(unsigned int& index, unsigned int numElements = 3, MStatus* ReturnStatus = NULL) const;
    MMatrix asMatrix(unsigned int& index, MStatus* ret = NULL) const;
    /// One array argument, or else all the single arguments from `index` on that read as the element type; at least
    /// one.
    MIntArray asIntArray(unsigned int& index, MStatus* ReturnStatus = NULL) const;
    MDoubleArray asDoubleArray(unsigned int& index, MStatus* ReturnStatus = NULL) const;
    const MStringArray asStringArray(unsigned int& index, MStatus* ReturnStatus = NULL) const;

    MArgList& operator=(const MArgList& other);

    /// The first argument that is the text of one of the flags, with or without its dash; kInvalidArgIndex where none
    /// is.
    unsigned int flagIndex(const char* shortFlag, const char* longFlag = NULL) const;

    MStatus addArg(bool arg);
    MStatus addArg(int arg);
    MStatus addArg(double arg);
    MStatus addArg(const MString& arg);
    /// One number, in UI units.
    MStatus addArg(const MDistance& arg);
    MStatus addArg(const MAngle& arg);
    MStatus addArg(const MTime& arg);
    /// Three numbers.
    MStatus addArg(const MVector& arg);
    MStatus addArg(const MPoint& arg);

    MStatus get(unsigned int index, bool& ret) const;
    MStatus get(unsigned int index, int& ret) const;
    MStatus get(unsigned int index, double& ret) const;
    MStatus get(unsigned int index, MString& ret) const;
    MStatus get(unsigned int index, MDistance& ret) const;
    MStatus get(unsigned int index, MAngle& ret) const;
    MStatus get(unsigned int index, MTime& ret) const;
    MStatus get(unsigned int& index, MVector& ret, unsigned int numElements = 3) const;
    MStatus get(unsigned int& index, MPoint& ret, unsigned int numElements = 3) const;
    MStatus get(unsigned int& index, MMatrix& ret) const;
    MStatus get(unsigned int& index, MIntArray& ret) const;
    MStatus get(unsigned int& index, MDoubleArray& ret) const;
    MStatus get(unsigned int& index, MStringArray& ret) const;

    static const char* className();

private:
    friend class host::ArgListAccess;
    friend OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MArgList& args);

    using Argument = std::variant<bool, int, double, MString, MIntArray, MDoubleArray, MStringArray>;

    MStatus readNumbers(unsigned int& index, double* numbers, unsigned int count) const;
    template <class Array, class Element>
    MStatus readArray(unsigned int& index, Array& ret) const;

    std::vector<Argument> arguments_;
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MArgList& args);
