#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>

/// The name of a file as it was given, with its variables and "~" expanded, and as it is found: relative names are
/// looked up from the project's folder. What is not found resolves to nothing.
class OPENMAYA_EXPORT MFileObject {
public:
    enum MFileResolveMethod {
        kNone = (1 << 0),
        kExact = (1 << 1),
        kDirMap = (1 << 2),
        kReferenceMappings = (1 << 3),
        kRelative = (1 << 4),
        kBaseName = (1 << 5),
        kInputFile = kExact | kDirMap | kRelative | kBaseName,
        kInputReference = kInputFile | kReferenceMappings,
        kStrict = kExact | kDirMap
    };
    MFileObject();
    MFileObject(const MFileObject& other);
    virtual ~MFileObject();
    MFileObject& operator=(const MFileObject& other);
    MStatus setRawName(const MString& fileName);
    MStatus setRawPath(const MString& filePath);
    MStatus setRawFullName(const MString& fullFileName);
    MStatus overrideResolvedFullName(const MString& fullFileName);
    MString rawName() const;
    /// With a slash at its end.
    MString rawPath() const;
    MString rawFullName() const;
    MString expandedPath() const;
    MString expandedFullName() const;
    MString resolvedName() const;
    MString resolvedPath() const;
    MString resolvedFullName() const;
    /// The folders of the path, which may name several with ":" between them.
    unsigned int pathCount();
    MString ithPath(unsigned int index);
    MString ithFullName(unsigned int index);
    bool exists();
    bool exists(unsigned int index);
    bool isSet() const;
    void setResolveMethod(MFileResolveMethod method);
    MFileResolveMethod resolveMethod() const;
    MStatus setName(const MString& fileName);
    MStatus setFullName(const MString& fileName);
    MString name() const;
    MString path() const;
    MString fullName() const;
    static bool isAbsolutePath(const MString& fileName);
    static MString getResolvedFullName(const MString& rawFullName);
    static MString getResolvedFullName(const MString& rawFullName, bool& exists,
                                       MFileObject::MFileResolveMethod method = MFileObject::kNone);

private:
    MString name_, path_, override_;
    MFileResolveMethod method_ = kInputFile;
};
