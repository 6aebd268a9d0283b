#pragma once

#include <maya/MArgList.h>

namespace host {

/// What the script language puts into an argument list beyond the types that addArg() takes: whole arrays; and the
/// arguments as they are.
class ArgListAccess {
public:
    static void add(MArgList& list, const MIntArray& array) { list.arguments_.emplace_back(array); }
    static void add(MArgList& list, const MDoubleArray& array) { list.arguments_.emplace_back(array); }
    static void add(MArgList& list, const MStringArray& array) { list.arguments_.emplace_back(array); }
    /// Calls `take` with each argument: a bool, int, double, MString or an array of them.
    template <class Take>
    static void each(const MArgList& list, Take take) {
        for (const auto& argument : list.arguments_) std::visit(take, argument);
    }
};

} // namespace host
