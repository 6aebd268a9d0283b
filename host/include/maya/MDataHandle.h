#pragma once

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFloatVector.h>
#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MString.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

#include <memory>

/// A view of one value in a node's data block. References that it gives stay good while the node computes.
class OPENMAYA_EXPORT MDataHandle {
public:
    MDataHandle();
    MDataHandle(const MDataHandle& other);
    bool isNumeric() const;
    /// Whether it is of a generic attribute, and what that holds now.
    bool isGeneric(bool& isNumeric, bool& isNull) const;
    MFnNumericData::Type numericType() const;
    MFnData::Type type() const;
    MTypeId typeId() const;
    MObject data();
    MStatus copy(const MDataHandle& src);
    void setClean();

    bool& asBool() const;
    char& asChar() const;
    unsigned char& asUChar() const;
    short& asShort() const;
    int& asLong() const;
    int& asInt() const;
    MInt64& asInt64() const;
    float& asFloat() const;
    double& asDouble() const;
    MDistance asDistance() const;
    MAngle asAngle() const;
    MTime asTime() const;
    short2& asShort2() const;
    long2& asLong2() const;
    int2& asInt2() const;
    float2& asFloat2() const;
    double2& asDouble2() const;
    short3& asShort3() const;
    long3& asLong3() const;
    int3& asInt3() const;
    float3& asFloat3() const;
    double3& asDouble3() const;
    MVector& asVector() const;
    MFloatVector& asFloatVector() const;
    MMatrix& asMatrix() const;
    MFloatMatrix& asFloatMatrix() const;
    MString& asString() const;
    MObject asMesh() const;
    MObject asMeshTransformed() const;

    void set(bool val);
    void set(char val);
    void set(short val);
    void set(int val);
    void set(MInt64 val);
    void set(float val);
    void set(double val);
    void set(const MMatrix& val);
    void set(const MFloatMatrix& val);
    void set(const MVector& val);
    void set(const MFloatVector& val);
    void set(const MDistance& val);
    void set(const MAngle& val);
    void set(const MTime& val);
    void set(short val1, short val2);
    void set(int val1, int val2);
    void set(float val1, float val2);
    void set(double val1, double val2);
    void set(short val1, short val2, short val3);
    void set(int val1, int val2, int val3);
    void set(float val1, float val2, float val3);
    void set(double val1, double val2, double val3);
    void set(const MString& val);
    MStatus set(const MObject& data);
    void setBool(bool val);
    void setChar(char val);
    void setShort(short val);
    void setInt(int val);
    void setInt64(MInt64 val);
    void setFloat(float val);
    void setDouble(double val);
    void setMMatrix(const MMatrix& val);
    void setMFloatMatrix(const MFloatMatrix& val);
    void setMVector(const MVector& val);
    void setMFloatVector(const MFloatVector& val);
    void setMDistance(const MDistance& val);
    void setMAngle(const MAngle& val);
    void setMTime(const MTime& val);
    void set2Short(short val1, short val2);
    void set2Int(int val1, int val2);
    void set2Float(float val1, float val2);
    void set2Double(double val1, double val2);
    void set3Short(short val1, short val2, short val3);
    void set3Int(int val1, int val2, int val3);
    void set3Float(float val1, float val2, float val3);
    void set3Double(double val1, double val2, double val3);
    void setString(const MString& val);
    MStatus setMObject(const MObject& data);
    /// @name The number of a generic attribute, converted
    /// What holds a number of another type keeps its type, unless `force` is set.
    /// @{
    bool asGenericBool() const;
    unsigned char asGenericChar() const;
    double asGenericDouble() const;
    float asGenericFloat() const;
    short asGenericShort() const;
    int asGenericInt() const;
    MInt64 asGenericInt64() const;
    void setGenericBool(bool value, bool force);
    void setGenericChar(unsigned char value, bool force);
    void setGenericDouble(double value, bool force);
    void setGenericFloat(float value, bool force);
    void setGenericShort(short value, bool force);
    void setGenericInt(int value, bool force);
    void setGenericInt64(MInt64 value, bool force);
    /// @}
    MDataHandle child(const MPlug& plug);
    MDataHandle child(const MObject& attribute);
    MDataHandle& operator=(const MDataHandle& other);
    static const char* className();

private:
    friend struct host::api::Access;
    struct View;
    std::shared_ptr<View> view_;
};

// Behind the class: it needs this one itself.
#include <maya/MPlug.h>
