#include <maya/MFnPlugin.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

#include <stdexcept>
#include <string>

/// A plug-in whose file name tells what it does: "fine...", "failing..." (refuses to start), "partial..." (does so
/// after it has registered a node type), "throwing...", "clinging..." (refuses to go).
namespace {

class Plain : public MPxNode {};

bool named(const MFnPlugin& plugin, const char* start) {
    return std::string(plugin.name().asChar()).rfind(start, 0) == 0;
}

} // namespace

MStatus initializePlugin(MObject object) {
    MFnPlugin plugin(object, "Moody", "2.5");
    if (named(plugin, "failing")) return MStatus::kNotFound;
    if (named(plugin, "throwing")) throw std::runtime_error("not today");
    const MStatus status = plugin.registerNode(
        plugin.name() + "Node", MTypeId(0x7f200), [] { return static_cast<void*>(new Plain); }, nullptr);
    return named(plugin, "partial") ? MStatus(MStatus::kFailure) : status;
}

MStatus uninitializePlugin(MObject object) {
    MFnPlugin plugin(object);
    if (named(plugin, "clinging")) return MStatus::kFailure;
    return plugin.deregisterNode(MTypeId(0x7f200));
}
