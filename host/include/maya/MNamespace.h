#pragma once

#include <maya/MObjectArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

/// The namespaces of the scene. Names are from the root with a colon in front, else from the current namespace; those
/// that are answered have no colon in front, but for the root's own ":". What is refused (a name that is taken, a
/// namespace that is not there or not empty, nodes of a reference) gives kFailure and changes nothing. None of it can
/// be undone.
class OPENMAYA_EXPORT MNamespace {
public:
    static MStatus addNamespace(const MString& name, const MString* parent = NULL);
    /// The name with "_" for each character that a name cannot have; kInvalidParameter for an empty one.
    static MString validateName(const MString& name, MStatus* ReturnStatus = NULL);
    static MString currentNamespace(MStatus* ReturnStatus = NULL);
    static MStatus setCurrentNamespace(const MString& name);
    static MStringArray getNamespaces(const bool recurse = false, MStatus* ReturnStatus = NULL);
    static MStringArray getNamespaces(const MString& parentNamespace, const bool recurse = false,
                                      MStatus* ReturnStatus = NULL);
    static bool namespaceExists(const MString& name, MStatus* ReturnStatus = NULL);
    static MString parentNamespace(MStatus* ReturnStatus = NULL); ///< of the current one
    static MStatus removeNamespace(const MString& name, bool removeContents = false);
    /// The new name is one part, without those above it.
    static MStatus renameNamespace(const MString& oldName, const MString& newName, const MString* parent = NULL);
    static MObjectArray getNamespaceObjects(const MString& parentNamespace, const bool recurse = false,
                                            MStatus* ReturnStatus = NULL);
    /// Moves what is in one namespace into another. Names that are taken there are refused, or renamed with `force`.
    static MStatus moveNamespace(const MString& src, const MString& dst, const bool force = false);
    static MString rootNamespace(MStatus* ReturnStatus = NULL);
    /// False: names of nodes are always looked up from the root. Asking for anything else gives kNotImplemented.
    static bool relativeNames(MStatus* ReturnStatus = NULL);
    static MStatus setRelativeNames(bool newState);
    /// "a:b" of "a:b:c", and "c"; these need no such namespace.
    static MString getNamespaceFromName(const MString& fullName, MStatus* ReturnStatus = NULL);
    static MString stripNamespaceFromName(const MString& fullName, MStatus* ReturnStatus = NULL);
    static MString makeNamepathAbsolute(const MString&, MStatus* ReturnStatus = NULL);
    static const char* className();
};
