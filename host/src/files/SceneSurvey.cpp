#include "files/SceneSurvey.h"

#include <algorithm>
#include <set>

namespace host::files {
namespace {

/// What the values of a node tell of its kind.
struct Signs {
    bool hasParent = false;
    bool vectors = false; ///< whole vectors under names that transforms have
    bool parts = false;   ///< single numbers, which other nodes have under such names, too
    bool shape = false;   ///< its visibility is not keyable, as that of shapes is from the start

    bool isTransform() const { return vectors || (hasParent && parts && !shape); }
    void read(const Statement& setAttr);
};

void Signs::read(const Statement& s) {
    static const std::set<std::string_view> vectorNames{".t",   ".r",  ".s",  ".rp",        ".sp",     ".rpt",
                                                        ".spt", ".ra", ".sh", ".translate", ".rotate", ".scale"};
    static const std::set<std::string_view> partNames{".tx", ".ty", ".tz", ".rx", ".ry", ".rz",
                                                      ".sx", ".sy", ".sz", ".it", ".opm"};
    const auto plug = std::find_if(s.words.begin(), s.words.end(), [](const Word& w) { return w.quoted; });
    if (plug == s.words.end()) return;
    const auto isDouble3 = [](const Word& w) { return w.quoted && w.text == "double3"; };
    vectors |= vectorNames.contains(plug->text) && std::any_of(plug, s.words.end(), isDouble3);
    parts |= partNames.contains(plug->text);
    shape |= plug->text == ".v" && s.words[0].text == "-k" && s.words.size() > 1 && s.words[1].text == "off";
}

} // namespace

SceneSurvey::SceneSurvey(std::string_view text) {
    StatementScanner scanner(text);
    Statement s;
    Signs signs;
    bool open = false;
    while (scanner.next(s)) {
        if (s.name == "createNode") {
            open = true;
            signs = {};
            transforms.push_back(false);
            for (std::size_t i = 0; i + 1 < s.words.size(); ++i) {
                if (!s.words[i].isFlag() || (s.words[i].text != "-p" && s.words[i].text != "-parent")) continue;
                parents.emplace(s.words[i + 1].text);
                signs.hasParent = true;
            }
        } else if (s.name == "select") {
            open = false;
        } else if (s.name == "parent" && !s.words.empty()) {
            parents.emplace(s.words.back().text);
        } else if (open && s.name == "setAttr") {
            signs.read(s);
            transforms.back() = signs.isTransform();
        }
    }
    lists = scanner.takeLists();
}

bool SceneSurvey::isParent(std::string_view fullPath) const {
    for (std::string_view path = fullPath; !path.empty();) {
        if (parents.contains(std::string(path))) return true;
        const auto bar = path.find('|');
        if (bar == path.npos) break;
        path.remove_prefix(bar + 1);
    }
    return false;
}

} // namespace host::files
