#pragma once

#include <string>

/// What the host answers to "workspace -q -rd;". To be set before the plug-in asks, which it does once.
std::string& workspaceAnswer();
