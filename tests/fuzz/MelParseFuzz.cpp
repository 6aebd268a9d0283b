#include "mel/Ast.h"
#include "mel/Command.h"
#include "mel/Execution.h"
#include "mel/Parser.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// MEL's lexer and parser on any bytes: a script is parsed, or refused with a message that names one of its lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace host::mel;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    FileScope scope{"script.mel", {}};
    try {
        parseScript(text, scope, [](std::string_view) { return nullptr; });
    } catch (const Error& e) {
        const auto lines = std::ranges::count(text, '\n') + 1;
        if (*e.what() == '\0' || e.line() < 1 || e.line() > lines) std::abort();
    }
    return 0;
}
