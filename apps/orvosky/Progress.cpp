#include "Progress.h"

#include <fmt/format.h>

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace orvosky {

std::string durationText(std::chrono::duration<double> duration) {
    const auto seconds = static_cast<long long>(std::ceil(std::max(0.0, duration.count())));
    if (seconds < 60) return fmt::format("{} s", seconds);
    if (seconds < 3600) return fmt::format("{} min {} s", seconds / 60, seconds % 60);
    return fmt::format("{} h {} min", seconds / 3600, seconds % 3600 / 60);
}

Progress::Progress(std::size_t count) : count_(count), bar_(count > 1 && isatty(STDERR_FILENO) != 0) {
    auto& messages = host::Messages::instance();
    previous_ = messages.setSink({});
    messages.setSink([this](host::Severity severity, std::string_view text) {
        if (count_ > 1 && severity == host::Severity::Warning && !warned_.emplace(text).second) return;
        eraseBar();
        pass(severity, text);
    });
}

Progress::~Progress() {
    eraseBar();
    host::Messages::instance().setSink(std::move(previous_));
}

void Progress::pass(host::Severity severity, std::string_view text) {
    if (previous_)
        previous_(severity, text);
    else
        host::sendToStandardStreams(severity, text);
}

std::string Progress::state() const {
    const std::size_t at = done_ + leftOut_;
    std::string text = fmt::format("{} of {}", at, count_);
    if (done_ > 0 && at < count_)
        text += fmt::format(", {} left",
                            durationText(working_ / static_cast<double>(done_) * static_cast<double>(count_ - at)));
    return text;
}

void Progress::step(const std::string& line, bool worked) {
    const auto now = std::chrono::steady_clock::now();
    if (worked) working_ += now - begin_;
    begin_ = now;
    ++(worked ? done_ : leftOut_);
    if (count_ < 2) return pass(host::Severity::Info, line + ".");
    if (bar_) return drawBar();
    pass(host::Severity::Info, fmt::format("{}; {}.", line, state()));
}

void Progress::done(const std::string& line) { step(line, true); }
void Progress::leftOut(const std::string& line) { step(line, false); }

void Progress::finish(const std::string& noun, const std::string& verb) {
    if (count_ < 2) return;
    eraseBar();
    std::string text = fmt::format("{} {}: {} {}", count_, noun, done_, verb);
    if (leftOut_ > 0) text += fmt::format(", {} were there", leftOut_);
    pass(host::Severity::Info, text + ".");
}

void Progress::drawBar() {
    constexpr std::size_t cells = 30;
    const std::size_t full = cells * (done_ + leftOut_) / count_;
    const std::string text = fmt::format("\r[{:#<{}}{:.<{}}] {}\x1b[K", "", full, "", cells - full, state());
    std::fputs(text.c_str(), stderr);
    std::fflush(stderr);
    drawn_ = true;
}

void Progress::eraseBar() {
    if (!drawn_) return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    drawn_ = false;
}

} // namespace orvosky
