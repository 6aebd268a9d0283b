#include "files/SceneReader.h"

#include "base/Messages.h"
#include "base/QuotedText.h"
#include "files/FileNames.h"
#include "files/NumberWords.h"
#include "files/ReferenceEdits.h"
#include "files/ReferenceFiles.h"
#include "files/SceneSurvey.h"
#include "scene/MeshFilter.h"
#include "scene/MeshNode.h"
#include "scene/References.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <optional>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace host::files {

using namespace scene;

namespace {

/// What is wrong with single statements, each with its place; beyond a limit it is only counted. What failed is not in
/// the scene: those are errors.
class Complaints {
public:
    explicit Complaints(std::string file) : file_(std::move(file)) {}

    void failed(const Statement& s, const std::string& text) { say(Severity::Error, failed_, 50, s, text); }
    void refused(const Statement& s, const std::string& text) { say(Severity::Warning, refused_, 20, s, text); }
    void say(const std::string& text, Severity severity = Severity::Warning) {
        Messages::instance().send(severity, file_ + ": " + text);
    }
    void finish() {
        if (failed_ > 50) say(fmt::format("{} more statements failed.", failed_ - 50), Severity::Error);
        if (refused_ > 20) say(fmt::format("{} more statements were refused.", refused_ - 20));
    }
    int count() const { return failed_ + refused_; }

private:
    void say(Severity severity, int& count, int most, const Statement& s, const std::string& text) {
        if (++count <= most) Messages::instance().send(severity, fmt::format("{} line {}: {}", file_, s.line, text));
    }
    std::string file_;
    int failed_ = 0, refused_ = 0;
};

/// Whether an unknown type is one of those in which Maya's own panels and editors keep what they show. Every scene has
/// some of their nodes; that they are only kept is nothing to warn of.
bool isBookkeeping(std::string_view type) {
    static const std::set<std::string_view> types{
        "displayLayer",       "displayLayerManager", "hyperGraphInfo",
        "hyperLayout",        "hyperView",           "lightLinker",
        "renderLayer",        "nodeGraphEditorInfo", "poseInterpolatorManager",
        "renderLayerManager", "shapeEditorManager"};
    return types.contains(type);
}

/// Takes a statement's flags and objects apart. `valued` lists the flags that have a value.
struct Split {
    std::vector<std::string_view> objects;
    std::unordered_map<std::string_view, std::string_view> flags;

    Split(const Statement& s, std::initializer_list<std::string_view> valued) {
        for (std::size_t i = 0; i < s.words.size(); ++i) {
            const Word& w = s.words[i];
            if (!w.isFlag()) {
                objects.push_back(w.text);
                continue;
            }
            const bool takes = std::find(valued.begin(), valued.end(), w.text) != valued.end();
            if (takes && i + 1 == s.words.size())
                throw SceneError(fmt::format("{}: flag '{}' needs a value.", s.name, w.text));
            flags[w.text] = takes ? s.words[++i].text : std::string_view();
        }
    }
    bool has(std::string_view brief, std::string_view full) const {
        return flags.contains(brief) || flags.contains(full);
    }
    std::string value(std::string_view brief, std::string_view full) const {
        auto it = flags.find(brief);
        if (it == flags.end()) it = flags.find(full);
        return it == flags.end() ? std::string() : std::string(it->second);
    }
};

/// One reading of a file.
class Reading {
public:
    Reading(Scene& scene, const SceneReader::Options& options, const std::string& file, SceneSurvey survey,
            ReferenceFiles& files, Reference* within = nullptr)
        : scene_(scene), options_(options), complaints_(file), names_(scene), survey_(std::move(survey)), files_(files),
          within_(within), context_{
                               scene, {}, nullptr, [this](std::string_view n) { return names_.find(n); }, compounds_} {}

    SceneReader::Result run(std::string_view text);
    const FileNames& names() const { return names_; }

private:
    using Handler = void (Reading::*)(const Statement&);
    static const std::unordered_map<std::string_view, Handler>& handlers();

    void execute(const Statement& s);
    void createNode(const Statement& s);
    void setAttr(const Statement& s);
    void addAttr(const Statement& s);
    void connectAttr(const Statement& s);
    void disconnectAttr(const Statement& s);
    void parent(const Statement& s);
    void rename(const Statement& s);
    void select(const Statement& s);
    void requires_(const Statement& s);
    void fileInfo(const Statement& s);
    void currentUnit(const Statement& s);
    void currentTime(const Statement& s);
    void lockNode(const Statement& s);
    void reference(const Statement& s);
    void keepReference(const Statement& s, const Split& words);
    bool open(const Statement& s, Reference& reference, const std::string& file, const std::string& prefix);
    void applyEdits(const Statement& s);
    bool apply(const ReferenceEdit& edit, int line);
    void placeholderFor(const std::string& placeholder, const std::string& plug);
    std::string meantBy(std::string_view plug) const;
    bool carryOut(const Statement& s);
    void dropFosterParents();
    void keepWithNode(const Statement& s);
    void keepWithScene(const Statement& s);

