#include "base/Messages.h"
#include "commands/AttributeText.h"
#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "files/NumberWords.h"
#include "files/SceneStatements.h"
#include "files/StatementFlags.h"

namespace host::mel {

using namespace scene;

namespace {

/// The call as the words that a scene file would have.
void toStatement(const Call& call, files::Statement& s) {
    s.texts.push_back(call.name);
    s.name = s.texts.back();
    for (const Value& v : call.arguments) {
        if (const auto* m = v.get<Matrix>()) {
            for (const double e : m->elements) {
                std::string text;
                files::appendNumber(text, e);
                s.add(std::move(text), false);
            }
        } else if (const auto* texts = v.get<StringArray>()) {
            for (const auto& text : *texts) s.add(text, false);
        } else if (v.isArray() || v.type() == Value::Type::Vector || v.type() == Value::Type::Float) {
            std::vector<double> numbers;
            if (const auto* xyz = v.get<Vector>())
                numbers = {xyz->x, xyz->y, xyz->z};
            else if (const auto* all = v.get<VectorArray>())
                for (const Vector& e : *all) numbers.insert(numbers.end(), {e.x, e.y, e.z});
            else
                numbers = v.toFloatArray();
            for (const double e : numbers) {
                std::string text;
                files::appendNumber(text, e);
                s.add(std::move(text), false);
            }
        } else {
            s.add(v.toString(), false);
        }
    }
}

files::OpenCompounds& openCompounds() {
    static files::OpenCompounds compounds;
    return compounds;
}

files::StatementContext context() {
    const auto& selection = theScene().selection();
    files::StatementContext c{theScene(), files::FileUnits::current(), nullptr, {}, openCompounds()};
    c.target = selection.empty() ? nullptr : selection.front().node.get();
    c.find = [](std::string_view name) { return &nodeNamed(std::string(name)); };
    c.throughShapes = true;
    return c;
}

/// Tells whoever asks for the flags of a statement those that it is read by.
void tellFlags(const Call& call, std::span<const files::StatementFlag> flags) {
    if (!call.asksForFlags) return;
    FlagList list;
    for (const auto& flag : flags) list.flags.push_back({flag.shortName, flag.longName, flag.values});
    throw list;
}

Value createNode(Call& call) {
    tellFlags(call, files::createNodeFlags);
    files::Statement s;
    toStatement(call, s);
    const files::CreateRequest request(s);
    auto c = context();
    if (request.shared) c.find = [](std::string_view name) { return theScene().findNode(name); };
    Node& node = files::createNodeStatement(c, request);
    if (!node.unknownType.empty())
        showWarning("Unrecognized node type '" + request.type + "'; preserving node information during this session.");
    if (!request.skipSelect) selectNodes({&node});
    return nameOf(node);
}

Value setAttr(Call& call) {
    tellFlags(call, files::setAttrFlags);
    files::Statement s;
    toStatement(call, s);
    files::setAttrStatement(context(), s);
    return {};
}

Value addAttr(Call& call) {
    if (call.asksForFlags) return editOrQueryAddedAttribute(call);
    for (const Value& v : call.arguments)
        if (const auto* word = v.get<std::string>())
            for (const char* flag : {"-q", "-query", "-e", "-edit"})
                if (*word == flag) return editOrQueryAddedAttribute(call);
    files::Statement s;
    toStatement(call, s);
    const auto c = context();
    std::vector<Node*> nodes;
    for (const std::string_view name : files::addAttrObjects(s)) nodes.push_back(&nodeNamed(std::string(name)));
    if (nodes.empty()) nodes = selectedNodes();
    if (nodes.empty()) throw Error("addAttr: no node is named and none is selected.");
    for (Node* node : nodes) files::addAttrStatement(c, *node, s);
    return {};
}

} // namespace

void registerNodeStatementCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "createNode", createNode);
    registerSceneCommand(interpreter, "setAttr", setAttr);
    registerSceneCommand(interpreter, "addAttr", addAttr);
}

} // namespace host::mel
