#include "files/SceneReading.h"

#include "files/NumberWords.h"
#include "scene/References.h"

#include <fmt/format.h>

#include <algorithm>

namespace host::files {

using namespace scene;

namespace {

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

/// Whether a setAttr statement says something of a reference node's placeholders.
bool holdsPlaceholders(const Statement& s) {
    return std::any_of(s.words.begin(), s.words.end(), [](const Word& w) {
        return w.quoted && (w.text.starts_with(".phl") || w.text.starts_with(".placeHolderList"));
    });
}

} // namespace

std::string SceneReading::newName(const std::string& name) const {
    return options_.import && !options_.prefix.empty() && !name.empty() ? options_.prefix + name : name;
}

NodeType::Kind SceneReading::unknownKind(const CreateRequest& request, const DagNode* parent) const {
    const std::string above = parent && !parent->isWorld() ? parent->fullPath() : std::string();
    const bool isTransform =
        (created_ > 0 && created_ <= survey_.transforms.size() && survey_.transforms[created_ - 1]) ||
        survey_.isParent(above + "|" + request.name);
    if (isTransform) return NodeType::Kind::Transform;
    return parent ? NodeType::Kind::Shape : NodeType::Kind::Dependency;
}

void SceneReading::createNode(const Statement& s) {
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

void SceneReading::setAttr(const Statement& s) {
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

void SceneReading::addAttr(const Statement& s) {
    if (!context_.target) throw SceneError("addAttr: there is no node to add the attribute to.");
    if (within_ && context_.target->isDefault) return;
    try {
        addAttrStatement(context_, *context_.target, s);
    } catch (const UnknownHere&) {
        if (context_.target->unknownType.empty()) ++unknownStatements_;
        keep(*context_.target, s);
    }
}

void SceneReading::rename(const Statement& s) {
    const StatementWords words(s, {"-uid", "-uuid"});
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

void SceneReading::select(const Statement& s) {
    context_.target = nullptr;
    const StatementWords words(s, {});
    if (words.has("-cl", "-clear")) return;
    if (words.objects.size() != 1) throw SceneError("select: a scene file selects one node.");
    const std::string_view name = words.objects[0];
    context_.target = placeholder(name);
    // What a referenced file says of nodes that every scene has is left out.
    if (within_ && !context_.target && name.starts_with(':')) context_.target = scene_.findNode("time1");
    if (!context_.target) throw SceneError(fmt::format("No object matches name: {}", name));
}

Node* SceneReading::placeholder(std::string_view name) {
    if (Node* node = context_.findNode(name)) return node;
    if (within_) return nullptr; // it is for the scene itself to have it
    if (!name.starts_with(':') || !Scene::isValidName(name.substr(1))) return nullptr;
    const NodePtr node =
        scene_.createUnknown("unknown", std::string(name.substr(1)), nullptr, NodeType::Kind::Dependency);
    node->isDefault = true;
    return node.get();
}

void SceneReading::parent(const Statement& s) {
    const StatementWords words(s, {});
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

std::pair<Node*, Node*> SceneReading::instanceAt(std::string_view path) const {
    const auto bar = path.rfind('|');
    if (bar == path.npos || instanceByPlace_.empty()) return {};
    const Node* parent = bar == 0 ? scene_.world() : context_.findNode(path.substr(0, bar));
    if (!parent) return {};
    const auto it = instanceByPlace_.find(std::to_string(parent->serial).append("/").append(path.substr(bar + 1)));
    return it == instanceByPlace_.end() ? std::pair<Node*, Node*>() : it->second;
}

void SceneReading::lockNode(const Statement& s) {
    const StatementWords words(
        s, {"-l", "-lock", "-lu", "-lockUnpublished", "-ln", "-lockName", "-ic", "-ignoreComponents"});
    if (!context_.target) throw SceneError("lockNode: there is no node to lock.");
    if (within_ && context_.target->isDefault) return;
    const auto lock = parseBool(words.value("-l", "-lock"));
    // The lock comes last, so that it does not stand against the file's own statements.
    if (lock.value_or(false) && words.flags.size() == 1)
        toLock_.push_back(context_.target->shared_from_this());
    else
        keepWithNode(s);
}

} // namespace host::files
