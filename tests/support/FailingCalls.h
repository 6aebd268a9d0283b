#pragma once

#include <string>

/// System calls and allocations that fail, or are the last of a process, on demand.
///
/// The functions of the C library that files are written with stand here once more, in front of it, and count the calls
/// of one thread (allocations only where they are linked in). Linked into a test program they do what the test says;
/// preloaded into another program, what ORVO_CALLS says there: NAME:N:WHAT, the N-th call of that name (NAME may be
/// empty for any), and as WHAT an error number, "kN" for signal N before the call, or "sN" for N milliseconds of sleep
/// before it.
namespace orvo::test {

struct CallPlan {
    std::string name = {};      ///< of the calls that count; empty: all
    int number = 0;             ///< of the call that is meant, from 1
    int error = 0;              ///< it fails with this errno; allocations fail with std::bad_alloc
    int signal = 0;             ///< or this signal is raised before it
    int sleep = 0;              ///< or it waits for so many milliseconds
    bool allThatFollow = false; ///< and so does every later one
};

/// While one lives, the calls of this thread follow its plan.
class PlannedCalls {
public:
    explicit PlannedCalls(CallPlan plan);
    ~PlannedCalls();
    PlannedCalls(const PlannedCalls&) = delete;
    PlannedCalls& operator=(const PlannedCalls&) = delete;
    /// How many calls of the plan's name there have been.
    int count() const;
};

} // namespace orvo::test
