#include "ReportWatch.h"

#include "Failure.h"

#include <fmt/format.h>

#include <utility>

namespace orvosky {

ReportWatch::ReportWatch(const ReportOptions& options) : options_(options) {
    auto& messages = host::Messages::instance();
    previous_ = messages.setSink({});
    messages.setSink([this](host::Severity severity, std::string_view text) {
        errors_ += severity == host::Severity::Error;
        warnings_ += severity == host::Severity::Warning;
        if (previous_)
            previous_(severity, text);
        else
            host::sendToStandardStreams(severity, text);
    });
}

ReportWatch::~ReportWatch() { host::Messages::instance().setSink(std::move(previous_)); }

std::string ReportWatch::counted() const {
    const auto count = [](int n, const char* noun) { return fmt::format("{} {}{}", n, noun, n == 1 ? "" : "s"); };
    if (!options_.strict || warnings_ == 0) return errors_ == 0 ? "" : count(errors_, "error");
    const std::string warnings = count(warnings_, "warning");
    return errors_ == 0 ? warnings : count(errors_, "error") + " and " + warnings;
}

void ReportWatch::requireNoErrors(const std::string& consequence) const {
    if (const std::string found = counted(); !found.empty() && !options_.keepGoing)
        throw Failure(fmt::format("{}, because of {} (see above).", consequence, found));
}

void ReportWatch::finish(const std::string& done) const {
    if (const std::string found = counted(); !found.empty())
        throw Failure(fmt::format("{} in spite of {} (see above).", done, found));
}

} // namespace orvosky
