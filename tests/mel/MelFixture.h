#pragma once

#include "base/Messages.h"
#include "kit/MessageSink.h"
#include "mel/Interpreter.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>

/// An interpreter with the language's own functions, and everything it says.
class MelFixture {
public:
    MelFixture() { host::mel::registerLanguageCommands(interpreter); }
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
    orvo::test::MessageSink sink_{[this](host::Severity severity, std::string_view text) {
        if (severity == host::Severity::Output)
            printed += text;
        else if (severity == host::Severity::Warning)
            warnings += std::string(text) + '\n';
        else if (severity == host::Severity::Error)
            errors += std::string(text) + '\n';
    }};
};

struct PrintCase {
    const char* script;
    const char* expected;
};

inline void PrintTo(const PrintCase& c, std::ostream* out) { *out << c.script; }
