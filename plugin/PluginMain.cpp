#include "Common/Messages.h"
#include "Registration.h"

#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>

namespace {

/// Registers with the host, through the function set of the plug-in that is being loaded or unloaded.
class HostRegistrar : public orvo::Registrar {
public:
    explicit HostRegistrar(MFnPlugin& plugin) : plugin_(plugin) {}

    MStatus add(const orvo::RegistrationRow& row) override {
        if (row.kind == orvo::RegistrationKind::Command) return plugin_.registerCommand(row.name, row.creator);
        const bool isLocator = row.kind == orvo::RegistrationKind::Locator;
        return plugin_.registerNode(row.name, *row.typeId, row.creator, row.initialize,
                                    isLocator ? MPxNode::kLocatorNode : MPxNode::kDependNode);
    }
    MStatus remove(const orvo::RegistrationRow& row) override {
        if (row.kind == orvo::RegistrationKind::Command) return plugin_.deregisterCommand(row.name);
        return plugin_.deregisterNode(*row.typeId);
    }

private:
    MFnPlugin& plugin_;
};

/// Where there is a window, the sky's menu and shelf come and go with the plug-in; its scripts make them.
void runInWindow(const char* procedure) {
    const MString name(procedure);
    (void)orvo::succeeded(MGlobal::executeCommand("if (!`about -batch` && `exists " + name + "`) " + name + ";"));
}

} // namespace

// The host's header declares the entry points, with the linkage under which the host looks them up.
#if defined(__GNUC__)
#define ORVO_ENTRY_POINT __attribute__((visibility("default")))
#else
#define ORVO_ENTRY_POINT
#endif

ORVO_ENTRY_POINT MStatus initializePlugin(MObject object) {
    return orvo::guarded("initializePlugin", MStatus(MStatus::kFailure), [&]() -> MStatus {
        MStatus status;
        MFnPlugin plugin(object, "TKLA ORVO SKY TOOLKIT", "RVX v1.40.0", "Any", &status);
        if (!orvo::succeeded(status)) return status;
        HostRegistrar registrar(plugin);
        const MStatus registered = orvo::registerRows(orvo::registrationTable(), registrar);
        if (!registered.error()) runInWindow("orvoskyStartup");
        return registered;
    });
}

ORVO_ENTRY_POINT MStatus uninitializePlugin(MObject object) {
    return orvo::guarded("uninitializePlugin", MStatus(MStatus::kFailure), [&]() -> MStatus {
        MStatus status;
        MFnPlugin plugin(object, "Unknown", "Unknown", "Any", &status);
        if (!orvo::succeeded(status)) return status;
        runInWindow("orvoskyShutdown");
        HostRegistrar registrar(plugin);
        return orvo::deregisterRows(orvo::registrationTable(), registrar);
    });
}
