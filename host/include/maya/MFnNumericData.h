#pragma once

#include <maya/MFnData.h>

/// Function set for two to four numbers held as one value.
class OPENMAYA_EXPORT MFnNumericData : public MFnData {
public:
    enum Type {
        kInvalid,
        kBoolean,
        kByte,
        kChar,
        kShort,
        k2Short,
        k3Short,
        kLong,
        kInt = kLong,
        k2Long,
        k2Int = k2Long,
        k3Long,
        k3Int = k3Long,
        kInt64,
        kFloat,
        k2Float,
        k3Float,
        kDouble,
        k2Double,
        k3Double,
        k4Double,
        kAddr,
        kLast
    };
    ORVO_DECLARE_FN(MFnNumericData)
    MObject create(Type dataType, MStatus* ReturnStatus = NULL);
    MFnNumericData::Type numericType(MStatus* ReturnStatus = NULL);
    /// Reading or writing as another type, or another count, than the data's gives kInvalidParameter.
    MStatus getData(short& val1, short& val2);
    MStatus getData(int& val1, int& val2);
    MStatus getData(float& val1, float& val2);
    MStatus getData(double& val1, double& val2);
    MStatus getData(short& val1, short& val2, short& val3);
    MStatus getData(int& val1, int& val2, int& val3);
    MStatus getData(float& val1, float& val2, float& val3);
    MStatus getData(double& val1, double& val2, double& val3);
    MStatus getData(double& val1, double& val2, double& val3, double& val4);
    MStatus setData(short val1, short val2);
    MStatus setData(int val1, int val2);
    MStatus setData(float val1, float val2);
    MStatus setData(double val1, double val2);
    MStatus setData(short val1, short val2, short val3);
    MStatus setData(int val1, int val2, int val3);
    MStatus setData(float val1, float val2, float val3);
    MStatus setData(double val1, double val2, double val3);
    MStatus setData(double val1, double val2, double val3, double val4);
    MStatus getData2Short(short& val1, short& val2);
    MStatus getData2Int(int& val1, int& val2);
    MStatus getData2Float(float& val1, float& val2);
    MStatus getData2Double(double& val1, double& val2);
    MStatus getData3Short(short& val1, short& val2, short& val3);
    MStatus getData3Int(int& val1, int& val2, int& val3);
    MStatus getData3Float(float& val1, float& val2, float& val3);
    MStatus getData3Double(double& val1, double& val2, double& val3);
    MStatus getData4Double(double& val1, double& val2, double& val3, double& val4);
    MStatus setData2Short(short val1, short val2);
    MStatus setData2Int(int val1, int val2);
    MStatus setData2Float(float val1, float val2);
    MStatus setData2Double(double val1, double val2);
    MStatus setData3Short(short val1, short val2, short val3);
    MStatus setData3Int(int val1, int val2, int val3);
    MStatus setData3Float(float val1, float val2, float val3);
    MStatus setData3Double(double val1, double val2, double val3);
    MStatus setData4Double(double val1, double val2, double val3, double val4);

protected:
    virtual const char* className() const;

private:
    template <class T>
    MStatus read(int count, T* values);
    template <class T>
    MStatus write(int count, const T* values);
};
