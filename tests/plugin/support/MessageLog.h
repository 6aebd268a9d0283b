#pragma once

#include "base/Messages.h"
#include "kit/MessageSink.h"

#include <string>
#include <utility>
#include <vector>

/// What the host's script editor is told while the log lives.
class MessageLog {
public:
    std::vector<std::string> errors() const { return of(host::Severity::Error); }
    std::vector<std::string> infos() const { return of(host::Severity::Info); }
    std::vector<std::string> all() const {
        std::vector<std::string> texts;
        for (const auto& [severity, text] : entries_) texts.push_back(prefix(severity) + text);
        return texts;
    }
    void clear() { entries_.clear(); }

private:
    static std::string prefix(host::Severity severity) {
        switch (severity) {
        case host::Severity::Info: return "Info: ";
        case host::Severity::Warning: return "Warning: ";
        case host::Severity::Error: return "Error: ";
        case host::Severity::Output: break;
        }
        return "";
    }
    std::vector<std::string> of(host::Severity wanted) const {
        std::vector<std::string> texts;
        for (const auto& [severity, text] : entries_)
            if (severity == wanted) texts.push_back(text);
        return texts;
    }

    std::vector<std::pair<host::Severity, std::string>> entries_;
    orvo::test::MessageSink sink_{
        [this](host::Severity severity, std::string_view text) { entries_.emplace_back(severity, text); }};
};
