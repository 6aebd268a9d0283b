#include "api/graph/Callbacks.h"
#include "api/graph/FileOperation.h"
#include "api/plugins/PluginManager.h"
#include "base/Letters.h"
#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "commands/Host.h"
#include "commands/ModelImport.h"
#include "commands/ReferenceCommands.h"
#include "files/MeshImport.h"
#include "files/SceneReader.h"
#include "files/SceneWriter.h"
#include "files/Workspace.h"
#include "scene/References.h"

#include <maya/MSceneMessage.h>

#include <algorithm>
#include <set>
#include <unordered_set>

namespace host::mel {

using namespace scene;

namespace {

files::Workspace& workspace() { return Host::instance().workspace(); }

bool loadPlugin(const std::string& name) {
    auto& plugins = Host::instance().plugins();
    if (!plugins.isThere(name)) return false;
    plugins.loadByBareName(name);
    return true;
}

void requireAsciiScene(const std::string& path) {
    const std::string extension = extensionOf(path);
    if (extension == ".mb") throw Error(path + ": Maya binary scenes are not supported; only Maya ASCII ones are.");
    if (extension == ".ma" || !std::filesystem::is_regular_file(path) || files::isSceneFile(path)) return;
    throw Error(path + ": files of the type '" + extension + "' are not supported; only Maya ASCII scenes are.");
}

std::function<void()>& afterOpening() {
    static std::function<void()> work;
    return work;
}

files::SceneReader::Result readScene(const std::string& path, files::SceneReader::Options options) {
    requireAsciiScene(path);
    options.loadPlugin = loadPlugin;
    options.project = workspace().root();
    return files::SceneReader(theScene(), std::move(options)).read(path);
}

void writeScene(const std::string& path, const std::unordered_set<const Node*>* only = nullptr) {
    if (extensionOf(path) == ".mb") throw Error(path + ": scenes can only be written as Maya ASCII (.ma).");
    files::SceneWriter::Options options;
    options.only = only;
    for (const auto& plugin : Host::instance().plugins().loaded())
        if (!plugin->nodeTypes.empty()) options.plugins.emplace_back(plugin->name, plugin->version);
    files::SceneWriter(theScene(), std::move(options)).write(path);
}

/// The place of a scene that is to be written: a bare name goes to the project's folder of scenes.
std::string placeOf(const std::string& name) {
    std::string path =
        name.find_first_of("/\\") == name.npos ? workspace().sceneFolder() + "/" + name : workspace().expand(name);
    if (extensionOf(path).empty()) path += ".ma";
    return path;
}

bool sceneExists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

Value queryFile(const ParsedArguments& a) {
    Scene& scene = theScene();
    const std::string untitled = workspace().sceneFolder() + "/untitled";
    if (a.has("ex")) {
        const auto names = a.names();
        if (names.empty()) throw Error("file -q -exists needs the name of a file.");
        return sceneExists(workspace().findScene(names[0]));
    }
    if (a.has("sn")) {
        if (!a.has("shn")) return scene.fileName;
        return std::filesystem::path(scene.fileName).filename().string();
    }
    if (a.has("shn")) return std::filesystem::path(scene.fileName).filename().string();
    if (a.has("mf")) return scene.modified;
    if (a.has("exn") || a.has("loc")) return scene.fileName.empty() ? untitled : scene.fileName;
    if (a.has("l")) {
        StringArray files = referencedFiles();
        files.insert(files.begin(), scene.fileName.empty() ? untitled : scene.fileName);
        return files;
    }
    if (a.has("typ")) return StringArray{"mayaAscii"};
    if (a.has("r")) return referencedFiles();
    if (a.has("rfn") || a.has("ns")) {
        const auto names = a.names();
        if (names.size() != 1) throw Error("file needs the name of one referenced file.");
        return queryReference(names[0], a.has("rfn"));
    }
    throw Error("file: nothing that can be queried is named.");
}

/// The file's extension tells what it is; the type of the call needs only be one that can be imported.
void requireImportable(const std::string& path, const std::string& type) {
    static const std::set<std::string> known{"", "mayaAscii", "OBJ", "OBJexport", "FBX", "glTF", "GLTF", "GLB"};
    if (!known.contains(type)) throw Error("file: the type '" + type + "' cannot be imported.");
    const std::string extension = extensionOf(path);
    if (files::isModelFile(path) || extension == ".ma" || extension == ".mb" ||
        !std::filesystem::is_regular_file(path) || files::isSceneFile(path))
        return;
    throw Error(path + ": files of the type '" + extension +
                "' are not supported; Maya ASCII scenes, OBJ, glTF and FBX can be imported.");
}

Value importFile(const ParsedArguments& a, const std::string& path) {
    requireImportable(path, a.text("typ"));
    files::SceneReader::Options options;
    options.import = true;
    if (a.has("ns"))
        options.prefix = a.text("ns") + ":";
    else if (a.has("rpr"))
        options.prefix = a.text("rpr") + "_";
    const auto created =
        files::isModelFile(path) ? importModel(path, options.prefix) : readScene(path, std::move(options)).created;
    if (!a.has("rnn")) return path;
    StringArray names;
    for (const NodePtr& node : created) names.push_back(nameOf(*node, true));
    return names;
}

Value referFile(const ParsedArguments& a, const std::string& name) {
    const std::string path = workspace().findScene(name);
    requireAsciiScene(path);
    using Naming = files::SceneReader::Naming;
    const bool prefixed = a.has("rpr") && !a.has("ns");
    const NewReference names = namesForReference(path, a.text(prefixed ? "rpr" : "ns"));
    files::SceneReader::Options options;
    options.loadPlugin = loadPlugin;
    options.project = workspace().root();
    const auto created = files::SceneReader(theScene(), std::move(options))
                             .refer(path, prefixed ? Naming::Prefix : Naming::Namespace, names.nameSpace, names.node)
                             .created;
    const Reference* made = References::of(theScene()).named(names.node);
    if (!made || !made->loaded) {
        if (made) removeReference(names.node);
        throw Error("file: no reference to '" + path + "' could be made.");
    }
    if (!a.has("rnn")) return fileOf(*made);
    StringArray nodes;
    for (const NodePtr& node : created) nodes.push_back(nameOf(*node, true));
    return nodes;
}

/// Reads the file of a reference, anew when it has been read; or gives up what it brought, until it is loaded.
Value loadReference(const ParsedArguments& a, bool load) {
    using Scenes = MSceneMessage;
    const std::string asked = a.text(load ? "lr" : "ur");
    const StringArray files = a.names();
    if (files.size() > (load ? 1u : 0u)) throw Error("file: one reference is loaded from one file.");
    const std::string node = queryReference(asked, true);
    auto& callbacks = api::Callbacks::shared();
    if (load && !callbacks.allowed(Scenes::kBeforeLoadReferenceCheck))
        throw Error("file: a callback does not allow that '" + node + "' is loaded.");
    callbacks.tell(load ? Scenes::kBeforeLoadReference : Scenes::kBeforeUnloadReference);
    const std::string statements = withoutReference(node, load, files.empty() ? "" : workspace().findScene(files[0]));
    files::SceneReader::Options options;
    options.loadPlugin = loadPlugin;
    options.project = workspace().root();
    files::SceneReader(theScene(), std::move(options)).referAgain(statements);
    std::vector<Node*> empty;
    for (Node* foster : theScene().findNodes(node + "fosterParent*"))
        if (foster->unknownType == "fosterParent" && foster->dag()->children.empty()) empty.push_back(foster);
    const UndoQueue::Suspend quiet(theScene().undo);
    theScene().deleteNodes(empty);
    const Reference* made = References::of(theScene()).named(node);
    if (!made || made->loaded != load) throw Error("file: the reference '" + node + "' could not be loaded.");
    callbacks.tell(load ? Scenes::kAfterLoadReference : Scenes::kAfterUnloadReference);
    return fileOf(*made);
}

/// What goes along with the selected nodes: what is below and above them, what they are computed from, and their
/// shading.
std::unordered_set<const Node*> withSelection() {
    std::unordered_set<const Node*> chosen;
    std::vector<Node*> open;
    const auto add = [&](Node& node) {
        if (node.isDefault || !chosen.insert(&node).second) return;
        open.push_back(&node);
        DagNode* const dag = node.dag();
        for (DagNode* up = dag ? dag->parent : nullptr; up && !up->isWorld(); up = up->parent) {
            if (!chosen.insert(up).second) break;
            open.push_back(up);
        }
    };
    for (Node* node : selectedNodes()) {
        add(*node);
        if (DagNode* dag = node->dag())
            for (DagNode* below : theScene().descendants(*dag)) add(*below);
    }
    if (chosen.empty()) throw Error("Nothing is selected that could be exported.");
    while (!open.empty()) {
        Node& node = *open.back();
        open.pop_back();
        const bool shades = node.type.isA("shadingEngine");
        for (Cell* root : node.cells()) {
            // What else has the same shading stays behind.
            if (shades && root->attribute.named("dagSetMembers")) continue;
            forEachCell(*root, [&](Cell& cell) {
                if (cell.source) add(cell.source->node);
                for (Cell* to : cell.destinations)
                    if (to->node.type.isA("shadingEngine") && to->attribute.root().named("dagSetMembers"))
                        add(to->node);
            });
        }
    }
    return chosen;
}

using api::FileOperation;
using Action = FileOperation::Action;

Value file(Call& call) {
    const ParsedArguments a(call,
                            {{"new", "newFile"},
                             {"o", "open"},
                             {"i", "import"},
                             {"s", "save"},
                             {"rn", "rename"},
                             {"ea", "exportAll"},
                             {"es", "exportSelected"},
                             {"r", "reference"},
                             {"rr", "removeReference"},
                             {"lr", "loadReference", 1},
                             {"ur", "unloadReference", 1},
                             {"rfn", "referenceNode", 1},
                             {"f", "force"},
                             {"typ", "type", 1},
                             {"ex", "exists"},
                             {"sn", "sceneName"},
                             {"shn", "shortName"},
                             {"exn", "expandName"},
                             {"loc", "location"},
                             {"l", "list"},
                             {"mf", "modified", 1},
                             {"ns", "namespace", 1},
                             {"rpr", "renamingPrefix", 1},
                             {"op", "options", 1},
                             {"iv", "ignoreVersion"},
                             {"pmt", "prompt", 1},
                             {"pr", "preserveReferences"},
                             {"rnn", "returnNewNodes"},
                             {"ra", "renameAll", 1},
                             {"lrd", "loadReferenceDepth", 1},
                             {"mnc", "mergeNamespacesOnClash", 1},
                             {"esn", "executeScriptNodes", 1},
                             {"add", "addRecentFile"},
                             {"dns", "defaultNamespace"}},
                            true);
    Scene& scene = theScene();
    if (a.query()) return queryFile(a);
    const std::string type = a.text("typ");
    const bool writes = a.has("s") || a.has("rn") || a.has("ea") || a.has("es");
    if (!type.empty() && writes && type != "mayaAscii")
        throw Error("file: the type '" + type + "' is not supported; only mayaAscii is.");
    const auto name = [&]() -> std::string {
        const auto names = a.names();
        if (names.size() != 1 || names[0].empty()) throw Error("file needs the name of one file.");
        return names[0];
    };
    // A script that works without a user loses nothing it could be asked about: -force is always understood.
    if (a.has("new")) {
        std::string none;
        FileOperation operation(Action::New, none);
        scene.reset();
        operation.done();
        return "untitled";
    }
    if (a.has("o")) {
        std::string path = workspace().findScene(name());
        FileOperation operation(Action::Open, path);
        readScene(path, {});
        scene.fileName = path;
        if (const auto work = afterOpening()) work();
        operation.done();
        return path;
    }
    if (a.has("rr")) {
        removeReference(a.has("rfn") ? a.text("rfn") : name());
        return {};
    }
    if (a.has("lr") || a.has("ur")) return loadReference(a, a.has("lr"));
    if (a.has("r")) return referFile(a, name());
    if (a.has("i")) {
        std::string path = workspace().findScene(name());
        FileOperation operation(Action::Import, path);
        const Value imported = importFile(a, path);
        operation.done();
        return imported;
    }
    if (a.has("rn")) {
        scene.fileName = placeOf(name());
        return scene.fileName;
    }
    if (a.has("ea") || a.has("es")) {
        std::string path = placeOf(name());
        const auto chosen = a.has("es") ? withSelection() : std::unordered_set<const Node*>();
        FileOperation operation(Action::Export, path);
        writeScene(path, a.has("es") ? &chosen : nullptr);
        operation.done();
        return path;
    }
    if (a.has("s")) {
        if (scene.fileName.empty()) throw Error("The scene has no name yet: use file -rename first.");
        FileOperation operation(Action::Save, scene.fileName);
        writeScene(scene.fileName);
        scene.modified = false;
        operation.done();
        return scene.fileName;
    }
    if (a.has("mf")) {
        scene.modified = a.boolean("mf", true);
        return {};
    }
    if (a.has("typ")) return type;
    throw Error("file: nothing to do is named.");
}

StringArray pairs(const std::map<std::string, std::string>& table) {
    StringArray list;
    for (const auto& [key, value] : table) list.insert(list.end(), {key, value});
    return list;
}

std::string valueIn(const std::map<std::string, std::string>& table, const std::string& key) {
    const auto it = table.find(key);
    return it == table.end() ? std::string() : it->second;
}

Value workspaceCommand(Call& call) {
    // A rule is named by its own flags in a query; -fileRule and -variable alone then list all of them.
    const ParsedArguments a(call,
                            {{"o", "openWorkspace"},
                             {"rd", "rootDirectory"},
                             {"dir", "directory", 1},
                             {"fr", "fileRule", 2},
                             {"fre", "fileRuleEntry", 1, true},
                             {"frl", "fileRuleList"},
                             {"rfr", "removeFileRuleEntry", 1},
                             {"v", "variable", 2},
                             {"ve", "variableEntry", 1, true},
                             {"vl", "variableList"},
                             {"fn", "fullName"},
                             {"sn", "shortName"},
                             {"act", "active"},
                             {"en", "expandName", 1, true},
                             {"s", "saveWorkspace"},
                             {"u", "update"},
                             {"l", "list"}},
                            true);
    files::Workspace& w = workspace();
    if (a.has("en")) return w.expand(a.text("en"));
    if (a.query()) {
        if (a.has("rd")) return w.rootDirectory();
        if (a.has("dir")) return w.currentDirectory();
        if (a.has("fre")) return valueIn(w.fileRules, a.text("fre"));
        if (a.has("ve")) return valueIn(w.variables, a.text("ve"));
        if (a.has("fr")) {
            const auto names = a.names();
            return names.empty() ? Value(pairs(w.fileRules)) : Value(valueIn(w.fileRules, names[0]));
        }
        if (a.has("v")) return pairs(w.variables);
        if (a.has("frl") || a.has("vl")) {
            StringArray keys;
            for (const auto& [key, value] : a.has("frl") ? w.fileRules : w.variables) keys.push_back(key);
            return keys;
        }
        if (a.has("sn")) return w.root().filename().string();
        if (a.has("fn") || a.has("act") || a.has("o")) return w.root().generic_string();
        throw Error("workspace: nothing that can be queried is named.");
    }
    if (a.has("o")) {
        const auto names = a.names();
        if (names.size() != 1) throw Error("workspace -openWorkspace needs a folder.");
        w.open(names[0]);
        return {};
    }
    if (a.has("dir")) w.setCurrentDirectory(a.text("dir"));
    for (std::size_t i = 0; i < a.occurrences("fr"); ++i)
        w.fileRules[a.value("fr", 0, i).toString()] = a.value("fr", 1, i).toString();
    for (std::size_t i = 0; i < a.occurrences("v"); ++i)
        w.variables[a.value("v", 0, i).toString()] = a.value("v", 1, i).toString();
    if (a.has("rfr")) w.fileRules.erase(a.text("rfr"));
    if (a.has("s")) w.save();
    return {};
}

template <class Unit>
std::string longUnitName(Unit unit, std::initializer_list<const char*> names,
                         std::optional<Unit> (*named)(std::string_view)) {
    for (const char* name : names)
        if (named(name) == unit) return name;
    return std::string(unitName(unit));
}

Value currentUnit(Call& call) {
    const ParsedArguments a(
        call,
        {{"l", "linear", 1}, {"a", "angle", 1}, {"t", "time", 1}, {"f", "fullName"}, {"ua", "updateAnimation", 1}},
        true);
    if (a.query()) {
        const bool full = a.has("f");
        if (a.has("l")) {
            return full ? longUnitName(
                              linearUnit(),
                              {"millimeter", "centimeter", "meter", "kilometer", "inch", "foot", "yard", "mile"},
                              linearUnitNamed)
                        : std::string(unitName(linearUnit()));
        }
        if (a.has("a"))
            return full ? longUnitName(angularUnit(), {"degree", "radian", "minute", "second"}, angularUnitNamed)
                        : std::string(unitName(angularUnit()));
        if (a.has("t")) return unitName(timeUnit());
        throw Error("currentUnit: nothing that can be queried is named.");
    }
    const auto known = [&](const char* flag, auto named, const char* what) {
        auto unit = named(a.text(flag));
        if (a.has(flag) && !unit) throw Error("'" + a.text(flag) + "' is not a unit of " + what + ".");
        return unit;
    };
    const auto linear = known("l", linearUnitNamed, "length");
    const auto angular = known("a", angularUnitNamed, "angles");
    const auto time = known("t", timeUnitNamed, "time");
    if (linear) setLinearUnit(*linear);
    if (angular) setAngularUnit(*angular);
    if (time) setTimeUnit(*time);
    return linear ? a.text("l") : angular ? a.text("a") : a.text("t");
}

Value fileInfo(Call& call) {
    const ParsedArguments a(call, {{"rm", "remove", 1}}, true);
    auto& info = theScene().fileInfo;
    const auto names = a.names();
    if (a.query()) {
        if (names.empty()) return pairs(info);
        return info.contains(names[0]) ? StringArray{info[names[0]]} : StringArray{};
    }
    if (a.has("rm")) {
        if (info.erase(a.text("rm")) > 0) theScene().modified = true;
        return {};
    }
    if (names.size() != 2) throw Error("fileInfo needs a key and a value.");
    info[names[0]] = names[1];
    theScene().modified = true;
    return {};
}

Value requirePlugin(Call& call) {
    const ParsedArguments a(call, {{"nt", "nodeType", 1}, {"dt", "dataType", 1}});
    const auto names = a.names();
    if (names.empty()) throw Error("requires needs the name of a plug-in.");
    if (names[0] != "maya") Host::instance().plugins().loadByBareName(names[0]);
    return {};
}

} // namespace

void doAfterOpening(std::function<void()> work) { afterOpening() = std::move(work); }

void registerFileCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "file", file);
    registerSceneCommand(interpreter, "workspace", workspaceCommand);
    registerSceneCommand(interpreter, "currentUnit", currentUnit);
    registerSceneCommand(interpreter, "fileInfo", fileInfo);
    registerSceneCommand(interpreter, "requires", requirePlugin);
}

} // namespace host::mel
