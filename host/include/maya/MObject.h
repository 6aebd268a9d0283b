#pragma once

#include <maya/MFn.h>
#include <maya/MTypes.h>

#include <memory>

namespace host::api {
struct Access;
struct Handle;
} // namespace host::api

/// A handle to something that belongs to the host: a node, an attribute, data, a plug-in. It does not keep a node
/// alive; operations on a handle whose node is gone fail.
class OPENMAYA_EXPORT MObject {
public:
    MObject();
    MObject(const MObject& other);
    ~MObject();
    /// Whether a function set of the type can work on the object.
    bool hasFn(MFn::Type fs) const;
    bool isNull() const;
    MFn::Type apiType() const;
    const char* apiTypeStr() const;
    bool operator==(const MObject& other) const;
    bool operator!=(const MObject& other) const;
    MObject& operator=(const MObject& other);

    static MObject kNullObj;

private:
    friend struct host::api::Access;
    std::shared_ptr<host::api::Handle> handle_;
};
