#pragma once

#include "base/Messages.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace orvosky {

/// What is told of a run, and where.
struct LogOptions {
    std::string file;     ///< JSON, one object a line; empty for none
    bool quiet = false;   ///< no information on the standard output; what scripts print stays
    bool verbose = false; ///< the time of each stage
};

/// Takes all messages for as long as it lives, beneath whatever else takes them, and the times of the stages.
///
/// The file has one JSON object a line, each with "at", the seconds since the start: messages ("severity": "info",
/// "warning", "error" or "output"; "text"), stages ("stage", "seconds"), and at last "exit", the status.
class RunLog {
public:
    /// Throws Failure when the file cannot be made.
    explicit RunLog(const LogOptions& options);
    ~RunLog();
    RunLog(const RunLog&) = delete;
    RunLog& operator=(const RunLog&) = delete;

    void stage(std::string_view name, std::chrono::duration<double> duration);
    /// The run's end. @return the status: that of a failure when the file could not be written
    int finish(int status);

private:
    double now() const;
    void line(const std::string& json);

    LogOptions options_;
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
    bool failed_ = false;
    host::Messages::Sink previous_;
};

/// The time of a stage of a run, from its making to its end, for the log that there is.
class Stage {
public:
    explicit Stage(std::string name) : name_(std::move(name)) {}
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

private:
    std::string name_;
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

} // namespace orvosky
