#pragma once

#include <maya/MObject.h>
#include <maya/MSelectionList.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

/// Opening, importing and saving scenes, as the command `file` does it: Maya ASCII is read and written, models are
/// imported. What fails is told of and gives kFailure. `type` may be null, "mayaAscii", or a kind of model for import.
class OPENMAYA_EXPORT MFileIO {
public:
    enum ReferenceMode { kLoadDefault, kLoadAllReferences, kLoadNoReferences };
    enum NamespaceMergeMethod {
        kRemoveNamespaceIfEmpty,
        kMergeNamespaceWithRootNamespace,
        kMergeNamespaceWithParentNamespace,
        kForceDeleteNamespaceContent
    };
    MFileIO();
    MFileIO(const MString& fileName);
    virtual ~MFileIO();
    /// The name that a new scene will be saved by, before it has one of its own.
    static MString currentFile();
    static MStatus setCurrentFile(const MString& fileName);
    static MString fileType();
    static MStatus getFileTypes(MStringArray& types);
    static MStatus newFile(bool force = false);
    static MStatus open(const MString& fileName, const char* type = NULL, bool force = false,
                        ReferenceMode refMode = kLoadDefault, bool ignoreVersion = false);
    static MStatus save(bool force = false);
    static MStatus saveAs(const MString& fileName, const char* type = NULL, bool force = false);
    static MStatus importFile(const MString& fileName, const char* type = NULL, bool preserveReferences = false,
                              const char* nameSpace = NULL, bool ignoreVersion = false);
    static MStatus exportAll(const MString& fileName, const char* type = NULL, bool preserveReferences = false);
    /// The selected nodes with what is below and above them, what they are computed from, and their shading.
    static MStatus exportSelected(const MString& fileName, const char* type = NULL, bool preserveReferences = false);
    /// The files that the scene itself refers to: as it names them, or where they were found.
    static MStatus getReferences(MStringArray& references, bool wantUnresolvedNames = false);
    /// What a referenced file has brought, without what its own references have.
    static MStatus getReferenceNodes(const MString& fileName, MStringArray& nodes);
    static MStatus getReferenceNodes(const MString& fileName, MSelectionList& list);
    /// The node that stands for a reference tells its file; for others the text is empty and the status kFailure.
    static MString getReferenceFileByNode(MObject& referenceNode, MStatus* returnStatus = NULL);
    /// Makes a reference, which is read at once: kFailure for one that is to wait. Locking is no concern here: nodes of
    /// a reference can be changed, but not renamed, moved or deleted.
    static MStatus reference(const MString& fileName, bool deferReference = false, bool lockReference = false,
                             const MString& nameSpace = "");
    /// Removes a reference with what it brought; what else is in its namespace goes as the method says.
    static MStatus removeReference(const MString& fileName,
                                   NamespaceMergeMethod namespaceMergeMethod = kRemoveNamespaceIfEmpty);
    /// The files that the scene consists of, itself first.
    static MStatus getFiles(MStringArray& files, bool wantUnresolvedNames = false, bool wantReferencesOnly = false);
    /// Read the file of a reference, anew when it has been read, or give up what it brought; what the scene changes of
    /// it is kept. They answer the file. References within others are loaded with these alone.
    static MString loadReference(const MString& referenceFileName, MStatus* returnStatus = NULL);
    static MString loadReferenceByNode(const MString& referenceNodeName, MStatus* returnStatus = NULL);
    static MString loadReferenceByNode(MObject& referenceNode, MStatus* returnStatus = NULL);
    static MString unloadReference(const MString& referenceFileName, MStatus* returnStatus = NULL);
    static MString unloadReferenceByNode(const MString& referenceNodeName, MStatus* returnStatus = NULL);
    static MString unloadReferenceByNode(MObject& referenceNode, MStatus* returnStatus = NULL);
    static bool isReadingFile();
    static bool isWritingFile();
    static bool isOpeningFile();
    static bool isNewingFile();
    static bool isReferencingFile();
    static bool isSavingReference(); ///< never: a reference's own file is not written
    static bool mustRenameToSave(MStatus* ReturnStatus = NULL);
    static MStatus setMustRenameToSave(bool mustRename);
    static MString mustRenameToSaveMsg(MStatus* ReturnStatus = NULL);
    static MStatus setMustRenameToSaveMsg(const MString& message);
    /// The file of the last operation of that kind, from before it was begun on.
    static MString beforeOpenFilename(MStatus* ReturnStatus = NULL);
    static MString beforeImportFilename(MStatus* ReturnStatus = NULL);
    static MString beforeSaveFilename(MStatus* ReturnStatus = NULL);
    static MString beforeExportFilename(MStatus* ReturnStatus = NULL);
    /// Whether the last operation failed.
    static bool getErrorStatus(MStatus* ReturnStatus = NULL);
    static MStatus resetError();
    static MString fileCurrentlyLoading();
    static bool isImportingFile();
    static const char* className();
    static MStatus import(const MString& fileName, const char* type = NULL, bool preserveReferences = false,
                          const char* nameSpace = NULL);
};
