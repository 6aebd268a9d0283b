#pragma once

#include <maya/MArgList.h>

namespace host {

/// What the script language puts into an argument list beyond the types that addArg() takes: whole arrays.
class ArgListAccess {
public:
    static void add(MArgList& list, const MIntArray& array) { list.arguments_.emplace_back(array); }
    static void add(MArgList& list, const MDoubleArray& array) { list.arguments_.emplace_back(array); }
    static void add(MArgList& list, const MStringArray& array) { list.arguments_.emplace_back(array); }
};

} // namespace host
