#include "commands/ReferenceCommands.h"

#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "files/SceneWriter.h"

#include "scene/Namespaces.h"

#include <algorithm>

namespace host::mel {

using namespace scene;

namespace {

References& references() { return References::of(theScene()); }

/// The reference that a name means: its node, one of its nodes, or its file.
Reference& referenceNamed(const std::string& name) {
    if (Reference* r = references().named(name)) return *r;
    if (const Node* node = theScene().findNode(name))
        if (Reference* r = references().of(*node)) return *r;
    // The file alone means the first reference to it: the scene's own before those that others bring.
    const auto [file, copy] = splitCopy(name);
    Reference* found = nullptr;
    for (const auto& r : references().all()) {
        if (r->path != file && splitCopy(r->file).first != file) continue;
        if (r->copy == copy && (!r->nested || file != name)) return *r;
        if (file == name && (!found || (found->nested && !r->nested))) found = r.get();
    }
    if (found) return *found;
    throw Error("'" + name + "' belongs to no reference.");
}

std::string withoutCopyNumber(const std::string& file) { return splitCopy(file).first; }

/// The name of the reference's file, which no other reference answers to.
std::string fileOf(const Reference& r, bool asWritten) {
    if (r.path.empty()) return r.file;
    const std::string file = asWritten ? withoutCopyNumber(r.file) : r.path.generic_string();
    return r.copy > 0 ? file + "{" + std::to_string(r.copy) + "}" : file;
}

std::vector<NodePtr> nodesOf(const Reference& reference) {
    std::vector<NodePtr> nodes;
    for (const auto& kept : reference.contents)
        if (NodePtr node = kept.lock(); node && node->inScene) nodes.push_back(std::move(node));
    return nodes;
}

Value referenceQuery(Call& call) {
    const ParsedArguments args(call, {{"f", "filename"},
                                      {"rfn", "referenceNode"},
                                      {"inr", "isNodeReferenced"},
                                      {"il", "isLoaded"},
                                      {"ns", "namespace"},
                                      {"n", "nodes"},
                                      {"p", "parent"},
                                      {"tr", "topReference"},
                                      {"shn", "shortName"},
                                      {"un", "unresolvedName"},
                                      {"wcn", "withoutCopyNumber"},
                                      {"dp", "dagPath"}});
    const StringArray names = args.names();
    if (names.size() != 1) throw Error("referenceQuery needs the name of one node, reference or file.");
    if (args.has("inr")) return static_cast<int>(nodeNamed(names[0]).referenced);
    const Reference* r = &referenceNamed(names[0]);
    if (args.has("tr")) r = r->top;
    if (args.has("il")) return static_cast<int>(r->loaded);
    if (args.has("rfn")) return r->name;
    if (args.has("ns")) return ":" + r->nameSpace;
    if (args.has("n")) {
        StringArray found;
        for (const NodePtr& node : nodesOf(*r)) found.push_back(nameOf(*node, args.has("dp")));
        return found;
    }
    if (!args.has("f")) throw Error("referenceQuery was not told what to query.");
    std::string file = fileOf(*r, args.has("un"));
    if (args.has("wcn")) file = withoutCopyNumber(file);
    return args.has("shn") ? file.substr(file.rfind('/') + 1) : file;
}

Value namespaceCommand(Call& call) {
    const ParsedArguments args(call,
                               {{"add", "addNamespace", 1},
                                {"set", "setNamespace", 1},
                                {"rm", "removeNamespace", 1},
                                {"dnc", "deleteNamespaceContent"},
                                {"mnr", "mergeNamespaceWithRoot"},
                                {"mnp", "mergeNamespaceWithParent"},
                                {"mv", "moveNamespace", 2},
                                {"ren", "rename", 2},
                                {"ex", "exists", 1},
                                {"p", "parent", 1},
                                {"f", "force"},
                                {"rel", "relativeNames", 1},
                                {"cur", "currentNamespace", 1}},
                               true);
    Scene& scene = theScene();
    std::string& current = references().current;
    const auto existing = [&](const char* flag, std::size_t k = 0) {
        return existingNamespace(scene, args.value(flag, k).toString());
    };
    if (args.has("ex")) return static_cast<int>(references().exists(namespaceNamed(scene, args.text("ex"))));
    if (args.has("add")) return addNamespace(scene, args.text("add"), args.has("p") ? existing("p") : current);
    if (args.has("set")) return current = existing("set");
    if (args.has("mv")) {
        moveNamespace(scene, existing("mv", 0), existing("mv", 1), args.has("f"));
        return {};
    }
    if (args.has("ren")) {
        const std::string parent = args.has("p") ? existing("p") : "";
        const std::string name = args.value("ren", 0).toString();
        return renameNamespace(scene, existingNamespace(scene, parent.empty() ? name : ":" + parent + ":" + name),
                               args.value("ren", 1).toString());
    }
    if (args.has("rm")) {
        const std::string name = existing("rm");
        removeNamespace(scene, name,
                        args.has("dnc")   ? NamespaceContents::Delete
                        : args.has("mnp") ? NamespaceContents::ToParent
                        : args.has("mnr") ? NamespaceContents::ToRoot
                                          : NamespaceContents::MustBeNone);
        return name;
    }
    if (args.has("rel")) {
        if (args.query()) return 0;
        if (args.value("rel").toBool()) throw Error("Names are always looked up from the root namespace.");
        return {};
    }
    throw Error("namespace was not told what to do.");
}

Value namespaceInfo(Call& call) {
    const ParsedArguments args(call, {{"cur", "currentNamespace"},
                                      {"lon", "listOnlyNamespaces"},
                                      {"lod", "listOnlyDependencyNodes"},
                                      {"ls", "listNamespace"},
                                      {"p", "parent"},
                                      {"r", "recurse"},
                                      {"an", "absoluteName"},
                                      {"bn", "baseName"},
                                      {"sn", "shortName"},
                                      {"fn", "fullName"},
                                      {"dp", "dagPath"},
                                      {"int", "internal"},
                                      {"irn", "isRootNamespace"}});
    const StringArray names = args.names();
    const std::string space = names.empty() ? references().current : existingNamespace(theScene(), names[0]);
    const std::string lead = args.has("an") ? ":" : "";
    if (args.has("cur"))
        return args.has("an") || references().current.empty() ? ":" + references().current : references().current;
    if (args.has("irn")) return static_cast<int>(space.empty());
    if (args.has("p")) {
        const std::string above(namespaceOf(space));
        return above.empty() ? ":" : lead + above;
    }
    if (args.has("bn") || args.has("sn")) return space.substr(space.rfind(':') + 1);
    if (args.has("fn")) return space;
    StringArray found;
    const bool all = args.has("ls") || (!args.has("lon") && !args.has("lod"));
    if (all || args.has("lon"))
        for (const std::string& name : namespacesIn(theScene(), space, args.has("r"))) found.push_back(lead + name);
    if (all || args.has("lod"))
        for (Node* node : nodesInNamespace(theScene(), space, args.has("r")))
            found.push_back(nameOf(*node, args.has("dp")));
    return found;
}

} // namespace

std::string fileOf(const Reference& reference) { return fileOf(reference, false); }

StringArray referencedFiles() {
    StringArray files;
    for (const auto& r : references().all())
        if (!r->nested) files.push_back(fileOf(*r));
    return files;
}

std::string queryReference(const std::string& file, bool node) {
    const Reference& r = referenceNamed(file);
    return node ? r.name : r.nameSpace;
}

NewReference namesForReference(const std::string& file, const std::string& wanted) {
    std::string stem = wanted.empty() ? withoutCopyNumber(file) : withoutColons(wanted);
    if (wanted.empty()) {
        stem = stem.substr(stem.find_last_of("/\\") + 1);
        stem = stem.substr(0, stem.find('.'));
    }
    for (char& c : stem)
        if (!Scene::isValidName(std::string("a") + c)) c = '_';
    if (!Scene::isValidName(stem)) stem.insert(0, "_");
    std::string space = stem;
    for (int n = 1; references().exists(space) || theScene().findNode(space + "RN"); ++n)
        space = stem + std::to_string(n);
    return {space, space + "RN"};
}

namespace {

/// Puts what the scene has below the nodes of a reference below one that stands for these: it comes back with them.
void fosterChildren(Reference& top) {
    Scene& scene = theScene();
    DagNode* foster = nullptr;
    for (const auto& r : references().all()) {
        if (r->top != &top) continue;
        for (const NodePtr& node : nodesOf(*r)) {
            DagNode* const parent = node->dag();
            if (!parent || parent->isWorld()) continue;
            const std::vector<DagNode*> children = parent->children;
            for (DagNode* child : children) {
                if (child->referenced) continue;
                const std::string place = parent->fullPath();
                if (!foster)
                    foster = scene
                                 .createUnknown("fosterParent", top.name + "fosterParent1", nullptr,
                                                NodeType::Kind::Transform)
                                 ->dag();
                scene.reparent(*child, foster);
                top.edits.push_back({r->name, ReferenceEdit::Parent, 0, {child->fullPath(), place, "-s -r "}, false});
            }
        }
    }
}

/// What waits for the nodes of a reference that does not come any more is put below the world.
void freeFostered(const std::string& referenceNode) {
    for (Node* foster : theScene().findNodes(referenceNode + "fosterParent*")) {
        if (foster->unknownType != "fosterParent") continue;
        const std::vector<DagNode*> children = foster->dag()->children;
        for (DagNode* child : children) theScene().reparent(*child, nullptr);
        theScene().deleteNodes({foster});
    }
}

/// Its own node stays for one that is to come back.
void takeOut(const std::string& name, bool nodeStays) {
    References& all = references();
    Reference& top = referenceNamed(name);
    if (top.nested) throw Error("'" + name + "' belongs to the reference '" + top.top->name + "'.");
    // Its nodes go with it, and what the scene says of it.
    const std::string node = top.name;
    std::erase_if(theScene().keptStatements,
                  [&](const std::string& s) { return s.starts_with("file ") && all.isFileOf(s, top); });
    std::vector<Node*> going;
    std::vector<Reference*> within;
    for (const auto& r : all.all())
        if (r->top == &top) {
            within.push_back(r.get());
            for (const NodePtr& n : nodesOf(*r))
                if (!n->isDefault) going.push_back(n.get());
        }
    const UndoQueue::Suspend quiet(theScene().undo);
    fosterChildren(top);
    std::vector<NodePtr> keep;
    for (Node* n : going) keep.push_back(n->shared_from_this());
    for (std::size_t i = within.size(); i-- > 0;)
        if (within[i] != &top) all.remove(*within[i]);
    all.remove(top);
    for (const NodePtr& n : keep)
        if (n->inScene) theScene().deleteNodes({n.get()});
    if (Node* own = nodeStays ? nullptr : theScene().findNode(node); own && own->type.name == "reference")
        theScene().deleteNodes({own});
    if (!nodeStays) freeFostered(node);
    theScene().undo.clear();
    theScene().modified = true;
}

} // namespace

void removeReference(const std::string& name) { takeOut(name, false); }

std::string withoutReference(const std::string& name, bool load, const std::string& otherFile) {
    Reference& top = referenceNamed(name);
    if (top.nested) throw Error("'" + name + "' belongs to the reference '" + top.top->name + "'.");
    const UndoQueue::Suspend quiet(theScene().undo);
    // A file may have left it out.
    if (!theScene().findNode(top.name)) theScene().createNode(*theScene().findType("reference"), top.name);
    Node* const node = theScene().findNode(top.name);
    if (node->type.name != "reference") throw Error("'" + top.name + "' is no reference node.");
    fosterChildren(top);
    std::string statements = files::SceneWriter(theScene()).reference(top, load, otherFile);
    node->keptStatements.clear();
    const auto ofNode = [&](const std::weak_ptr<Node>& side) { return side.lock().get() == node; };
    std::erase_if(theScene().keptConnections,
                  [&](const KeptConnection& kept) { return ofNode(kept.sourceNode) || ofNode(kept.destinationNode); });
    takeOut(top.name, true);
    return statements;
}

void registerReferenceCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "referenceQuery", referenceQuery);
    registerSceneCommand(interpreter, "namespace", namespaceCommand);
    registerSceneCommand(interpreter, "namespaceInfo", namespaceInfo);
}

} // namespace host::mel
