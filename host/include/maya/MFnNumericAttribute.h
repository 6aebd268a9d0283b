#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MFnNumericData.h>

/// Function set for attributes of one to four numbers.
///
/// A tuple's parts are named by their index ("sunDir0"), a colour's R, G, B, and a point's X, Y, Z.
class OPENMAYA_EXPORT MFnNumericAttribute : public MFnAttribute {
public:
    ORVO_DECLARE_FN(MFnNumericAttribute)
    MObject create(const MString& full, const MString& brief, MFnNumericData::Type unitType, double defaultValue = 0,
                   MStatus* ReturnStatus = NULL);
    MObject createColor(const MString& full, const MString& brief, MStatus* ReturnStatus = NULL);
    MObject createPoint(const MString& full, const MString& brief, MStatus* ReturnStatus = NULL);
    MObject create(const MString& full, const MString& brief, const MObject& child1, const MObject& child2,
                   const MObject& child3 = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MFnNumericData::Type unitType(MStatus* ReturnStatus = NULL) const;
    MObject child(unsigned int index, MStatus* ReturnStatus = NULL) const;
    bool hasMin(MStatus* ReturnStatus = NULL) const;
    bool hasMax(MStatus* ReturnStatus = NULL) const;
    bool hasSoftMin(MStatus* ReturnStatus = NULL) const;
    bool hasSoftMax(MStatus* ReturnStatus = NULL) const;
    /// The forms with two and three numbers are for tuples of as many; others give kInvalidParameter.
    MStatus getMin(double& min) const;
    MStatus getMin(double& min1, double& min2) const;
    MStatus getMin(double& min1, double& min2, double& min3) const;
    MStatus getMax(double& max) const;
    MStatus getMax(double& max1, double& max2) const;
    MStatus getMax(double& max1, double& max2, double& max3) const;
    MStatus setMin(double min);
    MStatus setMin(double min1, double min2);
    MStatus setMin(double min1, double min2, double min3);
    MStatus setMax(double max);
    MStatus setMax(double max1, double max2);
    MStatus setMax(double max1, double max2, double max3);
    MStatus getDefault(bool& def1);
    MStatus getDefault(char& def1);
    MStatus getDefault(int& def1);
    MStatus getDefault(int& def1, int& def2);
    MStatus getDefault(int& def1, int& def2, int& def3);
    MStatus getDefault(MInt64& def1);
    MStatus getDefault(float& def1);
    MStatus getDefault(float& def1, float& def2);
    MStatus getDefault(float& def1, float& def2, float& def3);
    MStatus getDefault(double& def1);
    MStatus getDefault(double& def1, double& def2);
    MStatus getDefault(double& def1, double& def2, double& def3);
    MStatus getDefault(double& def1, double& def2, double& def3, double& def4);
    MStatus setDefault(bool def1);
    MStatus setDefault(char def1);
    MStatus setDefault(int def1);
    MStatus setDefault(int def1, int def2);
    MStatus setDefault(int def1, int def2, int def3);
    MStatus setDefault(MInt64 def1);
    MStatus setDefault(float def1);
    MStatus setDefault(float def1, float def2);
    MStatus setDefault(float def1, float def2, float def3);
    MStatus setDefault(double def1);
    MStatus setDefault(double def1, double def2);
    MStatus setDefault(double def1, double def2, double def3);
    MStatus setDefault(double def1, double def2, double def3, double def4);
    MStatus getSoftMin(double& min) const;
    MStatus getSoftMax(double& max) const;
    MStatus setSoftMin(double min);
    MStatus setSoftMax(double max);

protected:
    virtual const char* className() const;

private:
    MStatus getLimits(int which, int count, double* values) const;
    MStatus setLimits(int which, int count, const double* values);
    template <class T>
    MStatus readDefault(int count, T* values);
    template <class T>
    MStatus writeDefault(int count, const T* values);
};
