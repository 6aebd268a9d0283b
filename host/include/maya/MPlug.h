#pragma once

#include <maya/MAngle.h>
#include <maya/MDGContext.h>
#include <maya/MDistance.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>

#include <utility>
#include <vector>

class MDataBlock;
class MDataHandle;
class MPlugArray;

/// An attribute of a node: a value, a compound, an array or an array's element.
class OPENMAYA_EXPORT MPlug {
public:
    enum MValueSelector { kAll, kNonDefault, kChanged, kLastAttrSelector };
    enum FreeToChangeState { kFreeToChange, kNotFreeToChange, kChildrenNotFreeToChange };

    MPlug();
    MPlug(const MPlug& other);
    MPlug(const MObject& node, const MObject& attribute);
    MPlug& operator=(const MPlug& other);
    MStatus setAttribute(MObject& attribute);
    MObject attribute(MStatus* ReturnStatus = NULL) const;
    MObject node(MStatus* ReturnStatus = NULL) const;
    /// "node.attribute[2].child"
    MString name(MStatus* ReturnStatus = NULL) const;
    MString partialName(bool includeNodeName = false, bool includeNonMandatoryIndices = false,
                        bool includeInstancedIndices = false, bool useAlias = false, bool useFullAttributePath = false,
                        bool useLongNames = false, MStatus* ReturnStatus = NULL) const;
    bool isNetworked(MStatus* ReturnStatus = NULL) const;
    bool isArray(MStatus* ReturnStatus = NULL) const;
    bool isElement(MStatus* ReturnStatus = NULL) const;
    bool isCompound(MStatus* ReturnStatus = NULL) const;
    bool isChild(MStatus* ReturnStatus = NULL) const;
    bool isProcedural(MStatus* ReturnStatus = NULL) const;
    unsigned int logicalIndex(MStatus* ReturnStatus = NULL) const;
    /// Chooses the element of an array above (or of this one, when no attribute is given).
    MStatus selectAncestorLogicalIndex(unsigned int index, const MObject& attribute = MObject::kNullObj);
    unsigned int getExistingArrayAttributeIndices(MIntArray& indices, MStatus* ReturnStatus = NULL);
    unsigned int numElements(MStatus* ReturnStatus = NULL) const;
    unsigned int evaluateNumElements(MStatus* ReturnStatus = NULL);
    unsigned int numChildren(MStatus* ReturnStatus = NULL) const;
    unsigned int numConnectedElements(MStatus* ReturnStatus = NULL) const;
    unsigned int numConnectedChildren(MStatus* ReturnStatus = NULL) const;
    MPlug child(MObject& obj, MStatus* ReturnStatus = NULL) const;
    MPlug child(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MPlug parent(MStatus* ReturnStatus = NULL) const;
    MPlug array(MStatus* ReturnStatus = NULL) const;
    MPlug elementByLogicalIndex(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MPlug elementByPhysicalIndex(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MPlug connectionByPhysicalIndex(unsigned int index, MStatus* ReturnStatus = NULL) const;
    /// The plugs at the other end: the source (asDst) and the destinations (asSrc). True when there is one.
    bool connectedTo(MPlugArray& array, bool asDst, bool asSrc, MStatus* ReturnStatus = NULL) const;
    bool isConnected(MStatus* ReturnStatus = NULL) const;
    bool isKeyable(MStatus* ReturnStatus = NULL) const;
    MStatus setKeyable(bool keyable);
    bool isLocked(MStatus* ReturnStatus = NULL) const;
    MStatus setLocked(bool locked);
    bool isChannelBoxFlagSet(MStatus* ReturnStatus = NULL) const;
    MStatus setChannelBox(bool inChannelBox);
    bool isNull(MStatus* ReturnStatus = NULL) const;
    MString info(MStatus* ReturnStatus = NULL) const;
    bool isFromReferencedFile(MStatus* ReturnStatus = NULL) const;
    bool isDynamic(MStatus* ReturnStatus = NULL) const;
    MPlug::FreeToChangeState isFreeToChange(bool checkParents = true, bool checkChildren = true,
                                            MStatus* ReturnStatus = NULL) const;
    MDataHandle constructHandle(MDataBlock& mBlock) const;

    /// @name Values, in internal units: centimetres, radians
    /// Reading brings the value up to date first. A value of another kind gives kInvalidParameter.
    /// @{
    MStatus getValue(MObject& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(MDataHandle& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(double& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(float& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(MInt64& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(int& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(short& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(bool& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(MDistance& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(MAngle& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(MTime& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(char& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus getValue(MString& val, MDGContext& ctx = MDGContext::fsNormal) const;
    MStatus setValue(MObject& val);
    MStatus setValue(MDataHandle& handle);
    MStatus setValue(double val);
    MStatus setValue(float val);
    MStatus setValue(MInt64 val);
    MStatus setValue(int val);
    MStatus setValue(short val);
    MStatus setValue(bool val);
    MStatus setValue(MDistance& val);
    MStatus setValue(MAngle& val);
    MStatus setValue(MTime& val);
    MStatus setValue(char val);
    MStatus setValue(const MString& val);
    MStatus setValue(const char* val);
    MObject asMObject(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    MDataHandle asMDataHandle(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    double asDouble(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    float asFloat(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    MInt64 asInt64(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    int asInt(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    short asShort(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    bool asBool(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    MDistance asMDistance(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    MAngle asMAngle(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    MTime asMTime(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    char asChar(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    MString asString(MDGContext& ctx = MDGContext::fsNormal, MStatus* ReturnStatus = NULL) const;
    MStatus setMObject(MObject& val);
    MStatus setMDataHandle(MDataHandle& handle);
    MStatus setDouble(double val);
    MStatus setFloat(float val);
    MStatus setInt64(MInt64 val);
    MStatus setInt(int val);
    MStatus setShort(short val);
    MStatus setBool(bool val);
    MStatus setMDistance(MDistance& val);
    MStatus setMAngle(MAngle& val);
    MStatus setMTime(MTime& val);
    MStatus setChar(char val);
    MStatus setString(const MString& val);
    /// @}

    MPlug operator[](unsigned int physicalIndex) const;
    MPlug operator[](MObject& attr) const;
    bool operator==(const MPlug& other) const;
    bool operator==(const MObject& attr) const;
    bool operator!=(const MPlug& other) const;
    bool operator!=(const MObject& attr) const;
    MStatus setNumElements(unsigned int elements);
    operator MObject() const;
    bool operator!() const;
    bool isSource(MStatus* ReturnStatus = NULL) const;
    bool isDestination(MStatus* ReturnStatus = NULL) const;
    static const char* className();

private:
    friend struct host::api::Access;
    template <class T>
    MStatus number(T& val, MDGContext& ctx) const;
    MObject node_, attribute_;
    /// The chosen elements of the arrays on the way, by the arrays' attributes.
    std::vector<std::pair<const void*, int>> indices_;
};

// Behind the class: they need it themselves.
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MPlugArray.h>
