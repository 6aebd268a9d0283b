#include "base/Messages.h"
#include "commands/AttributeText.h"
#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "files/NumberWords.h"
#include "files/SceneStatements.h"

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

Value createNode(Call& call) {
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
    files::Statement s;
    toStatement(call, s);
    files::setAttrStatement(context(), s);
    return {};
}

Value addAttr(Call& call) {
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
    registerSceneCommand(interpreter, "createNode", createNode, Flags::None);
    registerSceneCommand(interpreter, "setAttr", setAttr, Flags::None);
    registerSceneCommand(interpreter, "addAttr", addAttr, Flags::None);
}

} // namespace host::mel
