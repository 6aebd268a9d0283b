#pragma once

#include "base/Messages.h"
#include "mel/Interpreter.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>

/// An interpreter with the language's own functions, and everything it says.
class MelFixture {
public:
    MelFixture() {
        host::mel::registerLanguageCommands(interpreter);
        previous_ = host::Messages::instance().setSink([this](host::Severity severity, std::string_view text) {
            if (severity == host::Severity::Output)
                printed += text;
            else if (severity == host::Severity::Warning)
                warnings += std::string(text) + '\n';
            else if (severity == host::Severity::Error)
                errors += std::string(text) + '\n';
        });
    }
    ~MelFixture() { host::Messages::instance().setSink(std::move(previous_)); }
    MelFixture(const MelFixture&) = delete;
    MelFixture& operator=(const MelFixture&) = delete;

    /// What the script prints.
    std::string run(const std::string& script) {
        printed.clear();
        interpreter.execute(script);
        return printed;
    }

    host::mel::Interpreter interpreter;
    std::string printed, warnings, errors;

private:
    host::Messages::Sink previous_;
};

struct PrintCase {
    const char* script;
    const char* expected;
};

inline void PrintTo(const PrintCase& c, std::ostream* out) { *out << c.script; }
