#pragma once

#include "base/Messages.h"

#include <string>

namespace orvosky {

/// What reported errors and warnings mean for the outcome.
struct ReportOptions {
    bool keepGoing = false; ///< write all the same; the exit status tells
    bool strict = false;    ///< warnings count as errors
};

/// Counts what is reported from its making on. Messages go on to where they went before.
class ReportWatch {
public:
    explicit ReportWatch(const ReportOptions& options);
    ~ReportWatch();
    ReportWatch(const ReportWatch&) = delete;
    ReportWatch& operator=(const ReportWatch&) = delete;

    /// Throws Failure when errors were reported, unless the work is to go on. `consequence` is what comes of it, such
    /// as "Nothing was exported to sky.atmos".
    void requireNoErrors(const std::string& consequence) const;
    /// Throws Failure when errors were reported and the work went on. `done` is what was done, such as
    /// "sky.atmos was written".
    void finish(const std::string& done) const;
    /// Reports a failure that no error has told of since there were `before` of them.
    void tellUnlessTold(const std::string& failure, int before = 0) const {
        if (errors_ == before && !failure.empty()) host::showError(failure);
    }
    int errors() const { return errors_; }

private:
    std::string counted() const;

    ReportOptions options_;
    int errors_ = 0, warnings_ = 0;
    host::Messages::Sink previous_;
};

} // namespace orvosky
