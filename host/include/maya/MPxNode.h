#pragma once

#include <maya/MDGContext.h>
#include <maya/MDataBlock.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

/// Base class of the nodes that plug-ins bring.
class OPENMAYA_EXPORT MPxNode {
public:
    enum Type {
        kDependNode,
        kLocatorNode,
        kDeformerNode,
        kManipContainer,
        kSurfaceShape,
        kFieldNode,
        kEmitterNode,
        kSpringNode,
        kIkSolverNode,
        kHardwareShader,
        kHwShaderNode,
        kTransformNode,
        kObjectSet,
        kFluidEmitterNode,
        kImagePlaneNode,
        kParticleAttributeMapperNode,
        kCameraSetNode,
        kConstraintNode,
        kManipulatorNode,
        kMotionPathNode,
        kClientDeviceNode,
        kThreadedDeviceNode,
        kAssembly,
        kSkinCluster,
        kGeometryFilter,
        kBlendShape,
        kLast
    };

    MPxNode();
    virtual ~MPxNode();
    /// Called once the node is complete; the constructor itself comes before thisMObject() works.
    virtual void postConstructor();
    /// Computes the plug. kUnknownParameter leaves it to the base type.
    virtual MStatus compute(const MPlug& plug, MDataBlock& block);
    virtual bool getInternalValueInContext(const MPlug& plug, MDataHandle& dataHandle, MDGContext& ctx);
    virtual bool setInternalValueInContext(const MPlug& plug, const MDataHandle& dataHandle, MDGContext& ctx);
    virtual bool getInternalValue(const MPlug& plug, MDataHandle& dataHandle);
    virtual bool setInternalValue(const MPlug& plug, const MDataHandle& dataHandle);
    virtual int internalArrayCount(const MPlug& plug, const MDGContext& ctx) const;
    virtual void copyInternalData(MPxNode* node);
    virtual MStatus legalConnection(const MPlug& plug, const MPlug& otherPlug, bool asSrc, bool& isLegal) const;
    virtual MStatus legalDisconnection(const MPlug& plug, const MPlug& otherPlug, bool asSrc, bool& isLegal) const;
    virtual MStatus setDependentsDirty(const MPlug& plugBeingDirtied, MPlugArray& affectedPlugs);
    virtual MStatus connectionMade(const MPlug& plug, const MPlug& otherPlug, bool asSrc);
    virtual MStatus connectionBroken(const MPlug& plug, const MPlug& otherPlug, bool asSrc);
    virtual bool isPassiveOutput(const MPlug& plug) const;
    virtual MStatus shouldSave(const MPlug& plug, bool& isSaving);
    virtual MPlug passThroughToOne(const MPlug& plug) const;
    virtual bool passThroughToMany(const MPlug& plug, MPlugArray& plugArray) const;
    virtual MPxNode::Type type() const;
    virtual bool isAbstractClass() const;

    /// @name For use while the plug-in's initialisation function of the type runs
    /// @{
    static MStatus addAttribute(const MObject& attr);
    static MStatus inheritAttributesFrom(const MString& parentClassName);
    static MStatus attributeAffects(const MObject& whenChanges, const MObject& isAffected);
    /// @}

    virtual MTypeId typeId() const;
    virtual MString typeName() const;
    virtual MString name() const;
    virtual MObject thisMObject() const;
    virtual MStatus setExistWithoutInConnections(bool flag);
    virtual bool existWithoutInConnections(MStatus* ReturnStatus = NULL) const;
    virtual MStatus setExistWithoutOutConnections(bool flag);
    virtual bool existWithoutOutConnections(MStatus* ReturnStatus = NULL) const;
    static const char* className();

    /// The attributes that all nodes have.
    static MObject message;
    static MObject isHistoricallyInteresting;
    static MObject caching;
    static MObject state;

protected:
    virtual MDataBlock forceCache(MDGContext& context = MDGContext::fsNormal);
    virtual void setMPSafe(bool flag);
    virtual MStatus setDoNotWrite(bool flag);
    virtual bool doNotWrite(MStatus* ReturnStatus = NULL) const;

private:
    friend struct host::api::Access;
    MPxNode(const MPxNode&) = delete;
    MPxNode& operator=(const MPxNode&) = delete;
    MObject node_;
    bool withoutIn_ = true, withoutOut_ = true;
};
