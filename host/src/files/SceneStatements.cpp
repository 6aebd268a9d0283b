#include "files/SceneStatements.h"

#include "base/Letters.h"
#include "files/NumberWords.h"
#include "files/StatementFlags.h"

#include <algorithm>
#include <type_traits>

namespace host::files {

using namespace scene;

Node* StatementContext::findNode(std::string_view name) const { return find ? find(name) : scene.findNode(name); }

Node& StatementContext::plugNode(std::string_view plug, std::string_view& attribute) const {
    const auto dot = plug.find('.');
    if (dot == plug.npos) throw SceneError("'" + std::string(plug) + "' is not the name of an attribute.");
    attribute = plug.substr(dot + 1);
    Node* node = dot == 0 ? target : findNode(plug.substr(0, dot));
    if (!node) throw SceneError("No object matches name: " + std::string(plug));
    if (throughShapes && node->dag() && node->dag()->isTransform()) {
        const std::string_view first = attribute.substr(0, attribute.find_first_of(".["));
        if (!node->findAttribute(first))
            for (DagNode* child : node->dag()->children)
                if (child->isShape() && !child->intermediate() && child->findAttribute(first)) return *child;
    }
    return *node;
}

CreateRequest::CreateRequest(const Statement& s) {
    for (FlagReader words(createNodeFlags, s.words); !words.atEnd();) {
        if (!words.peek().isFlag()) {
            if (!type.empty()) throw SceneError("createNode: too many words.");
            type = words.next().text;
            continue;
        }
        const std::string_view flag = words.flag<SceneError>().shortName;
        if (flag == "n") name = words.next().text;
        if (flag == "p") parent = words.next().text;
        if (flag == "s") shared = true;
        if (flag == "ss") skipSelect = true;
    }
    if (type.empty()) throw SceneError("createNode: the type of the node is missing.");
    const auto isLetterOfNames = [](char c) { return isLetter(c) || isDigit(c) || c == '_' || c == ':'; };
    if (!std::all_of(type.begin(), type.end(), isLetterOfNames))
        throw SceneError("createNode: '" + std::string(type) + "' is no name of a type.");
}

Node& createNodeStatement(const StatementContext& c, const CreateRequest& r,
                          std::optional<NodeType::Kind> unknownKind) {
    if (r.shared && !r.name.empty()) {
        const std::string path = r.parent.empty() ? r.name : r.parent + "|" + r.name;
        Node* there = c.findNode(path);
        if (there && (there->type.name == r.type || there->unknownType == r.type)) return *there;
    }
    DagNode* parent = nullptr;
    if (!r.parent.empty()) {
        Node* node = c.findNode(r.parent);
        parent = node ? node->dag() : nullptr;
        if (!parent) throw SceneError("No object matches name: " + r.parent);
    }
    const NodeType* type = c.scene.findType(r.type);
    if (type && type->isAbstract) throw SceneError("Cannot create a node of the abstract type '" + r.type + "'.");
    if (type) return *c.scene.createNode(*type, r.name, parent);
    const auto kind = unknownKind.value_or(parent ? NodeType::Kind::Shape : NodeType::Kind::Dependency);
    Node& node = *c.scene.createUnknown(r.type, r.name, parent, kind);
    // What is shared belongs to the host itself in the program that wrote it.
    node.isDefault = r.shared;
    return node;
}

std::string ListValues::text() const {
    std::string all;
    for (const Word& word : words) (all += word.text) += ' ';
    return all.append(tail);
}

template <class T>
std::vector<T> ListValues::numbers() const {
    std::vector<T> all;
    // About as many as the text has room for.
    constexpr std::size_t usualLength = 8;
    all.reserve(words.size() + tail.size() / usualLength);
    const auto read = [&](std::string_view text) {
        const std::string_view wrong = readNumbers(text, all);
        if (!wrong.empty())
            throw SceneError("'" + std::string(wrong.substr(0, 60)) + "' is not a " +
                             (std::is_integral_v<T> ? "whole number." : "number."));
    };
    for (const Word& word : words) read(word.text);
    read(tail);
    return all;
}
template std::vector<int> ListValues::numbers() const;
template std::vector<float> ListValues::numbers() const;
template std::vector<double> ListValues::numbers() const;

PlugRange::PlugRange(std::string_view path) : array(path) {
    const auto colon = path.find(':');
    if (colon == path.npos) return;
    const auto open = path.rfind('[', colon), close = path.find(']', colon);
    if (open == path.npos || close == path.npos) return;
    const auto from = parseInteger(path.substr(open + 1, colon - open - 1));
    const auto to = parseInteger(path.substr(colon + 1, close - colon - 1));
    if (!from || !to || *from < 0 || *to < *from || *to > Scene::maxArrayIndex)
        throw SceneError("The range of '" + std::string(path) + "' is not a valid one.");
    array = path.substr(0, open);
    rest = path.substr(close + 1);
    first = static_cast<int>(*from);
    last = static_cast<int>(*to);
    isRange = true;
}

} // namespace host::files