    void keep(Node& node, const Statement& s);
    NodeType::Kind unknownKind(const CreateRequest& request, const DagNode* parent) const;
    /// The node whose other place a path names, and the parent there.
    std::pair<Node*, Node*> instanceAt(std::string_view path) const;
    void warnOfEmptyMeshes();
    std::string newName(const std::string& name) const;
    void connectKnown(Cell& source, Cell& destination, bool force, bool lock);
    Node* placeholder(std::string_view name);
    void summary();

    Scene& scene_;
    const SceneReader::Options& options_;
    Complaints complaints_;
    FileNames names_;
    SceneSurvey survey_;
    ReferenceFiles& files_;
    Reference* within_ = nullptr;                               ///< the reference that this file is read for
    std::set<std::string> unloaded_;                            ///< reference nodes whose files are not to be read
    std::unordered_map<std::string, std::string> placeholders_; ///< "levelRN.phl[1]" and what it stands for
    std::deque<std::string> texts_;                             ///< of statements that edits stand for
    std::size_t created_ = 0;                                   ///< createNode statements so far
    OpenCompounds compounds_;
    StatementContext context_;
    SceneReader::Result result_;
    std::vector<NodePtr> toLock_;
    std::set<std::string> unknownTypes_, missingPlugins_;
    int unknownNodes_ = 0, unknownStatements_ = 0, instances_ = 0;
    std::unordered_map<std::string, std::pair<Node*, Node*>> instanceByPlace_; ///< "serial of the parent/name"
    std::unordered_map<const Cell*, Node*> unknownMeshSources_;
};

const std::unordered_map<std::string_view, Reading::Handler>& Reading::handlers() {
    static const std::unordered_map<std::string_view, Handler> table{
        {"createNode", &Reading::createNode},
        {"setAttr", &Reading::setAttr},
        {"addAttr", &Reading::addAttr},
        {"connectAttr", &Reading::connectAttr},
        {"disconnectAttr", &Reading::disconnectAttr},
        {"parent", &Reading::parent},
        {"rename", &Reading::rename},
        {"select", &Reading::select},
        {"requires", &Reading::requires_},
        {"fileInfo", &Reading::fileInfo},
        {"currentUnit", &Reading::currentUnit},
        {"currentTime", &Reading::currentTime},
        {"lockNode", &Reading::lockNode},
        {"file", &Reading::reference},
        {"aliasAttr", &Reading::keepWithNode},
        {"setKeyframe", &Reading::keepWithNode},
        {"relationship", &Reading::keepWithScene},
        {"playbackOptions", &Reading::keepWithScene},
        {"sets", &Reading::keepWithScene},
        {"dataStructure", &Reading::keepWithScene},
        {"applyMetadata", &Reading::keepWithScene},
    };
    return table;
}

std::string Reading::newName(const std::string& name) const {
    return options_.import && !options_.prefix.empty() && !name.empty() ? options_.prefix + name : name;
}

void Reading::keep(Node& node, const Statement& s) {
    if (within_) return; // its file keeps it
    auto& kept = node.keptStatements;
    std::string text = s.kept();
    // Imported into a node that was there before, the same statement need not be there twice.
    if (options_.import && node.isDefault && std::find(kept.begin(), kept.end(), text) != kept.end()) return;
    kept.push_back(std::move(text));
}

NodeType::Kind Reading::unknownKind(const CreateRequest& request, const DagNode* parent) const {
    const std::string above = parent && !parent->isWorld() ? parent->fullPath() : std::string();
    const bool isTransform =
        (created_ > 0 && created_ <= survey_.transforms.size() && survey_.transforms[created_ - 1]) ||
        survey_.isParent(above + "|" + request.name);
    if (isTransform) return NodeType::Kind::Transform;
    return parent ? NodeType::Kind::Shape : NodeType::Kind::Dependency;
}

void Reading::createNode(const Statement& s) {
    context_.target = nullptr;
    ++created_;
    CreateRequest request(s);
    const std::string fileName = request.name;
    Node* above = request.parent.empty() ? nullptr : context_.findNode(request.parent);
    std::optional<NodeType::Kind> kind;
    if (!scene_.findType(request.type))
        kind = unknownKind(request, above ? above->dag() : request.parent.empty() ? nullptr : scene_.world());
    if (!request.parent.empty() && !above) {
        complaints_.failed(s, "The parent '" + request.parent + "' is not there; '" + fileName +
                                  "' is put below the world.");
        request.parent.clear();
    }
    const auto before = scene_.nodes().empty() ? 0 : scene_.nodes().rbegin()->first;
    const bool sharedHere = request.shared && context_.findNode(request.name);
    if (!sharedHere) request.name = newName(request.name);
    Node& node = createNodeStatement(context_, request, kind);
    context_.target = &node;
    if (node.serial <= before) return;
    names_.add(node, fileName.empty() ? node.name : fileName);
    for (auto it = scene_.nodes().upper_bound(before); it != scene_.nodes().end(); ++it)
        result_.created.push_back(it->second);
    if (!node.unknownType.empty() && !isBookkeeping(node.unknownType)) {
        ++unknownNodes_;
        unknownTypes_.insert(node.unknownType);
    }
}

/// Whether a setAttr statement says something of a reference node's placeholders.
bool holdsPlaceholders(const Statement& s) {
    return std::any_of(s.words.begin(), s.words.end(), [](const Word& w) {
        return w.quoted && (w.text.starts_with(".phl") || w.text.starts_with(".placeHolderList"));
    });
}

void Reading::setAttr(const Statement& s) {
    // What a referenced file says of the nodes that every scene has is that file's own.
    if (within_ && context_.target && context_.target->isDefault) return;
    if (context_.target && context_.target->type.name == "reference" &&
        std::any_of(s.words.begin(), s.words.end(), [](const Word& w) { return w.text == "dataReferenceEdits"; })) {
        applyEdits(s);
        return;
    }
    if (context_.target && context_.target->type.name == "reference" && holdsPlaceholders(s)) {
        // They are numbered anew where they can be connected.
        const Reference* reference = References::of(scene_).named(context_.target->name);
        if (!reference || !reference->loaded) keep(*context_.target, s);
        return;
    }
    try {
        setAttrStatement(context_, s);
    } catch (const SceneError& e) {
        // Of a node whose type is not known nothing is wrong, only not known.
        const bool unknown =
            dynamic_cast<const UnknownHere*>(&e) || (context_.target && !context_.target->unknownType.empty());
        if (!unknown) throw;
        const Word* plug = nullptr;
        for (const Word& w : s.words)
            if (w.quoted && w.text.starts_with('.')) {
                plug = &w;
                break;
            }
        if (!plug || !context_.target) throw;
        if (context_.target->unknownType.empty()) ++unknownStatements_;
        keep(*context_.target, s);
    }
}

void Reading::addAttr(const Statement& s) {
    if (!context_.target) throw SceneError("addAttr: there is no node to add the attribute to.");
    if (within_ && context_.target->isDefault) return;
    try {
        addAttrStatement(context_, *context_.target, s);
    } catch (const UnknownHere&) {
        if (context_.target->unknownType.empty()) ++unknownStatements_;
        keep(*context_.target, s);
    }
}

void Reading::connectKnown(Cell& source, Cell& destination, bool force, bool lock) {
    if (destination.source == &source) return;
    // A lock protects what the file has set; it does not stand against the file's own connection.
    std::vector<Cell*> locked;
    for (Cell* c = &destination; c; c = c->parent)
        if (c->locked) locked.push_back(c);
    for (Cell* c : locked) c->locked = false;
    const auto restore = [&] {
        for (Cell* c : locked) c->locked = true;
    };
    try {
        scene_.connect(source, destination, force);
    } catch (...) {
        restore();
        throw;
    }
    restore();
    if (lock) scene_.setLocked(destination, true);
}

void Reading::connectAttr(const Statement& s) {
    const Split words(s, {"-l", "-lock", "-rd", "-referenceDest"});
    if (words.objects.size() != 2) throw SceneError("connectAttr needs two attributes.");
    const std::string standsFor[2] = {meantBy(words.objects[0]), meantBy(words.objects[1])};
    struct Side {
        Node* node = nullptr;
        std::string_view attribute;
        Cell* cell = nullptr;
        Node* parent = nullptr; ///< of another place of the node
    } sides[2];
    for (int k = 0; k < 2; ++k) {
        const std::string_view plug = standsFor[k];
        const auto dot = plug.find('.');
        if (dot == plug.npos) throw SceneError(fmt::format("'{}' is not the name of an attribute.", plug));
        sides[k].attribute = plug.substr(dot + 1);
        sides[k].node = dot == 0 ? context_.target : placeholder(plug.substr(0, dot));
        if (sides[k].node && (sides[k].node->unknownType.empty() || sides[k].node->dag()))
            sides[k].cell = scene_.tryPlug(*sides[k].node, sides[k].attribute);
        if (!sides[k].node) {
            std::tie(sides[k].node, sides[k].parent) = instanceAt(plug.substr(0, dot));
        }
    }
    if (sides[0].cell && sides[1].cell) {
        Cell *source = sides[0].cell, *destination = sides[1].cell;
        if (destination->isArray() && words.has("-na", "-nextAvailable")) {
            // Elements arrive in order: the one behind the last is free.
            auto& elements = destination->elements;
            if (!elements.empty() && elements.rbegin()->second->source)
                destination = &destination->element(elements.rbegin()->first + 1);
            else
                destination = &scene_.nextAvailable(*destination);
        }
        // The first element of an array stands for a node's only instance and may be left unsaid.
        if (source->isArray() && !destination->isArray()) source = &source->element(0);
        const auto lock = parseBool(words.value("-l", "-lock"));
        connectKnown(*source, *destination, words.has("-f", "-force"), lock.value_or(false));
        return;
    }
    if (within_) { // its file keeps it
        for (int k = 0; k < 2; ++k)
            if (!sides[k].node && !standsFor[k].starts_with(':'))
                throw SceneError(fmt::format("No object matches name: {}", standsFor[k]));
        return;
    }
    KeptConnection kept;
    if (sides[0].node) kept.sourceNode = sides[0].node->weak_from_this();
    if (sides[1].node) kept.destinationNode = sides[1].node->weak_from_this();
    if (sides[0].parent) kept.sourceParent = sides[0].parent->weak_from_this();
    if (sides[1].parent) kept.destinationParent = sides[1].parent->weak_from_this();
    if (sides[0].node && sides[1].cell && sides[1].cell->attribute.dataKind == DataKind::Mesh)
        unknownMeshSources_[sides[1].cell] = sides[0].node;
    kept.sourceText = sides[0].node ? sides[0].attribute : words.objects[0];
    kept.destinationText = sides[1].node ? sides[1].attribute : words.objects[1];
    for (const Word& w : s.words) {
        if (!w.isFlag()) continue;
        kept.flags += (kept.flags.empty() ? "" : " ") + std::string(w.text);
        if (const auto value = words.value(w.text, w.text); !value.empty()) kept.flags += " " + value;
    }
    scene_.keptConnections.push_back(std::move(kept));
    if (!sides[0].node || !sides[1].node)
        throw SceneError(fmt::format("No object matches name: {}", words.objects[sides[0].node ? 1 : 0]));
}

void Reading::disconnectAttr(const Statement& s) {
    const Split words(s, {});
    if (words.objects.size() != 2) throw SceneError("disconnectAttr needs two attributes.");
    Cell* cells[2];
    for (std::size_t k = 0; k < 2; ++k) {
        std::string_view attribute;
        Node& node = context_.plugNode(words.objects[k], attribute);
        cells[k] = scene_.tryPlug(node, attribute, false);
        if (!cells[k]) throw SceneError(fmt::format("No object matches name: {}", words.objects[k]));
    }
    if (cells[0]->isArray() && !cells[1]->isArray()) cells[0] = &cells[0]->element(0);
    scene_.disconnect(*cells[0], *cells[1]);
}

void Reading::parent(const Statement& s) {
    const Split words(s, {});
    const bool toWorld = words.has("-w", "-world");
    if (words.objects.size() < (toWorld ? 1u : 2u)) throw SceneError("parent needs a child and a parent.");
    const std::size_t children = words.objects.size() - (toWorld ? 0 : 1);
    const auto dagNode = [&](std::string_view name) {
        Node* node = context_.findNode(name);
        if (!node || !node->dag()) throw SceneError(fmt::format("No object matches name: {}", name));
        return node->dag();
    };
    DagNode* above = toWorld ? nullptr : dagNode(words.objects.back());
    if (words.has("-add", "-addObject")) {
        std::string flags;
        for (const Word& w : s.words)
            if (w.isFlag()) flags += " " + std::string(w.text);
        for (std::size_t k = 0; k < children; ++k) {
            DagNode& child = *dagNode(words.objects[k]);
            DagNode& parent = above ? *above : *scene_.world();
            scene_.keptInstances.push_back({child.weak_from_this(), parent.weak_from_this(), flags});
            instanceByPlace_[std::to_string(parent.serial) + "/" + child.name] = {&child, &parent};
            ++instances_;
        }
        return;
    }
    for (std::size_t k = 0; k < children; ++k) {
        DagNode& child = *dagNode(words.objects[k]);
        scene_.reparent(child, above);
        names_.moved(child);
    }
}

std::pair<Node*, Node*> Reading::instanceAt(std::string_view path) const {
    const auto bar = path.rfind('|');
    if (bar == path.npos || instanceByPlace_.empty()) return {};
    const Node* parent = bar == 0 ? scene_.world() : context_.findNode(path.substr(0, bar));
    if (!parent) return {};
    const auto it = instanceByPlace_.find(std::to_string(parent->serial).append("/").append(path.substr(bar + 1)));
    return it == instanceByPlace_.end() ? std::pair<Node*, Node*>() : it->second;
}

void Reading::rename(const Statement& s) {
    const Split words(s, {"-uid", "-uuid"});
    if (words.has("-uid", "-uuid")) {
        if (!context_.target) throw SceneError("rename: there is no node to name.");
        // The nodes that every scene has keep their own when a file is added.
        if (!options_.import || !context_.target->isDefault) context_.target->uuid = words.value("-uid", "-uuid");
        return;
    }
    if (words.objects.size() != 2) throw SceneError("rename needs a node and a name.");
    Node* node = context_.findNode(words.objects[0]);
    if (!node) throw SceneError(fmt::format("No object matches name: {}", words.objects[0]));
    if (node->isDefault) throw SceneError("Cannot rename the default node '" + node->name + "'.");
    const std::string name(words.objects[1]);
    scene_.rename(*node, newName(name));
    names_.renamed(*node, name);
}

void Reading::select(const Statement& s) {
    context_.target = nullptr;
    const Split words(s, {});
    if (words.has("-cl", "-clear")) return;
    if (words.objects.size() != 1) throw SceneError("select: a scene file selects one node.");
    const std::string_view name = words.objects[0];
    context_.target = placeholder(name);
    // What a referenced file says of nodes that every scene has is left out.
    if (within_ && !context_.target && name.starts_with(':')) context_.target = scene_.findNode("time1");
    if (!context_.target) throw SceneError(fmt::format("No object matches name: {}", name));
}

/// The node; when there is none and the name is that of a node which the program that wrote the file has in every
/// scene, one that stands for it and for what is said of it.
Node* Reading::placeholder(std::string_view name) {
    if (Node* node = context_.findNode(name)) return node;
    if (within_) return nullptr; // it is for the scene itself to have it
    if (!name.starts_with(':') || !Scene::isValidName(name.substr(1))) return nullptr;
    const NodePtr node =
        scene_.createUnknown("unknown", std::string(name.substr(1)), nullptr, NodeType::Kind::Dependency);
    node->isDefault = true;
    return node.get();
}

void Reading::requires_(const Statement& s) {
    const Split words(s, {"-nodeType", "-dataType", "-nt", "-dt"});
    if (words.objects.empty()) throw SceneError("requires: the name of the plug-in is missing.");
    const std::string name(words.objects[0]);
    if (name == "maya") {
        if (options_.import) return;
        std::erase_if(scene_.requiredPlugins, [](const std::string& r) { return r.starts_with("requires maya "); });
        if (words.objects.size() > 1)
            scene_.requiredPlugins.insert(fmt::format("requires maya \"{}\";", words.objects[1]));
        return;
    }
    if (missingPlugins_.contains(name)) return;
    std::string missing, failure;
    try {
        // A file names plug-ins; where they lie is for the user to say.
        if (name.empty() || name.find_first_of("/\\") != name.npos || name.find("..") != name.npos)
            missing = "only a bare name is loaded.";
        else if (!options_.loadPlugin)
            missing = "it cannot be loaded here.";
        else if (!options_.loadPlugin(name))
            missing = "it was not found on the plug-in search path.";
        else
            return;
    } catch (const SceneError& e) {
        failure = e.what();
    }
    missingPlugins_.insert(name);
    if (!within_) scene_.requiredPlugins.insert(s.kept());
    const std::string text = "The plug-in '" + name + "' is required: ";
    if (!failure.empty()) throw SceneError(text + failure);
    // Scenes require plug-ins of all kinds that have nothing to do with what they are opened for.
    complaints_.refused(s, text + missing);
}

void Reading::fileInfo(const Statement& s) {
    const Split words(s, {});
    if (words.objects.size() != 2) throw SceneError("fileInfo needs a key and a value.");
    if (!options_.import) scene_.fileInfo[std::string(words.objects[0])] = words.objects[1];
}

void Reading::currentUnit(const Statement& s) {
    const Split words(s, {"-l", "-linear", "-a", "-angle", "-t", "-time"});
    std::string unknown;
    const auto set = [&](auto& unit, std::string_view brief, std::string_view full, auto named) {
        const std::string name = words.value(brief, full);
        if (name.empty()) return;
        const auto known = named(name);
        if (known)
            unit = *known;
        else
            unknown += " '" + name + "'";
    };
    set(context_.units.linear, "-l", "-linear", linearUnitNamed);
    set(context_.units.angular, "-a", "-angle", angularUnitNamed);
    set(context_.units.time, "-t", "-time", timeUnitNamed);
    if (!options_.import) context_.units.makeCurrent();
    if (!unknown.empty()) throw SceneError("Units that are not known here:" + unknown + ".");
}

void Reading::currentTime(const Statement& s) {
    const Split words(s, {});
    const auto time = words.objects.size() == 1 ? parseNumber(words.objects[0]) : std::nullopt;
    if (!time) throw SceneError("currentTime needs one number.");
    if (!options_.import) scene_.setTime(*time * context_.units.factor(AttributeType::Time));
}

void Reading::lockNode(const Statement& s) {
    const Split words(s, {"-l", "-lock", "-lu", "-lockUnpublished", "-ln", "-lockName", "-ic", "-ignoreComponents"});
    if (!context_.target) throw SceneError("lockNode: there is no node to lock.");
    if (within_ && context_.target->isDefault) return;
    const auto lock = parseBool(words.value("-l", "-lock"));
    // The lock comes last, so that it does not stand against the file's own statements.
    if (lock.value_or(false) && words.flags.size() == 1)
        toLock_.push_back(context_.target->shared_from_this());
    else
        keepWithNode(s);
}

/// "levelRN.placeHolderList[1]" as "levelRN.phl[1]"; empty for what is no placeholder.
std::string placeholderName(std::string_view plug) {
    for (const std::string_view list : {".phl[", ".placeHolderList["})
        if (const auto at = plug.find(list); at != plug.npos)
            return std::string(plug.substr(0, at)).append(".phl[").append(plug.substr(at + list.size()));
    return {};
}

void Reading::placeholderFor(const std::string& placeholder, const std::string& plug) {
    if (const std::string name = placeholderName(placeholder); !name.empty()) placeholders_[name] = plug;
}

/// The plug that a placeholder stands for; other plugs as they are.
std::string Reading::meantBy(std::string_view plug) const {
    if (placeholders_.empty()) return std::string(plug);
    const auto at = placeholders_.find(placeholderName(plug));
    return at == placeholders_.end() ? std::string(plug) : at->second;
}

/// Keeps the statement for saving, with the names that the nodes have here.
void Reading::keepReference(const Statement& s, const Split& words) {
    if (options_.prefix.empty()) {
        scene_.keptStatements.push_back(s.kept());
        return;
    }
    std::string text = "file";
    for (const Word& w : s.words) {
        if (!w.isFlag()) continue;
        text += " " + std::string(w.text);
        const std::string value = words.value(w.text, w.text);
        const bool named = w.text == "-ns" || w.text == "-rfn" || w.text == "-namespace" || w.text == "-referenceNode";
        if (!value.empty()) text += " " + quotedText(named ? options_.prefix + value : value);
    }
    for (const std::string_view object : words.objects) text += " " + quotedText(object);
    scene_.keptStatements.push_back(text + ";");
}

void Reading::reference(const Statement& s) {
    const Split words(s, {"-rdi", "-referenceDepthInfo", "-ns", "-namespace", "-rpr", "-renamingPrefix", "-rfn",
                          "-referenceNode", "-dr", "-deferReference", "-op", "-options", "-typ", "-type", "-lrd",
                          "-loadReferenceDepth", "-shd", "-sharedNodes"});
    const bool opens = words.has("-r", "-reference");
    if (!opens && !words.has("-rdi", "-referenceDepthInfo")) {
        complaints_.refused(s, "'file': a scene file may not open, import or save files.");
        return;
    }
    const std::string node = words.value("-rfn", "-referenceNode");
    if (!within_) keepReference(s, words);
    if (!opens) {
        if (parseBool(words.value("-dr", "-deferReference")).value_or(false)) unloaded_.insert(node);
        return;
    }
    if (words.objects.empty() || node.empty()) {
        complaints_.refused(s, "'file': a reference needs its file and its node; the statement is kept.");
        return;
    }
    const std::string space = words.value("-ns", "-namespace"), rename = words.value("-rpr", "-renamingPrefix");
    const std::string prefix = !space.empty() && space != ":" ? space + ":" : rename.empty() ? "" : rename + "_";
    References& references = References::of(scene_);
    auto made = std::make_shared<Reference>();
    made->name = options_.prefix + node;
    made->file = words.objects.back();
    made->prefix = options_.prefix + prefix;
    made->nested = within_ != nullptr;
    made->top = within_ ? within_->top : made.get();
    if (!space.empty()) made->nameSpace = made->prefix.substr(0, made->prefix.size() - 1);
    const Reference* sameNode = references.named(made->name);
    const Reference* same = sameNode || made->prefix.empty() ? sameNode : references.prefixed(made->prefix);
    if (same)
        throw SceneError(fmt::format("file: the {} '{}' is taken by the reference to {}; '{}' is kept and not read.",
                                     sameNode ? "reference node" : "namespace", sameNode ? made->name : made->nameSpace,
                                     same->file, made->file));
    Reference& entered = references.enter(std::move(made));
    if (!unloaded_.contains(node)) open(s, entered, entered.file, prefix);
}

/// Reads the file of a reference. False when that is not possible.
bool Reading::open(const Statement& s, Reference& reference, const std::string& file, const std::string& prefix) {
    std::filesystem::path path;
    try {
        path = files_.find(file);
    } catch (const FileError& e) {
        complaints_.refused(s, std::string("The reference is kept and not read: ") + e.what());
        return false;
    }
    References& references = References::of(scene_);
    try {
        const ReferenceFiles::Open opened(files_, path);
        const auto contents = files_.read(path);
        const References::Quiet quiet(references);
        SceneReader::Options options = options_;
        options.import = true;
        options.prefix = options_.prefix + prefix;
        Reading inner(scene_, options, path.generic_string(), contents->survey, files_, &reference);
        SceneReader::Result result = inner.run(contents->text);
        // This file sees the names of that one behind the prefix.
        inner.names().each([&](Node& node, const std::string& name) { names_.add(node, prefix + name); });
        references.bring(reference, result.created);
        result_.created.insert(result_.created.end(), result.created.begin(), result.created.end());
        result_.warnings += result.warnings;
        reference.path = path;
        reference.loaded = true;
        return true;
    } catch (const FileError& e) {
        complaints_.failed(s, std::string("The reference is kept and not read: ") + e.what());
        return false;
    }
}

void Reading::applyEdits(const Statement& s) {
    Node& node = *context_.target;
    References& references = References::of(scene_);
    Reference* reference = references.named(node.name);
    if (!reference || !reference->loaded) {
        if (!within_) keep(node, s);
        return;
    }
    std::vector<ReferenceEdit> edits;
    try {
        edits = readReferenceEdits(s);
    } catch (const SceneError&) {
        if (!within_) keep(node, s);
        throw;
    }
    const References::Quiet quiet(references);
    int unknown = 0;
    for (ReferenceEdit& edit : edits) {
        // Where a reference within is not there, its edits wait with it.
        const Reference* of = references.named(options_.prefix + edit.of);
        if (of && !of->loaded) continue;
        if (edit.kind == ReferenceEdit::Parent) {
            const Node* child = context_.findNode(edit.words[0]);
            edit.variant = child && child->referenced;
        }
        edit.applied = apply(edit, s.line);
        unknown += editStatement(edit).empty();
    }
    if (unknown > 0)
        complaints_.refused(s,
                            fmt::format("{} of the edits of '{}' are of a kind that is not known here; they are kept.",
                                        unknown, node.name));
    if (!within_) reference->edits = std::move(edits);
    context_.target = &node;
}

/// Whether the edit could be made.
bool Reading::apply(const ReferenceEdit& edit, int line) {
    const auto word = [&](std::size_t i) { return i < edit.words.size() ? edit.words[i] : std::string(); };
    if (edit.kind == ReferenceEdit::Connect) {
        // The statements that connect follow in the file.
        if (edit.variant == 0) placeholderFor(word(3), word(1));
        placeholderFor(edit.variant == 0 ? word(4) : word(2), edit.variant == 0 ? word(2) : word(1));
        return true;
    }
    const std::string& text = texts_.emplace_back(editStatement(edit));
    if (text.empty()) return false;
    if (edit.kind == ReferenceEdit::AddAttr) {
        context_.target = context_.findNode(word(0));
        if (!context_.target) return false;
        if (context_.target->findAttribute(word(1))) return true;
    }
    try {
        StatementScanner scanner(text);
        Statement s, more;
        if (!scanner.next(s) || scanner.next(more)) throw SyntaxError("more than one statement", line);
        s.line = line;
        return carryOut(s);
    } catch (const SyntaxError&) {
        Statement at;
        at.line = line;
        complaints_.refused(at, "An edit of a reference is refused: " + text.substr(0, 200));
        return false;
    }
}

/// What the writing program keeps in the file in place of a referenced parent is of no use once its children are there.
void Reading::dropFosterParents() {
    for (const NodePtr& node : result_.created)
        if (node->unknownType == "fosterParent" && node->inScene && node->dag() && node->dag()->children.empty() &&
            !node->referenced)
            scene_.deleteNodes({node.get()});
}

void Reading::keepWithNode(const Statement& s) {
    if (!context_.target) throw SceneError(fmt::format("{}: there is no node that it belongs to.", s.name));
    keep(*context_.target, s);
}

void Reading::keepWithScene(const Statement& s) {
    if (within_) return; // its file keeps it
    const std::string text = s.kept();
    auto& kept = scene_.keptStatements;
    if (options_.import && std::find(kept.begin(), kept.end(), text) != kept.end()) return;
    kept.push_back(text);
}

void Reading::execute(const Statement& s) { carryOut(s); }

/// Whether the statement could be carried out; else it is told why.
bool Reading::carryOut(const Statement& s) {
    if (s.name == "else") return true; // the rest of what was refused before
    const auto handler = handlers().find(s.name);
    const std::string name(s.name.substr(0, 60));
    if (handler == handlers().end() ||
        (s.kind == Statement::Kind::Braced && s.name != "setAttr" && s.name != "aliasAttr")) {
        complaints_.refused(s, "'" + name + "' is refused: a scene file may not run it.");
        return false;
    }
    if (s.kind == Statement::Kind::Script) {
        complaints_.refused(s, "'" + name +
                                   "' is refused: a scene file may not run commands, variables or expressions "
                                   "within a statement.");
        return false;
    }
    try {
        (this->*handler->second)(s);
    } catch (const SceneError& e) {
        complaints_.failed(s, e.what());
        return false;
    }
    return true;
}

/// Of meshes whose points come from a node that is not known here.
void Reading::warnOfEmptyMeshes() {
    constexpr int most = 20;
    int count = 0;
    for (const NodePtr& made : result_.created) {
        MeshBehavior* mesh = unknownMeshSources_.empty() ? nullptr : meshBehavior(*made);
        if (!mesh || mesh->own || (mesh->fileUsed && !mesh->file.isEmpty())) continue;
        const Cell* input = &made->cell("inMesh");
        std::unordered_set<const Cell*> seen;
        while (input && input->source && seen.insert(input).second) {
            Node& up = input->source->node;
            input = meshBehavior(up) ? &up.cell("inMesh") : meshInput(up);
        }
        const auto it = input ? unknownMeshSources_.find(input) : unknownMeshSources_.end();
        if (it == unknownMeshSources_.end() || ++count > most) continue;
        const std::string type = it->second->unknownType.empty() ? it->second->type.name : it->second->unknownType;
        complaints_.say(fmt::format("The mesh '{}' stays empty: it is made by '{}', a node of the unknown type '{}'.",
                                    scene_.displayName(*made), scene_.displayName(*it->second), type));
    }
    if (count > most) complaints_.say(fmt::format("{} more meshes stay empty for such a reason.", count - most));
}

void Reading::summary() {
    if (instances_ > 0)
        complaints_.say(fmt::format("{} {} of a node {} kept; it is shown in its first place only.", instances_,
                                    instances_ == 1 ? "instance" : "instances", instances_ == 1 ? "is" : "are"));
    const int n = unknownNodes_, attributes = unknownStatements_;
    if (n == 0 && attributes == 0) return;
    std::string text;
    if (n > 0) {
        std::string list;
        for (const auto& type : unknownTypes_) list += (list.empty() ? "" : ", ") + type;
        text = fmt::format("{} {} of {} unknown {} {} kept as {}: {}.", n, n == 1 ? "node" : "nodes",
                           unknownTypes_.size(), unknownTypes_.size() == 1 ? "type" : "types", n == 1 ? "is" : "are",
                           n == 1 ? "it is" : "they are", list);
    }
    if (attributes > 0)
        text += fmt::format("{}{} {} about attributes that are not known here {} kept.", text.empty() ? "" : " ",
                            attributes, attributes == 1 ? "statement" : "statements", attributes == 1 ? "is" : "are");
    complaints_.say(text);
}

SceneReader::Result Reading::run(std::string_view text) {
    if (!options_.import) context_.units.makeCurrent();
    StatementScanner scanner(text, survey_.lists);
    Statement s;
    while (scanner.next(s)) execute(s);
    for (const std::string& failure : compounds_.close(scene_)) complaints_.say(failure);
    for (const NodePtr& node : toLock_) node->locked = true;
    complaints_.finish();
    dropFosterParents();
    // Of a file that is referred to often it is told once.
    if (!within_ || files_.told.insert(files_.find(within_->file)).second) {
        warnOfEmptyMeshes();
        summary();
    }
    result_.warnings = complaints_.count();
    return std::move(result_);
}

} // namespace

