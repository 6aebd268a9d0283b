#include "HostStandIn.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

#include <cstdio>

// The operations of the host that the plug-in's files and numbers call, where there is no host.

std::string& workspaceAnswer() {
    static std::string answer;
    return answer;
}

MStatus MGlobal::executeCommand(const MString& command, MString& result, bool, bool) {
    if (command != "workspace -q -rd;") return MStatus::kFailure;
    result.setUTF8(workspaceAnswer().c_str());
    return MStatus::kSuccess;
}

MStatus MGlobal::executeCommand(const MString&, int& result, bool, bool) {
    result = 0;
    return MStatus::kSuccess;
}

void MGlobal::displayInfo(const MString& text) { std::fprintf(stderr, "%s\n", text.asUTF8()); }
void MGlobal::displayWarning(const MString& text) { std::fprintf(stderr, "Warning: %s\n", text.asUTF8()); }
void MGlobal::displayError(const MString& text) { std::fprintf(stderr, "Error: %s\n", text.asUTF8()); }
