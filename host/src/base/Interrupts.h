#pragma once

#include <string>
#include <vector>

/// What becomes of files when a signal (HUP, INT, QUIT, TERM, XCPU) ends the process.
///
/// Handlers are in place only while one of these objects lives; signals that are ignored stay so. Whichever thread a
/// signal comes to, it waits, or cleans up, for all of them.
namespace host::base {

/// While one lives, these signals wait; they take effect when the last one goes.
class InterruptsHeld {
public:
    InterruptsHeld();
    ~InterruptsHeld();
    InterruptsHeld(const InterruptsHeld&) = delete;
    InterruptsHeld& operator=(const InterruptsHeld&) = delete;
};

/// A folder of temporary files that one of these signals takes along.
class RemovedOnInterrupt {
public:
    /// The folder `name` in `parent`, open as `folder`, with files of these names. The descriptors stay the caller's.
    RemovedOnInterrupt(int parent, std::string name, int folder, std::vector<std::string> files);
    ~RemovedOnInterrupt();
    RemovedOnInterrupt(const RemovedOnInterrupt&) = delete;
    RemovedOnInterrupt& operator=(const RemovedOnInterrupt&) = delete;

    struct Folder {
        int parent, folder;
        std::string name;
        std::vector<std::string> files;
    };

private:
    Folder folder_;
    int slot_ = -1;
};

} // namespace host::base