SceneReader::SceneReader(Scene& scene, Options options) : scene_(scene), options_(std::move(options)) {}

SceneReader::Result SceneReader::read(const std::filesystem::path& file) {
    const std::string text = readTextFile(file), name = file.generic_string();
    if (text.find_first_not_of(" \t\r\n") == text.npos) throw FileError(name, "the file is empty");
    return readText(text, name, file);
}

SceneReader::Result SceneReader::readText(std::string_view text, const std::string& name) {
    return readText(text, name, {});
}

SceneReader::Result SceneReader::refer(const std::string& file, const std::string& nameSpace,
                                       const std::string& referenceNode) {
    const std::string flags = " -ns " + quotedText(nameSpace) + " -rfn " + quotedText(referenceNode) +
                              " -typ \"mayaAscii\" " + quotedText(file) + ";\n";
    return referAgain("file -rdi 1" + flags + "file -r -dr 1" + flags + "createNode reference -n " +
                      quotedText(referenceNode) + ";\n");
}

SceneReader::Result SceneReader::referAgain(const std::string& statements) {
    options_.import = true;
    return readText(statements, scene_.fileName.empty() ? "file" : scene_.fileName, scene_.fileName);
}

SceneReader::Result SceneReader::readText(std::string_view text, const std::string& name,
                                          const std::filesystem::path& scene) {
    // The whole syntax first: a file that was cut off must not cost the scene that is open. On the way: what tells
    // which unknown nodes are transforms, and which shapes.
    std::optional<SceneSurvey> survey;
    try {
        survey.emplace(text);
    } catch (const SyntaxError& e) {
        throw FileError(name, e.what(), e.line);
    }
    const UndoQueue::Suspend quiet(scene_.undo);
    if (!options_.import) scene_.reset();
    // A file has whole names.
    References& references = References::of(scene_);
    const std::string space = std::exchange(references.current, {});
    ReferenceFiles files(options_.project, scene);
    Reading reading(scene_, options_, name, std::move(*survey), files);
    Result result = reading.run(text);
    references.current = space;
    scene_.modified = options_.import;
    return result;
}

} // namespace host::files
