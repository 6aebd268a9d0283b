#include "files/ReferenceEdits.h"

#include "base/QuotedText.h"
#include "files/NumberWords.h"
#include "scene/Scene.h"

#include <algorithm>

namespace host::files {

using namespace scene;

std::vector<ReferenceEdit> readReferenceEdits(const Statement& s) {
    const std::vector<Word> words = s.allWords();
    std::size_t at = 0;
    while (at < words.size() && !(words[at].quoted && words[at].text == "dataReferenceEdits")) ++at;
    if (at == words.size()) throw SceneError("setAttr: the type dataReferenceEdits is missing.");
    at += 2; // the name of the reference itself comes first
    const auto number = [&]() -> int {
        const auto n = at < words.size() && !words[at].quoted ? parseInteger(words[at].text) : std::nullopt;
        if (!n || *n < 0 || *n > 1 << 30) throw SceneError("setAttr: the reference's edits are broken off.");
        ++at;
        return static_cast<int>(*n);
    };
    std::vector<ReferenceEdit> edits;
    while (at < words.size()) {
        if (!words[at].quoted) throw SceneError("setAttr: the reference's edits are not in order.");
        const std::string of(words[at++].text);
        for (int left = number(); left > 0; --left) {
            ReferenceEdit edit{of, number(), 0, {}, false};
            if (edit.kind == ReferenceEdit::Connect) edit.variant = number();
            // The node that gets an attribute stands there without quotes.
            if (at < words.size() && !words[at].quoted && !parseInteger(words[at].text))
                edit.words.emplace_back(words[at++].text);
            while (at < words.size() && words[at].quoted) {
                // Behind the last edit of a group stands the name of the next one, with its number.
                const bool last = left == 1 && at + 1 < words.size() && !words[at + 1].quoted;
                if (last) break;
                edit.words.emplace_back(words[at++].text);
            }
            if (edit.words.empty()) throw SceneError("setAttr: an edit of the reference says nothing.");
            edits.push_back(std::move(edit));
        }
    }
    return edits;
}

std::string referenceEditsText(const std::string& referenceNode, const std::vector<ReferenceEdit>& edits) {
    if (edits.empty()) return {};
    std::string text = "\tsetAttr \".ed\" -type \"dataReferenceEdits\" \n\t\t" + quotedText(referenceNode);
    // Grouped by the reference that they are filed under, each group in its order.
    std::vector<std::string> groups;
    for (const ReferenceEdit& e : edits)
        if (std::find(groups.begin(), groups.end(), e.of) == groups.end()) groups.push_back(e.of);
    for (const std::string& group : groups) {
        const auto count = std::count_if(edits.begin(), edits.end(), [&](const auto& e) { return e.of == group; });
        text += "\n\t\t" + quotedText(group) + " " + std::to_string(count);
        for (const ReferenceEdit& e : edits) {
            if (e.of != group) continue;
            text += "\n\t\t" + std::to_string(e.kind);
            if (e.kind == ReferenceEdit::Connect) text += " " + std::to_string(e.variant);
            for (const std::string& word : e.words) text += " " + quotedText(word);
        }
    }
    return text + ";\n";
}

std::string editArguments(std::string_view statement, std::string_view keyword) {
    while (!statement.empty() && (statement.back() == '\n' || statement.back() == ';')) statement.remove_suffix(1);
    statement.remove_prefix(std::min(statement.size(), statement.find(keyword) + keyword.size()));
    if (keyword != "setAttr") return std::string(statement);
    const auto plug = statement.find("\"."), end = plug == statement.npos ? plug : statement.find('"', plug + 1);
    if (end == statement.npos) return {};
    std::string flags(statement.substr(0, plug));
    while (!flags.empty() && flags.back() == ' ') flags.pop_back();
    return flags + std::string(statement.substr(end + 1));
}

std::string editStatement(const ReferenceEdit& e) {
    const auto word = [&](std::size_t i) { return i < e.words.size() ? e.words[i] : std::string(); };
    switch (e.kind) {
    case ReferenceEdit::Parent:
        return "parent " + word(2) + " " + quotedText(word(0)) + " " + quotedText(word(1)) + ";";
    case ReferenceEdit::AddAttr: {
        std::string flags = word(3);
        if (flags.find("-ln") == flags.npos) flags = " -ln " + quotedText(word(1)) + flags;
        if (flags.find("-sn") == flags.npos) flags = " -sn " + quotedText(word(2)) + flags;
        return "addAttr" + flags + ";";
    }
    case ReferenceEdit::SetAttr: return "setAttr " + quotedText(word(0) + "." + word(1)) + " " + word(2) + ";";
    case ReferenceEdit::Disconnect:
        return "disconnectAttr " + word(2) + " " + quotedText(word(0)) + " " + quotedText(word(1)) + ";";
    case ReferenceEdit::Connect:
        return "connectAttr " + quotedText(word(1)) + " " + quotedText(word(2)) + " " + word(5) + ";";
    default: return {};
    }
}

} // namespace host::files
