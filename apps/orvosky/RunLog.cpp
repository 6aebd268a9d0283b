#include "RunLog.h"

#include "Failure.h"
#include "Session.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <cmath>
#include <cstring>

namespace orvosky {
namespace {

using Json = nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

RunLog* current = nullptr;

const char* nameOf(host::Severity severity) {
    switch (severity) {
    case host::Severity::Output: return "output";
    case host::Severity::Info: return "info";
    case host::Severity::Warning: return "warning";
    case host::Severity::Error: break;
    }
    return "error";
}

/// To the millisecond.
double rounded(double seconds) { return std::round(seconds * 1000) / 1000; }

/// Bytes that are no UTF-8 become U+FFFD.
std::string textOf(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

} // namespace

RunLog::RunLog(const LogOptions& options) : options_(options), file_(nullptr, &std::fclose) {
    if (!options.file.empty()) {
        file_.reset(std::fopen(options.file.c_str(), "we"));
        if (!file_) throw Failure(fmt::format("Cannot write {}: {}.", options.file, std::strerror(errno)));
    }
    current = this;
    previous_ = host::Messages::instance().setSink([this](host::Severity severity, std::string_view text) {
        line(textOf({{"at", rounded(now())}, {"severity", nameOf(severity)}, {"text", text}}));
        if (severity == host::Severity::Info && options_.quiet) return;
        host::sendToStandardStreams(severity, text);
    });
}

RunLog::~RunLog() {
    host::Messages::instance().setSink(std::move(previous_));
    current = nullptr;
}

double RunLog::now() const { return std::chrono::duration<double>(Clock::now() - begin_).count(); }

void RunLog::line(const std::string& json) {
    if (!file_) return;
    // What is known so far is in the file, also when the program is ended from outside.
    if (std::fprintf(file_.get(), "%s\n", json.c_str()) < 0 || std::fflush(file_.get()) != 0) failed_ = true;
}

void RunLog::stage(std::string_view name, std::chrono::duration<double> duration) {
    line(textOf({{"at", rounded(now())}, {"stage", name}, {"seconds", rounded(duration.count())}}));
    if (options_.verbose)
        host::sendToStandardStreams(host::Severity::Info, fmt::format("{:>9.3f} s  {}", duration.count(), name));
}

int RunLog::finish(int status) {
    if (status == kWorked && options_.verbose)
        host::sendToStandardStreams(host::Severity::Info, fmt::format("{:>9.3f} s  in all", now()));
    line(textOf({{"at", rounded(now())}, {"exit", status}}));
    if (!failed_) return status;
    host::showError(fmt::format("Cannot write {}.", options_.file));
    return status == kWorked ? kFailed : status;
}

Stage::~Stage() {
    if (current) current->stage(name_, Clock::now() - begin_);
}

} // namespace orvosky
