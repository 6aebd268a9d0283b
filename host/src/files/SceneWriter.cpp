#include "files/SceneWriter.h"

#include "base/TextFile.h"
#include "files/AttributeWriter.h"
#include "scene/MeshNode.h"

#include <algorithm>
#include <unordered_set>

namespace host::files {

using namespace scene;

namespace {

/// A node that stands for one which every scene of another program has.
bool isPlaceholder(const Node& node) { return node.isDefault && node.unknownType == "unknown"; }

class Writing {
public:
    Writing(Scene& scene, const SceneWriter::Options& options) : scene_(scene), options_(options) {}

    std::string run(const std::string& name);

private:
    void header(const std::string& name);
    void create(Node& node);
    void contents(Node& node);
    void connections(Node& node);
    void connection(Cell& source, Cell& destination);
    void keptConnections();
    void keptInstances();
    std::string pathOf(Node& node) const;
    std::string nameInFile(Node& node) const;

    Scene& scene_;
    const SceneWriter::Options& options_;
    FileUnits units_ = FileUnits::current();
    std::unordered_set<const Node*> omitted_;   ///< nodes that are not to be saved, and those below them
    std::unordered_set<const Node*> instanced_; ///< nodes with a second place
    std::string out_;
};

std::string longName(const FileUnits& u) {
    static constexpr const char* linear[] = {"millimeter", "centimeter", "meter", "kilometer",
                                             "inch",       "foot",       "yard",  "mile"};
    static constexpr const char* angular[] = {"degree", "radian", "minute", "second"};
    return std::string("currentUnit -l ") + linear[static_cast<int>(u.linear)] + " -a " +
           angular[static_cast<int>(u.angular)] + " -t " + unitName(u.time) + ";\n";
}

/// The shortest path; a node with two places, and what is below it, has none that is shorter than the whole.
std::string Writing::pathOf(Node& node) const {
    for (const DagNode* up = instanced_.empty() ? nullptr : node.dag(); up; up = up->parent)
        if (instanced_.contains(up)) return node.dag()->fullPath();
    return scene_.displayName(node);
}

std::string Writing::nameInFile(Node& node) const {
    return node.isDefault && !node.dag() ? ":" + node.name : pathOf(node);
}

void Writing::header(const std::string& name) {
    std::string release = "2011", requirement;
    for (const std::string& r : scene_.requiredPlugins) {
        if (!r.starts_with("requires maya ")) continue;
        requirement = r;
        const auto first = r.find('"'), last = r.rfind('"');
        if (last > first + 1) release = r.substr(first + 1, last - first - 1);
    }
    if (requirement.empty()) requirement = "requires maya \"" + release + "\";";
    std::string safe = name;
    std::replace_if(
        safe.begin(), safe.end(), [](unsigned char c) { return c < 32; }, '_');
    std::replace_if(
        release.begin(), release.end(), [](unsigned char c) { return c < 32; }, ' ');
    out_ += "//Maya ASCII " + release + " scene\n//Name: " + safe + "\n//Codeset: UTF-8\n";
    for (const std::string& kept : scene_.keptStatements)
        if (kept.starts_with("file ")) out_ += kept + "\n";
    out_ += requirement + "\n";
    for (const auto& [plugin, version] : options_.plugins)
        out_ += "requires " + quotedText(plugin) + " " + quotedText(version) + ";\n";
    for (const std::string& r : scene_.requiredPlugins)
        if (r != requirement) out_ += r + "\n";
    out_ += longName(units_);
    for (const auto& [key, value] : scene_.fileInfo)
        out_ += "fileInfo " + quotedText(key) + " " + quotedText(value) + ";\n";
}

void Writing::create(Node& node) {
    DagNode* dag = node.dag();
    if (node.isDefault && !dag && (node.unknownType.empty() || isPlaceholder(node))) {
        out_ += "select -ne :" + node.name + ";\n";
        return;
    }
    out_ += "createNode " + (node.unknownType.empty() ? node.type.name : node.unknownType) +
            (node.isDefault ? " -s" : "") + " -n " + quotedText(node.name);
    if (dag && dag->parent && !dag->parent->isWorld()) out_ += " -p " + quotedText(pathOf(*dag->parent));
    out_ += ";\n";
}

void Writing::contents(Node& node) {
    if (!node.uuid.empty()) out_ += "\trename -uid " + quotedText(node.uuid) + ";\n";
    AttributeWriter writer(units_, out_);
    writer.write(node);
    for (const std::string& kept : node.keptStatements) out_ += "\t" + kept + "\n";
    if (node.locked) out_ += "\tlockNode -l 1;\n";
}

void Writing::connection(Cell& source, Cell& destination) {
    Node &from = source.node, &to = destination.node;
    // What every new scene has from the start.
    if (from.isDefault && to.isDefault && from.name == "lambert1" && to.name == "initialShadingGroup") return;
    out_ += "connectAttr ";
    const bool locked = destination.locked;
    if (locked) out_ += "-l on ";
    out_ += quotedText(nameInFile(from) + "." + plugText(source, true)) + " ";
    const bool next = destination.index >= 0 && !destination.attribute.indexMatters;
    Cell& named = next ? *destination.parent : destination;
    out_ += quotedText(nameInFile(to) + "." + plugText(named, false));
    if (next)
        out_ += " -na";
    else if (to.isDefault)
        out_ += " -f";
    out_ += ";\n";
}

void Writing::connections(Node& node) {
    for (Cell* whole : node.cells())
        forEachCell(*whole, [&](Cell& cell) {
            if (cell.source && cell.source->node.inScene && !omitted_.contains(&cell.source->node))
                connection(*cell.source, cell);
        });
}

void Writing::keptInstances() {
    for (const KeptInstance& kept : scene_.keptInstances) {
        const auto node = kept.node.lock(), parent = kept.parent.lock();
        const auto saved = [&](const NodePtr& n) { return n && n->inScene && !omitted_.contains(n.get()); };
        if (!saved(node) || !saved(parent)) continue;
        const std::string above = parent->dag()->isWorld() ? "|" : pathOf(*parent);
        out_ += "parent" + kept.flags + " " + quotedText(pathOf(*node)) + " " + quotedText(above) + ";\n";
    }
}

void Writing::keptConnections() {
    const auto neverSet = [](const std::weak_ptr<Node>& node) {
        const std::weak_ptr<Node> none;
        return !node.owner_before(none) && !none.owner_before(node);
    };
    for (const KeptConnection& kept : scene_.keptConnections) {
        const auto side = [&](const std::weak_ptr<Node>& owner, const std::weak_ptr<Node>& place,
                              const std::string& text, std::string& name) {
            if (neverSet(owner)) {
                name = text;
                return true;
            }
            const auto node = owner.lock();
            if (!node || !node->inScene || omitted_.contains(node.get())) return false; // went with its node
            const auto parent = place.lock();
            if (!neverSet(place) && (!parent || !parent->inScene || omitted_.contains(parent.get()))) return false;
            name = (parent ? parent->dag()->fullPath() + "|" + node->name : nameInFile(*node)) + "." + text;
            return true;
        };
        std::string source, destination;
        if (!side(kept.sourceNode, kept.sourceParent, kept.sourceText, source)) continue;
        if (!side(kept.destinationNode, kept.destinationParent, kept.destinationText, destination)) continue;
        out_ += "connectAttr " + quotedText(source) + " " + quotedText(destination);
        if (!kept.flags.empty()) out_ += " " + kept.flags;
        out_ += ";\n";
    }
}

std::string Writing::run(const std::string& name) {
    header(name);
    for (const KeptInstance& kept : scene_.keptInstances)
        if (const auto node = kept.node.lock(); node && node->inScene) instanced_.insert(node.get());
    std::vector<Node*> order, selected;
    for (DagNode* dag : scene_.descendants(*scene_.world())) {
        if (dag->doNotWrite || omitted_.contains(dag->parent))
            omitted_.insert(dag);
        else
            order.push_back(dag);
    }
    for (const auto& [serial, node] : scene_.nodes()) {
        if (node->dag()) continue;
        if (node->doNotWrite) {
            omitted_.insert(node.get());
            continue;
        }
        const bool makes = !node->isDefault || (!node->unknownType.empty() && !isPlaceholder(*node));
        (makes ? order : selected).push_back(node.get());
    }
    for (Node* node : order) {
        create(*node);
        contents(*node);
    }
    for (Node* node : selected) {
        const std::size_t before = out_.size();
        create(*node);
        const std::size_t header = out_.size();
        contents(*node);
        // Placeholders are named for what refers to them; others only for what differs.
        if (out_.size() == header && !isPlaceholder(*node)) out_.resize(before);
    }
    order.insert(order.end(), selected.begin(), selected.end());
    keptInstances();
    for (Node* node : order) connections(*node);
    keptConnections();
    for (const std::string& kept : scene_.keptStatements)
        if (!kept.starts_with("file ")) out_ += kept + "\n";
    out_ += "// End of file\n";
    return std::move(out_);
}

} // namespace

std::string SceneWriter::text(const std::string& name) { return Writing(scene_, options_).run(name); }

void SceneWriter::write(const std::filesystem::path& file) { writeTextFile(file, text(file.filename().string())); }

} // namespace host::files
