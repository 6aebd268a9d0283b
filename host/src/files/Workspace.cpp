#include "files/Workspace.h"

#include "base/Messages.h"
#include "base/QuotedText.h"
#include "base/TextFile.h"
#include "files/Statement.h"

#include <algorithm>

namespace host::files {
namespace {

namespace fs = std::filesystem;

std::string plain(const fs::path& path) {
    std::string text = path.generic_string();
    std::replace(text.begin(), text.end(), '\\', '/');
    std::error_code error;
    fs::path whole = fs::absolute(text, error).lexically_normal();
    text = whole.generic_string();
    while (text.size() > 1 && text.ends_with('/')) text.pop_back();
    return text;
}

/// The rules and variables of a workspace.mel.
struct Rules {
    std::map<std::string, std::string> files, variables;

    explicit Rules(const fs::path& file) {
        const std::string name = file.generic_string();
        const std::string text = readTextFile(file);
        StatementScanner scanner(text);
        Statement s;
        try {
            while (scanner.next(s)) take(s, name);
        } catch (const SyntaxError& e) {
            throw FileError(name, e.what(), e.line);
        }
    }

private:
    void take(const Statement& s, const std::string& file) {
        const auto& w = s.words;
        const bool known = s.name == "workspace" && s.kind == Statement::Kind::Plain;
        const auto flag = [&](std::string_view brief, std::string_view full) {
            return known && w.size() == 3 && (w[0].text == brief || w[0].text == full);
        };
        if (flag("-fr", "-fileRule"))
            files[std::string(w[1].text)] = w[2].text;
        else if (flag("-v", "-variable"))
            variables[std::string(w[1].text)] = w[2].text;
        else if (!known)
            showWarning(file + " line " + std::to_string(s.line) + ": '" + std::string(s.name.substr(0, 60)) +
                        "' is refused: only workspace statements are read.");
    }
};

} // namespace

Workspace::Workspace(const fs::path& root) : root_(plain(root)), current_(root_) {
    try {
        readRules(root_);
    } catch (const FileError& e) {
        showWarning(e.what());
    }
}

std::optional<fs::path> Workspace::findUpward(const fs::path& start) {
    std::error_code error;
    for (fs::path at = plain(start);; at = at.parent_path()) {
        if (fs::is_regular_file(at / "workspace.mel", error)) return at;
        if (at == at.parent_path()) return std::nullopt;
    }
}

void Workspace::readRules(const std::string& root) {
    std::error_code error;
    if (!fs::is_directory(root, error))
        throw FileError(root, fs::exists(root, error) ? "is not a folder" : "the folder does not exist");
    const fs::path file = fs::path(root) / "workspace.mel";
    if (!fs::exists(file, error)) {
        fileRules.clear();
        variables.clear();
        return;
    }
    Rules rules(file);
    fileRules = std::move(rules.files);
    variables = std::move(rules.variables);
}

void Workspace::open(const fs::path& root) {
    const std::string wanted = plain(root);
    readRules(wanted);
    root_ = current_ = wanted;
}

void Workspace::save() const {
    std::string text = "//Maya Project Definition\n\n";
    for (const auto& [name, folder] : fileRules)
        text += "workspace -fr " + quotedText(name) + " " + quotedText(folder) + ";\n";
    for (const auto& [name, value] : variables)
        text += "workspace -v " + quotedText(name) + " " + quotedText(value) + ";\n";
    writeTextFile(fs::path(root_) / "workspace.mel", text);
}

std::string Workspace::expand(std::string_view path) const {
    std::string text(path);
    std::replace(text.begin(), text.end(), '\\', '/');
    const bool drive = text.size() > 1 && text[1] == ':';
    if (!text.starts_with('/') && !drive) text = rootDirectory() + text;
    text = fs::path(text).lexically_normal().generic_string();
    while (text.size() > 1 && text.ends_with('/')) text.pop_back();
    return text;
}

std::string Workspace::sceneFolder() const {
    for (const char* rule : {"mayaAscii", "scene"})
        if (const auto it = fileRules.find(rule); it != fileRules.end() && !it->second.empty())
            return expand(it->second);
    std::error_code error;
    const std::string usual = expand("scenes");
    return fs::is_directory(usual, error) ? usual : root_;
}

std::string Workspace::findScene(std::string_view name) const {
    const std::string first = expand(name);
    std::error_code error;
    if (first == name || fs::exists(first, error)) return first;
    const std::string inScenes = sceneFolder() + "/" + std::string(name), here = plain(fs::path(name));
    if (fs::exists(inScenes, error)) return inScenes;
    return fs::exists(here, error) ? here : first;
}

} // namespace host::files
