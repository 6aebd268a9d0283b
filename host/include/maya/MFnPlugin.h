#pragma once

#include <maya/MApiVersion.h>
#include <maya/MFnBase.h>
#include <maya/MPxCommand.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>
#include <maya/MTypeId.h>

using MCreatorFunction = void* (*)();
using MInitializeFunction = MStatus (*)();
using MCreateSyntaxFunction = MSyntax (*)();

/// Function set for the plug-in that is being loaded or unloaded: registers what it brings.
class OPENMAYA_EXPORT MFnPlugin : public MFnBase {
public:
    MFnPlugin();
    MFnPlugin(MObject& object, const char* vendor = "Unknown", const char* version = "Unknown",
              const char* requiredApiVersion = "Any", MStatus* ReturnStatus = 0L);
    virtual ~MFnPlugin();
    virtual MFn::Type type() const override;
    MString vendor(MStatus* ReturnStatus = NULL) const;
    MString version(MStatus* ReturnStatus = NULL) const;
    MString apiVersion(MStatus* ReturnStatus = NULL) const;
    MString name(MStatus* ReturnStatus = NULL) const;
    MString loadPath(MStatus* ReturnStatus = NULL) const;
    MStatus setName(const MString& newName, bool makeUnique = true);
    MStatus setVersion(const MString& newVersion);
    MStatus registerCommand(const MString& commandName, MCreatorFunction creatorFunction,
                            MCreateSyntaxFunction createSyntaxFunction = NULL);
    MStatus deregisterCommand(const MString& commandName);
    /// Dependency and locator nodes; other types give kNotImplemented here.
    MStatus registerNode(const MString& typeName, const MTypeId& typeId, MCreatorFunction creatorFunction,
                         MInitializeFunction initFunction, MPxNode::Type type = MPxNode::kDependNode,
                         const MString* classification = NULL);
    MStatus deregisterNode(const MTypeId& typeId);
    static MObject findPlugin(const MString& pluginName);
    static bool isNodeRegistered(const MString& typeName);
    static const char* className();
};

// A plug-in's entry points are found by name when it is loaded.
#if defined(_WIN32)
#define ORVO_PLUGIN_EXPORT extern "C" __declspec(dllexport)
#else
#define ORVO_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
#endif
ORVO_PLUGIN_EXPORT MStatus initializePlugin(MObject obj);
ORVO_PLUGIN_EXPORT MStatus uninitializePlugin(MObject obj);
