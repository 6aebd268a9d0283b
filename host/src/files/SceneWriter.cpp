#include "files/SceneWriter.h"

#include "base/NumberText.h"
#include "base/QuotedText.h"
#include "base/TextFile.h"
#include "files/AttributeWriter.h"
#include "files/NumberWords.h"
#include "files/ReferenceEdits.h"
#include "scene/MeshNode.h"
#include "scene/References.h"

#include <algorithm>
#include <map>
#include <optional>
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
    std::string reference(const Reference& reference, bool load, const std::string& otherFile);

private:
    /// Whether a node of the scene's own is left out although it could be saved.
    bool isLeftOut(const Node& node) const {
        return options_.only && !node.isDefault && !options_.only->contains(&node);
    }
    bool isWanted(const Reference& reference) const { return !wanted_ || wanted_->contains(reference.top); }
    bool isFileOfUnwanted(const std::string& keptStatement) const;
    void chooseReferences();
    void keptConnection(const KeptConnection& kept);
    void header(const std::string& name);
    void create(Node& node);
    void contents(Node& node);
    void connections(Node& node);
    void connection(Cell& source, Cell& destination);
    void keptInstances();
    void collectEdits();
    void collectEdits(Node& node, Reference& reference);
    void collectConnection(Cell& cell);
    std::string placeholderOf(const Reference& reference, std::string& name);
    std::string plugName(Cell& plug) const;
    std::string pathOf(Node& node) const;
    std::string nameInFile(Node& node) const;

    Scene& scene_;
    const SceneWriter::Options& options_;
    FileUnits units_ = FileUnits::current();
    std::unordered_set<const Node*> omitted_;   ///< nodes that are not to be saved, and those below them
    std::unordered_set<const Node*> instanced_; ///< nodes with a second place
    /// Of the scene's own references, by their nodes' names: what the scene changes of them.
    std::map<std::string, std::vector<ReferenceEdit>> edits_;
    std::map<std::string, int> placeholders_; ///< how many each of them has used
    /// The scene's own references that are written; nothing for all.
    std::optional<std::unordered_set<const Reference*>> wanted_;
    std::string throughPlaceholders_; ///< the statements that connect them
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
        if (kept.starts_with("file ") && !isFileOfUnwanted(kept)) out_ += kept + "\n";
    out_ += requirement + "\n";
    for (const auto& [plugin, version] : options_.plugins)
        out_ += "requires " + quotedText(plugin) + " " + quotedText(version) + ";\n";
    for (const std::string& r : scene_.requiredPlugins)
        if (r != requirement) out_ += r + "\n";
    out_ += longName(units_);
    for (const auto& [key, value] : scene_.fileInfo)
        out_ += "fileInfo " + quotedText(key) + " " + quotedText(value) + ";\n";
}

/// Whether the statement names a file that none of the references which are written refer to.
bool Writing::isFileOfUnwanted(const std::string& keptStatement) const {
    return wanted_ && std::none_of(wanted_->begin(), wanted_->end(), [&](const Reference* reference) {
               return References::of(scene_).isFileOf(keptStatement, *reference);
           });
}

