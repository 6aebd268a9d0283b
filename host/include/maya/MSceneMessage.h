#pragma once

#include <maya/MMessage.h>

/// Callbacks of the scene as a document, and of plug-ins. A check that sets its answer to false prevents what it asks
/// about. References and rendering for software have callbacks that are never called here.
class OPENMAYA_EXPORT MSceneMessage : public MMessage {
public:
    enum Message {
        kSceneUpdate,
        kBeforeNew,
        kAfterNew,
        kBeforeImport,
        kAfterImport,
        kBeforeOpen,
        kAfterOpen,
        kBeforeFileRead,
        kAfterFileRead,
        kAfterSceneReadAndRecordEdits,
        kBeforeExport,
        kAfterExport,
        kBeforeSave,
        kAfterSave,
        kBeforeReference,
        kAfterReference,
        kBeforeRemoveReference,
        kAfterRemoveReference,
        kBeforeImportReference,
        kAfterImportReference,
        kBeforeExportReference,
        kAfterExportReference,
        kBeforeUnloadReference,
        kAfterUnloadReference,
        kBeforeSoftwareRender,
        kAfterSoftwareRender,
        kBeforeSoftwareFrameRender,
        kAfterSoftwareFrameRender,
        kSoftwareRenderInterrupted,
        kMayaInitialized,
        kMayaExiting,
        kBeforeNewCheck,
        kBeforeOpenCheck,
        kBeforeSaveCheck,
        kBeforeImportCheck,
        kBeforeExportCheck,
        kBeforeLoadReference,
        kAfterLoadReference,
        kBeforeLoadReferenceCheck,
        kBeforeReferenceCheck,
        kBeforeCreateReferenceCheck = kBeforeReferenceCheck,
        kBeforePluginLoad,
        kAfterPluginLoad,
        kBeforePluginUnload,
        kAfterPluginUnload,
        kBeforeCreateReference,
        kAfterCreateReference,
        kExportStarted,
        kBeforeLoadReferenceAndRecordEdits,
        kAfterLoadReferenceAndRecordEdits,
        kBeforeCreateReferenceAndRecordEdits,
        kAfterCreateReferenceAndRecordEdits,
        kLast
    };
    static MCallbackId addCallback(Message msg, MMessage::MBasicFunction func, void* clientData = NULL,
                                   MStatus* ReturnStatus = NULL);
    /// kBeforeNewCheck, kBeforeOpenCheck, kBeforeSaveCheck, kBeforeImportCheck, kBeforeExportCheck; other messages give
    /// kInvalidParameter.
    static MCallbackId addCheckCallback(Message msg, MMessage::MCheckFunction func, void* clientData = NULL,
                                        MStatus* ReturnStatus = NULL);
    /// The same with the file; it may be given another name. Not for kBeforeNewCheck.
    static MCallbackId addCheckFileCallback(Message msg, MMessage::MCheckFileFunction func, void* clientData = NULL,
                                            MStatus* ReturnStatus = NULL);
    /// kBeforePluginLoad and kBeforePluginUnload, with the path or name; kAfterPluginLoad, with path and name;
    /// kAfterPluginUnload, with name and path.
    static MCallbackId addStringArrayCallback(Message msg, MMessage::MStringArrayFunction func, void* clientData = NULL,
                                              MStatus* ReturnStatus = NULL);
    static MCallbackId addReferenceCallback(Message msg, MMessage::MObjectFileFunction func, void* clientData = NULL,
                                            MStatus* ReturnStatus = NULL);
    static MCallbackId addCheckReferenceCallback(Message msg, MMessage::MCheckObjectFileFunction func,
                                                 void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addConnectionFailedCallback(MMessage::MConnFailFunction func, void* clientData = NULL,
                                                   MStatus* ReturnStatus = NULL);
    static MCallbackId addNamespaceRenamedCallback(MMessage::MTwoStringFunction func, void* clientData = NULL,
                                                   MStatus* ReturnStatus = NULL);
    static MCallbackId addCallback(Message msg, void (*func)(bool* retCode, void* clientData), void* clientData = NULL,
                                   MStatus* ReturnStatus = NULL);
    static MCallbackId addCallback(Message msg, void (*func)(bool* retCode, MFileObject& file, void* clientData),
                                   void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addCallback(Message msg, void (*func)(const MStringArray& strs, void* clientData),
                                   void* clientData, MStatus* ReturnStatus);
    static const char* className();
};
