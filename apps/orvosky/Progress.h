#pragma once

#include "base/Messages.h"

#include <chrono>
#include <cstddef>
#include <set>
#include <string>

namespace orvosky {

/// "12 s", "3 min 20 s", "2 h 5 min"
std::string durationText(std::chrono::duration<double> duration);

/// Tells how far a sequence of pieces of work is: a bar on a terminal, a line for each piece elsewhere. While one
/// lives, a warning that was shown is not shown again: each piece of a sequence would repeat it. A single piece of work
/// is told of by its line alone.
class Progress {
public:
    explicit Progress(std::size_t count);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// A piece is done; `line` says so, without a full stop.
    void done(const std::string& line);
    /// A piece was left out, as it had been done before.
    void leftOut(const std::string& line);
    /// "24 frames: 20 rendered, 4 were there", for more than one piece.
    void finish(const std::string& noun, const std::string& verb);

private:
    void pass(host::Severity severity, std::string_view text);
    void step(const std::string& line, bool worked);
    /// "7 of 24, 12 s left"
    std::string state() const;
    void drawBar();
    void eraseBar();

    std::size_t count_, done_ = 0, leftOut_ = 0;
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::chrono::duration<double> working_{0}; ///< for the pieces that were not left out
    bool bar_;                                 ///< whether there is a terminal to draw it on
    bool drawn_ = false;
    std::set<std::string, std::less<>> warned_;
    host::Messages::Sink previous_;
};

} // namespace orvosky