/// Which references go with the nodes that are to be written.
void Writing::chooseReferences() {
    if (!options_.only) return;
    wanted_.emplace();
    for (const Node* node : *options_.only)
        if (const Reference* reference = References::of(scene_).of(*node)) wanted_->insert(reference->top);
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
    if (const auto edits = edits_.find(node.name); edits != edits_.end() && node.type.name == "reference") {
        const int used = placeholders_[node.name];
        if (used > 0) out_ += "\tsetAttr -s " + std::to_string(used) + " \".phl\";\n";
        for (int n = 1; n <= used; ++n) out_ += "\tsetAttr \".phl[" + std::to_string(n) + "]\" 0;\n";
        out_ += referenceEditsText(node.name, edits->second);
    }
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

std::string Writing::plugName(Cell& plug) const {
    DagNode* dag = plug.node.dag();
    return (dag ? dag->fullPath() : plug.node.name) + "." + plug.attributePath();
}

/// A new placeholder of the reference; `name` gets its name in the edits.
std::string Writing::placeholderOf(const Reference& reference, std::string& name) {
    const int number = ++placeholders_[reference.top->name];
    name = reference.top->name + ".placeHolderList[" + std::to_string(number) + "]";
    return reference.top->name + ".phl[" + std::to_string(number) + "]";
}

/// A connection into the cell that touches what a reference brought and that it did not make.
void Writing::collectConnection(Cell& cell) {
    const References& references = References::of(scene_);
    if (cell.source && cell.source->node.inScene && !omitted_.contains(&cell.source->node) &&
        !references.isOwnConnection(cell)) {
        Cell& source = *cell.source;
        const Reference *from = references.of(source.node), *to = references.of(cell.node);
        // What another reference brings is called by its name where that one is not written.
        const bool leftOut = (from && !isWanted(*from)) || (to && !isWanted(*to));
        if (leftOut && options_.only) return;
        if (from && !isWanted(*from)) from = nullptr;
        if (to && !isWanted(*to)) to = nullptr;
        if (from || to) {
            std::string first, second, names[2];
            if (from) first = placeholderOf(*from, names[0]);
            if (to) second = placeholderOf(*to, names[1]);
            const auto edit = [&](const Reference& r, int variant, std::vector<std::string> words) {
                words.insert(words.begin(), r.top->name);
                words.emplace_back();
                edits_[r.top->name].push_back({r.name, ReferenceEdit::Connect, variant, std::move(words), true});
            };
            if (from && to && from->top == to->top) {
                edit(*to, 0, {plugName(source), plugName(cell), names[0], names[1]});
            } else {
                if (from) edit(*from, 3, {plugName(source), names[0]});
                if (to) edit(*to, 4, {plugName(cell), names[1]});
            }
            const bool next = cell.index >= 0 && !cell.attribute.indexMatters && !to;
            Cell& named = next ? *cell.parent : cell;
            throughPlaceholders_ += "connectAttr ";
            if (cell.locked) throughPlaceholders_ += "-l on ";
            throughPlaceholders_ += quotedText(from ? first : nameInFile(source.node) + "." + plugText(source, true)) +
                                    " " +
                                    quotedText(to ? second : nameInFile(cell.node) + "." + plugText(named, false)) +
                                    (next ? " -na" : "") + ";\n";
        }
    }
}

void Writing::collectEdits(Node& node, Reference& reference) {
    const References& references = References::of(scene_);
    std::vector<ReferenceEdit>& edits = edits_[reference.top->name];
    const std::string name = node.dag() ? node.dag()->fullPath() : node.name;
    const auto written = [&](const auto& write) {
        std::string text;
        AttributeWriter writer(units_, text);
        write(writer);
        return text;
    };
    for (const AttributePtr& a : node.dynamicAttributes())
        if (references.isAdded(*a)) {
            // A compound and its parts are a statement each.
            const std::string text = written([&](AttributeWriter& w) { w.define(*a); });
            for (std::size_t at = 0; at < text.size();) {
                const std::size_t end = text.find(";\n", at);
                edits.push_back({reference.name,
                                 ReferenceEdit::AddAttr,
                                 0,
                                 {name, a->longName, a->shortName, editArguments(text.substr(at, end - at), "addAttr")},
                                 true});
                at = end + 2;
            }
        }
    const auto visit = [&](Cell& cell) {
        const bool added = references.isAdded(cell.attribute.root()) && cell.written;
        if (references.isChanged(cell) || added) {
            const std::string text = written([&](AttributeWriter& w) { w.plug(cell); });
            if (!text.empty())
                edits.push_back({reference.name,
                                 ReferenceEdit::SetAttr,
                                 0,
                                 {name, cell.attributePath(), editArguments(text, "setAttr")},
                                 true});
        }
    };
    for (Cell* root : node.cells()) forEachCell(*root, visit);
    const auto* mesh = meshBehavior(node);
    for (const int vertex : references.movedPoints(node)) {
        const auto tweak = mesh->tweaks.find(vertex);
        const mesh::Float3 to = tweak == mesh->tweaks.end() ? mesh::Float3() : tweak->second;
        std::string arguments = " -type \"float3\"";
        for (const float x : {to.x, to.y, to.z})
            appendNumber(arguments += ' ', static_cast<float>(x / units_.factor(AttributeType::Distance)));
        edits.push_back({reference.name,
                         ReferenceEdit::SetAttr,
                         0,
                         {name, "pnts[" + std::to_string(vertex) + "]", std::move(arguments)},
                         true});
    }
}

/// The vertex that an edit of a value moves; nothing for others.
std::optional<int> movedVertex(const ReferenceEdit& edit) {
    std::string_view path = edit.words[1];
    for (const std::string_view list : {"pnts[", "pt["})
        if (path.starts_with(list) && path.ends_with("]"))
            return readInt(path.substr(list.size(), path.size() - list.size() - 1));
    return std::nullopt;
}

/// What the scene changes of its references: what its file said, and what has been changed since.
void Writing::collectEdits() {
    const References& references = References::of(scene_);
    for (const auto& reference : references.all()) {
        if (reference->top != reference.get() || !reference->loaded || !isWanted(*reference)) continue;
        std::vector<ReferenceEdit>& edits = edits_[reference->name];
        int& used = placeholders_[reference->name];
        for (const ReferenceEdit& e : reference->edits) {
            // Connections are named anew, as are values that have changed since; a node of the scene's own that has got
            // a referenced parent says so itself.
            bool anew = e.kind == ReferenceEdit::Connect || (e.kind == ReferenceEdit::Parent && e.variant == 0);
            if (e.kind == ReferenceEdit::SetAttr && e.words.size() > 1) {
                const Cell* cell = scene_.tryPlug(e.words[0] + "." + e.words[1], false);
                anew = cell && references.isChanged(*cell);
                const Node* shape = cell ? &cell->node : scene_.findNode(e.words[0]);
                if (const auto vertex = movedVertex(e); vertex && shape)
                    anew = references.movedPoints(*shape).contains(*vertex);
            }
            if (!(e.applied && anew)) edits.push_back(e);
        }
        // Placeholders whose connection could not be made keep their numbers.
        for (const KeptConnection& kept : scene_.keptConnections)
            for (const std::string* side : {&kept.sourceText, &kept.destinationText})
                if (const auto at = side->find("phl["); at != side->npos) {
                    std::string_view number = std::string_view(*side).substr(at + 4);
                    used = std::max(used, takeInt(number).value_or(0));
                }
    }
    for (const auto& reference : references.all())
        for (const auto& kept : reference->contents)
            if (const NodePtr node = kept.lock(); node && node->inScene && isWanted(*reference)) {
                collectEdits(*node, *reference);
                for (Cell* root : node->cells()) forEachCell(*root, [&](Cell& cell) { collectConnection(cell); });
            }
}

void Writing::connections(Node& node) {
    for (Cell* whole : node.cells())
        forEachCell(*whole, [&](Cell& cell) {
            // What comes out of a reference comes by a placeholder.
            if (cell.source && !cell.source->node.referenced && cell.source->node.inScene &&
                !omitted_.contains(&cell.source->node))
                connection(*cell.source, cell);
        });
}

void Writing::keptInstances() {
    for (const KeptInstance& kept : scene_.keptInstances) {
        const auto node = kept.node.lock(), parent = kept.parent.lock();
        const auto saved = [&](const NodePtr& n) {
            return n && n->inScene && !n->referenced && !omitted_.contains(n.get());
        };
        if (!saved(node) || !saved(parent)) continue;
        const std::string above = parent->dag()->isWorld() ? "|" : pathOf(*parent);
        out_ += "parent" + kept.flags + " " + quotedText(pathOf(*node)) + " " + quotedText(above) + ";\n";
    }
}

void Writing::keptConnection(const KeptConnection& kept) {
    const auto neverSet = [](const std::weak_ptr<Node>& node) {
        const std::weak_ptr<Node> none;
        return !node.owner_before(none) && !none.owner_before(node);
    };
    const auto side = [&](const std::weak_ptr<Node>& owner, const std::weak_ptr<Node>& place, const std::string& text,
                          std::string& name) {
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
    if (!side(kept.sourceNode, kept.sourceParent, kept.sourceText, source)) return;
    if (!side(kept.destinationNode, kept.destinationParent, kept.destinationText, destination)) return;
    out_ += "connectAttr " + quotedText(source) + " " + quotedText(destination);
    if (!kept.flags.empty()) out_ += " " + kept.flags;
    out_ += ";\n";
}

/// A statement that names the file of a reference, with whether it is to be read, and maybe another file's name.
std::string fileStatement(const std::string& kept, bool load, const std::string& otherFile) {
    StatementScanner scanner(kept);
    Statement s;
    if (!scanner.next(s)) return kept + "\n";
    const auto is = [](const Word& w, std::string_view brief, std::string_view whole) {
        return w.isFlag() && (w.text == brief || w.text == whole);
    };
    const bool opens =
        std::any_of(s.words.begin(), s.words.end(), [&](const Word& w) { return is(w, "-r", "-reference"); });
    std::string text = "file";
    for (std::size_t i = 0; i < s.words.size(); ++i) {
        const Word& w = s.words[i];
        if (!opens && is(w, "-dr", "-deferReference")) {
            ++i; // its value
            continue;
        }
        if (!opens && !load && is(w, "-rfn", "-referenceNode")) text += " -dr 1";
        const bool named = i + 1 == s.words.size() && !otherFile.empty();
        text += " " + (named ? quotedText(otherFile) : w.quoted ? quotedText(w.text) : std::string(w.text));
    }
    return text + ";\n";
}

std::string Writing::reference(const Reference& reference, bool load, const std::string& otherFile) {
    wanted_.emplace().insert(&reference);
    Node& node = *scene_.findNode(reference.name);
    if (reference.loaded) {
        collectEdits();
        for (const auto& [serial, own] : scene_.nodes())
            if (!own->referenced)
                for (Cell* root : own->cells()) forEachCell(*root, [&](Cell& cell) { collectConnection(cell); });
        for (const auto& other : References::of(scene_).all())
            if (!isWanted(*other))
                for (const auto& kept : other->contents)
                    if (const NodePtr own = kept.lock(); own && own->inScene)
                        for (Cell* root : own->cells())
                            forEachCell(*root, [&](Cell& cell) { collectConnection(cell); });
    }
    for (const std::string& kept : scene_.keptStatements)
        if (kept.starts_with("file ") && References::of(scene_).isFileOf(kept, reference)) {
            const bool own = kept.find(quotedText(reference.name)) != kept.npos;
            out_ += own ? fileStatement(kept, load, otherFile) : kept + "\n";
        }
    out_ += "createNode reference -s -n " + quotedText(node.name) + ";\n"; // it stays where it is
    contents(node);
    out_ += throughPlaceholders_;
    for (const KeptConnection& kept : scene_.keptConnections)
        if (kept.sourceNode.lock().get() == &node || kept.destinationNode.lock().get() == &node) keptConnection(kept);
    return std::move(out_);
}

std::string Writing::run(const std::string& name) {
    chooseReferences();
    header(name);
    for (const KeptInstance& kept : scene_.keptInstances)
        if (const auto node = kept.node.lock(); node && node->inScene) instanced_.insert(node.get());
    std::vector<Node*> order, selected;
    for (DagNode* dag : scene_.descendants(*scene_.world())) {
        if (dag->referenced) continue; // its own file has it
        if (dag->doNotWrite || omitted_.contains(dag->parent) || isLeftOut(*dag))
            omitted_.insert(dag);
        else
            order.push_back(dag);
    }
    for (const auto& [serial, node] : scene_.nodes()) {
        if (node->dag() || node->referenced) continue;
        const Reference* reference = options_.only ? References::of(scene_).named(node->name) : nullptr;
        if (node->doNotWrite || (reference ? !isWanted(*reference) : isLeftOut(*node))) {
            omitted_.insert(node.get());
            continue;
        }
        const bool makes = !node->isDefault || (!node->unknownType.empty() && !isPlaceholder(*node));
        (makes ? order : selected).push_back(node.get());
    }
    if (!References::of(scene_).all().empty()) {
        collectEdits();
        for (const auto* list : {&order, &selected})
            for (Node* node : *list)
                for (Cell* root : node->cells()) forEachCell(*root, [&](Cell& cell) { collectConnection(cell); });
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
    out_ += throughPlaceholders_;
    for (const KeptConnection& kept : scene_.keptConnections) keptConnection(kept);
    for (const std::string& kept : scene_.keptStatements)
        if (!kept.starts_with("file ") && !options_.only) out_ += kept + "\n";
    out_ += "// End of file\n";
    return std::move(out_);
}

} // namespace

std::string SceneWriter::text(const std::string& name) { return Writing(scene_, options_).run(name); }

std::string SceneWriter::reference(const Reference& reference, bool load, const std::string& otherFile) {
    return Writing(scene_, options_).reference(reference, load, otherFile);
}

void SceneWriter::write(const std::filesystem::path& file) { writeTextFile(file, text(file.filename().string())); }

} // namespace host::files
