#pragma once

#include <maya/MAngle.h>
#include <maya/MDGModifier.h>
#include <maya/MDoubleArray.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MIntArray.h>
#include <maya/MPlug.h>
#include <maya/MTime.h>
#include <maya/MTimeArray.h>

class MAnimCurveChange;

/// Function set for animation curves. Keys are numbered in the order of their times; a key at the time of another one
/// takes its place. Values are radians, centimetres or plain numbers. A key that is not there, and an input that is
/// none of the curve's kind, give kInvalidParameter.
///
/// Tangents are vectors in seconds (or the unitless input) and the value's internal unit; setting one makes it fixed.
/// kTangentGlobal stands for what MAnimControl says; slow and fast ones are not known and give kInvalidParameter.
/// `change` has to be null: what is done is undone as other changes are.
class OPENMAYA_EXPORT MFnAnimCurve : public MFnDependencyNode {
public:
    enum AnimCurveType {
        kAnimCurveTA = 0,
        kAnimCurveTL,
        kAnimCurveTT,
        kAnimCurveTU,
        kAnimCurveUA,
        kAnimCurveUL,
        kAnimCurveUT,
        kAnimCurveUU,
        kAnimCurveUnknown
    };
    enum TangentType {
        kTangentGlobal = 0,
        kTangentFixed,
        kTangentLinear,
        kTangentFlat,
        kTangentSmooth,
        kTangentStep,
        kTangentSlow,
        kTangentFast,
        kTangentClamped,
        kTangentPlateau,
        kTangentStepNext,
        kTangentAuto
    };
    enum InfinityType { kConstant = 0, kLinear = 1, kCycle = 3, kCycleRelative = 4, kOscillate = 5 };
    ORVO_DECLARE_FN(MFnAnimCurve)
    /// The curve that drives the plug.
    MFnAnimCurve(const MPlug& plug, MStatus* ReturnStatus = NULL);
    /// Makes a curve and connects it to the plug, which must be free. With a modifier, its undoIt() takes that back.
    MObject create(const MObject& node, const MObject& attribute, MDGModifier* modifier = NULL,
                   MStatus* ReturnStatus = NULL);
    MObject create(const MObject& node, const MObject& attribute, AnimCurveType animCurveType,
                   MDGModifier* modifier = NULL, MStatus* ReturnStatus = NULL);
    MObject create(const MPlug& plug, MDGModifier* modifier = NULL, MStatus* ReturnStatus = NULL);
    MObject create(const MPlug& plug, AnimCurveType animCurveType, MDGModifier* modifier = NULL,
                   MStatus* ReturnStatus = NULL);
    MObject create(AnimCurveType animCurveType, MDGModifier* modifier = NULL, MStatus* ReturnStatus = NULL);
    AnimCurveType animCurveType(MStatus* ReturnStatus = NULL) const;
    AnimCurveType timedAnimCurveTypeForPlug(MPlug& plug, MStatus* ReturnStatus = NULL) const;
    AnimCurveType unitlessAnimCurveTypeForPlug(MPlug& plug, MStatus* ReturnStatus = NULL) const;
    double evaluate(const MTime& atTime, MStatus* ReturnStatus = NULL) const;
    MStatus evaluate(const MTime& atTime, double& value) const;
    MStatus evaluate(const MTime& atTime, MTime& timeValue) const;
    MStatus evaluate(const double& atUnitlessInput, double& value) const;
    MStatus evaluate(const double& atUnitlessInput, MTime& timeValue) const;
    /// Whether its value is the same everywhere.
    bool isStatic(MStatus* ReturnStatus = NULL) const;
    unsigned int numKeyframes(MStatus* ReturnStatus = NULL) const;
    unsigned int numKeys(MStatus* ReturnStatus = NULL) const;
    MStatus remove(unsigned int index, MAnimCurveChange* change = NULL);
    MStatus addKeyframe(const MTime& time, double value, MAnimCurveChange* change = NULL);
    MStatus addKeyframe(const MTime& time, double value, TangentType tangentInType, TangentType tangentOutType,
                        MAnimCurveChange* change = NULL);
    unsigned int addKey(const MTime& time, double value, TangentType tangentInType = kTangentGlobal,
                        TangentType tangentOutType = kTangentGlobal, MAnimCurveChange* change = NULL,
                        MStatus* ReturnStatus = NULL);
    unsigned int addKey(const MTime& timeInput, const MTime& timeValue, TangentType tangentInType = kTangentGlobal,
                        TangentType tangentOutType = kTangentGlobal, MAnimCurveChange* change = NULL,
                        MStatus* ReturnStatus = NULL);
    unsigned int addKey(double unitlessInput, double value, TangentType tangentInType = kTangentGlobal,
                        TangentType tangentOutType = kTangentGlobal, MAnimCurveChange* change = NULL,
                        MStatus* ReturnStatus = NULL);
    unsigned int addKey(double unitlessInput, const MTime& time, TangentType tangentInType = kTangentGlobal,
                        TangentType tangentOutType = kTangentGlobal, MAnimCurveChange* change = NULL,
                        MStatus* ReturnStatus = NULL);
    /// Arrays of one length. Unless `keepExistingKeys` is set, keys within their range go first.
    MStatus addKeys(MTimeArray* timeArray, MDoubleArray* valueArray, TangentType tangentInType = kTangentGlobal,
                    TangentType tangentOutType = kTangentGlobal, bool keepExistingKeys = false,
                    MAnimCurveChange* change = NULL);
    bool find(const MTime& time, unsigned int& index, MStatus* ReturnStatus = NULL) const;
    bool find(double unitlessInput, unsigned int& index, MStatus* ReturnStatus = NULL) const;
    unsigned int findClosest(const MTime& time, MStatus* ReturnStatus = NULL) const;
    unsigned int findClosest(double unitlessInput, MStatus* ReturnStatus = NULL) const;
    MTime time(unsigned int index, MStatus* ReturnStatus = NULL) const;
    double value(unsigned int index, MStatus* ReturnStatus = NULL) const;
    double unitlessInput(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MStatus setValue(unsigned int index, double value, MAnimCurveChange* change = NULL);
    /// kFailure when the key would come to another one's place, or beyond it: keys keep their order.
    MStatus setTime(unsigned int index, const MTime& time, MAnimCurveChange* change = NULL);
    MStatus setUnitlessInput(unsigned int index, double unitlessInput, MAnimCurveChange* change = NULL);
    bool isTimeInput(MStatus* ReturnStatus = NULL) const;
    bool isUnitlessInput(MStatus* ReturnStatus = NULL) const;
    TangentType inTangentType(unsigned int index, MStatus* ReturnStatus = NULL) const;
    TangentType outTangentType(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MStatus setInTangentType(unsigned int index, TangentType tangentType, MAnimCurveChange* change = NULL);
    MStatus setOutTangentType(unsigned int index, TangentType tangentType, MAnimCurveChange* change = NULL);
    MStatus setTangentTypes(MIntArray indexArray, TangentType tangentInType = kTangentGlobal,
                            TangentType tangentOutType = kTangentGlobal, MAnimCurveChange* change = NULL);
    MStatus getTangent(unsigned int index, float& x, float& y, bool inTangent) const;
    MStatus getTangent(unsigned int index, MAngle& angle, double& weight, bool inTangent) const;
    MStatus setTangent(unsigned int index, float x, float y, bool inTangent, MAnimCurveChange* change = NULL,
                       bool convertUnits = true);
    MStatus setTangent(unsigned int index, const MAngle& angle, double weight, bool inTangent,
                       MAnimCurveChange* change = NULL, bool convertUnits = true);
    MStatus setAngle(unsigned int index, const MAngle& angle, bool inTangent, MAnimCurveChange* change = NULL);
    MStatus setWeight(unsigned int index, double weight, bool inTangent, MAnimCurveChange* change = NULL);
    bool weightsLocked(unsigned int index, MStatus* ReturnStatus = NULL) const;
    bool tangentsLocked(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MStatus setWeightsLocked(unsigned int index, bool locked, MAnimCurveChange* change = NULL);
    MStatus setTangentsLocked(unsigned int index, bool locked, MAnimCurveChange* change = NULL);
    InfinityType preInfinityType(MStatus* ReturnStatus = NULL) const;
    InfinityType postInfinityType(MStatus* ReturnStatus = NULL) const;
    MStatus setPreInfinityType(InfinityType infinityType, MAnimCurveChange* change = NULL);
    MStatus setPostInfinityType(InfinityType infinityType, MAnimCurveChange* change = NULL);
    bool isWeighted(MStatus* ReturnStatus = NULL) const;
    MStatus setIsWeighted(bool isWeighted, MAnimCurveChange* change = NULL);
    bool isBreakdown(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MStatus setIsBreakdown(unsigned int index, bool isBreakdown, MAnimCurveChange* change = NULL);

protected:
    virtual const char* className() const;
};
