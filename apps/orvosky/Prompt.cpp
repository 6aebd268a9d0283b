#include "Prompt.h"

#include "base/Messages.h"
#include "commands/Host.h"

#include <editline/readline.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

namespace orvosky {
namespace {

namespace fs = std::filesystem;

/// Where the lines are kept; empty for nowhere.
fs::path historyFile() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    fs::path folder = state && *state ? fs::path(state) : home && *home ? fs::path(home) / ".local/state" : fs::path();
    if (folder.empty()) return {};
    std::error_code failed;
    fs::create_directories(folder / "orvosky", failed);
    return failed ? fs::path() : folder / "orvosky/history";
}

} // namespace

bool goesOn(const std::string& text) {
    int open = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            for (++i; i < text.size() && text[i] != '"'; ++i)
                if (text[i] == '\\') ++i;
            if (i >= text.size()) return true;
        } else if (c == '/' && text.compare(i, 2, "//") == 0) {
            i = text.find('\n', i);
            if (i == std::string::npos) break;
        } else if (c == '/' && text.compare(i, 2, "/*") == 0) {
            i = text.find("*/", i + 2);
            if (i == std::string::npos) return true;
            ++i;
        } else if (c == '{' || c == '(' || c == '[') {
            ++open;
        } else if (c == '}' || c == ')' || c == ']') {
            --open;
        }
    }
    return open > 0;
}

void prompt() {
    const fs::path history = historyFile();
    rl_initialize();
    using_history();
    stifle_history(1000);
    if (!history.empty()) read_history(history.c_str());
    auto& mel = host::Host::instance().interpreter();
    std::string text;
    while (true) {
        const std::unique_ptr<char, decltype(&std::free)> line(readline(text.empty() ? "mel> " : "...> "), &std::free);
        if (!line) break;
        if (*line) add_history(line.get());
        text += line.get();
        text += '\n';
        if (goesOn(text)) continue;
        try {
            const auto value = mel.execute(text, "prompt");
            if (const std::string shown = value.toString(); !shown.empty())
                host::printText("// Result: " + shown + " //\n");
        } catch (const host::mel::Error& e) {
            if (mel.exitCode()) break;
            if (!e.silent) host::showError(e.described());
        }
        text.clear();
    }
    if (!history.empty()) write_history(history.c_str());
}

} // namespace orvosky
