#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

namespace host::mel {

using namespace scene;

namespace {

std::vector<std::string> texts(const ParsedArguments& args, const char* flag) {
    std::vector<std::string> all;
    for (std::size_t i = 0; i < args.occurrences(flag); ++i)
        for (const auto& text : args.value(flag, 0, i).toStringArray()) all.push_back(text);
    return all;
}

class LsFilter {
public:
    explicit LsFilter(const ParsedArguments& args)
        : args_(args), types_(texts(args, "typ")), exact_(texts(args, "et")), excluded_(texts(args, "ext")) {
        for (const auto* list : {&types_, &exact_, &excluded_})
            for (const auto& type : *list)
                if (!theScene().findType(type)) throw Error("Unknown object type: " + type);
    }

    /// Whether only some kinds of node are wanted.
    bool byKind() const {
        return !types_.empty() || !exact_.empty() ||
               std::ranges::any_of(kKinds, [&](const Kind& k) { return args_.has(k.flag); });
    }

    bool accepts(Node& node) const {
        DagNode* dag = node.dag();
        if (args_.has("dag") && !dag) return false;
        if (args_.has("dep") && dag) return false;
        if (args_.has("as") && !(dag && dag->parent && dag->parent->isWorld())) return false;
        if (args_.has("v") && !(dag && visibleInWorld(*dag))) return false;
        if (args_.has("iv") && !(dag && !visibleInWorld(*dag))) return false;
        if (args_.has("tm") && !(dag && dag->templated())) return false;
        if (args_.has("ut") && dag && dag->templated()) return false;
        if (args_.has("ni") && dag && dag->intermediate()) return false;
        if (args_.has("io") && !(dag && dag->intermediate())) return false;
        if (args_.has("dn") && !node.isDefault) return false;
        if (args_.has("ud") && !node.isDefault) return false;
        if (args_.has("ln") && !node.locked) return false;
        if (args_.has("rn") && !node.referenced) return false;
        const auto isA = [&](const std::string& type) { return node.type.isA(type); };
        if (std::ranges::any_of(excluded_, isA)) return false;
        if (!byKind()) return true;
        if (std::ranges::any_of(types_, isA)) return true;
        if (std::ranges::any_of(exact_, [&](const std::string& type) { return node.type.name == type; })) return true;
        return std::ranges::any_of(kKinds, [&](const Kind& k) { return args_.has(k.flag) && isA(k.type); });
    }

private:
    struct Kind {
        const char *flag, *type;
    };
    static constexpr Kind kKinds[] = {{"tr", "transform"}, {"s", "shape"},       {"ca", "camera"},
                                      {"lt", "light"},     {"set", "objectSet"}, {"g", "geometryShape"},
                                      {"mat", "lambert"},  {"rf", "reference"}};
    const ParsedArguments& args_;
    std::vector<std::string> types_, exact_, excluded_;
};

void sortByName(std::vector<Selected>& items) {
    std::ranges::stable_sort(items, [](const Selected& a, const Selected& b) {
        if (a.node->name != b.node->name) return a.node->name < b.node->name;
        return namesOf(a, true).front() < namesOf(b, true).front();
    });
}

/// What the names stand for, or the selection, or everything: in the selection's order, in that of the DAG where
/// that is asked for, by name where a pattern or a kind is, else in the order of creation.
std::vector<Selected> lsItems(const ParsedArguments& args, const LsFilter& filter) {
    std::vector<Selected> items;
    const StringArray names = args.names();
    const bool below = args.has("dag") && !args.has("as");
    const auto add = [&](Node& node) { items.push_back({node.shared_from_this(), {}}); };
    if (args.has("sl")) items = theScene().selection();
    for (const std::string& name : names) {
        // Nothing found is an empty answer here, not an error.
        std::vector<Selected> matches;
        const auto head = name.substr(0, name.find('.'));
        if (name.find('.') != std::string::npos) {
            if (!theScene().findNodes(head).empty()) {
                try {
                    matches = itemsNamed(name);
                } catch (const Error&) {}
            }
        } else {
            for (Node* node : theScene().findNodes(name)) matches.push_back({node->shared_from_this(), {}});
        }
        if (head.find_first_of("*?") != std::string::npos) sortByName(matches);
        for (auto& m : matches)
            if (args.has("sl") == false)
                items.push_back(std::move(m));
            else
                continue;
    }
    if (args.has("sl") && !names.empty()) {
        std::unordered_set<const Node*> wanted;
        for (const std::string& name : names)
            for (Node* node : theScene().findNodes(name)) wanted.insert(node);
        std::erase_if(items, [&](const Selected& item) {
            return !wanted.contains(item.node.get()) && !wanted.contains(&componentOwner(*item.node));
        });
    }
    const bool everything = names.empty() && !args.has("sl");
    if (everything) {
        if (args.has("dag") || args.has("as") || args.has("v")) {
            for (DagNode* dag : theScene().descendants(*theScene().world())) add(*dag);
        } else {
            for (const auto& [serial, node] : theScene().nodes()) add(*node);
            if (filter.byKind()) sortByName(items);
        }
        if (args.has("v") && !args.has("dag") && filter.byKind()) sortByName(items);
    } else if (below) {
        std::vector<Selected> all;
        for (auto& item : items) {
            if (!item.node->dag()) continue;
            for (DagNode* dag : withDescendants(*item.node->dag())) all.push_back({dag->shared_from_this(), {}});
        }
        items = std::move(all);
    }
    return items;
}

/// What -showType says: components are shown as what a mesh keeps of them.
std::string shownType(const Selected& item) {
    if (item.isWhole()) return item.node->type.name;
    if (!item.components) return "attribute";
    switch (item.components->kind()) {
    case ComponentKind::Vertex: return "float3";
    case ComponentKind::Edge: return "long3";
    case ComponentKind::Face: return "polyFaces";
    case ComponentKind::Uv: return "float2";
    }
    return {};
}

Value ls(Call& call) {
    const ParsedArguments args(call, {{"typ", "type", 1},
                                      {"et", "exactType", 1},
                                      {"ext", "excludeType", 1},
                                      {"dag", "dagObjects"},
                                      {"dep", "dependencyNodes"},
                                      {"l", "long"},
                                      {"sn", "shortNames"},
                                      {"sl", "selection"},
                                      {"tr", "transforms"},
                                      {"s", "shapes"},
                                      {"ca", "cameras"},
                                      {"lt", "lights"},
                                      {"g", "geometry"},
                                      {"mat", "materials"},
                                      {"set", "sets"},
                                      {"as", "assemblies"},
                                      {"ap", "allPaths"},
                                      {"v", "visible"},
                                      {"iv", "invisible"},
                                      {"tm", "templated"},
                                      {"ut", "untemplated"},
                                      {"r", "recursive", 1},
                                      {"lf", "leaf"},
                                      {"st", "showType"},
                                      {"fl", "flatten"},
                                      {"hd", "head", 1},
                                      {"tl", "tail", 1},
                                      {"ni", "noIntermediate"},
                                      {"io", "intermediateObjects"},
                                      {"dn", "defaultNodes"},
                                      {"ud", "undeletable"},
                                      {"ln", "lockedNodes"},
                                      {"rn", "referencedNodes"},
                                      {"rf", "references"},
                                      {"o", "objectsOnly"},
                                      {"os", "orderedSelection"},
                                      {"uid", "uuid"}});
    const LsFilter filter(args);
    auto items = lsItems(args, filter);
    std::erase_if(items, [&](const Selected& item) { return !filter.accepts(*item.node); });
    if (args.has("lf")) {
        // Only those that have nothing of the list below them.
        std::unordered_set<const Node*> above;
        for (const auto& item : items)
            if (DagNode* dag = item.node->dag())
                for (DagNode* up = dag->parent; up; up = up->parent) above.insert(up);
        std::erase_if(items, [&](const Selected& item) { return above.contains(item.node.get()); });
    }
    if (args.has("o"))
        for (auto& item : items) item = {item.node};
    struct Line {
        const Selected* item;
        std::string name;
    };
    items = merged(items);
    std::vector<Line> lines;
    for (const auto& item : items)
        for (auto& name : namesOf(item, args.has("l"), args.has("fl"))) lines.push_back({&item, std::move(name)});
    if (args.has("hd")) lines.resize(std::min<std::size_t>(lines.size(), std::max(0, args.integer("hd", 0))));
    if (args.has("tl")) {
        const auto keep = std::min<std::size_t>(lines.size(), std::max(0, args.integer("tl", 0)));
        lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(keep));
    }
    StringArray names;
    for (auto& [item, name] : lines) {
        names.push_back(args.has("uid") ? item->node->uuid : std::move(name));
        if (args.has("st")) names.push_back(shownType(*item));
    }
    return names;
}

/// The members of a set, as selecting it selects them: transforms in place of surfaces.
std::vector<Selected> selectable(Node& set) {
    std::vector<Selected> members = membersOf(set);
    for (Selected& member : members)
        if (member.isWhole()) member.node = transformOf(*member.node).shared_from_this();
    return members;
}

Value select(Call& call) {
    const ParsedArguments args(call, {{"add", "add"},
                                      {"af", "addFirst"},
                                      {"all", "all"},
                                      {"ado", "allDagObjects"},
                                      {"adn", "allDependencyNodes"},
                                      {"cl", "clear"},
                                      {"d", "deselect"},
                                      {"hi", "hierarchy"},
                                      {"ne", "noExpand"},
                                      {"r", "replace"},
                                      {"tgl", "toggle"},
                                      {"vis", "visible"}});
    std::vector<Selected> given;
    if (args.has("cl")) {
        theScene().setSelection({});
        return {};
    }
    const StringArray names = args.names();
    for (const std::string& name : names)
        for (auto& item : itemsNamed(name)) {
            const bool expand = item.isWhole() && item.node->type.isA("objectSet") && !args.has("ne");
            if (!expand)
                given.push_back(item);
            else
                for (auto& member : selectable(*item.node)) given.push_back(member);
        }
    if (names.empty() && args.has("hi")) given = theScene().selection();
    if (args.has("all") || args.has("ado"))
        for (DagNode* child : theScene().world()->children)
            if (!child->isDefault) given.push_back({child->shared_from_this(), {}});
    if (args.has("all") || args.has("adn"))
        for (const auto& [serial, node] : theScene().nodes())
            if (!node->isDefault && !node->dag() && (args.has("adn") || node->type.isA("objectSet")))
                given.push_back({node, {}});
    if (args.has("hi")) {
        std::vector<Selected> all;
        for (auto& item : given) {
            all.push_back(item);
            if (DagNode* dag = item.node->dag())
                for (DagNode* below : theScene().descendants(*dag)) all.push_back({below->shared_from_this(), {}});
        }
        given = std::move(all);
    }
    if (args.has("vis"))
        std::erase_if(given, [](auto& item) { return item.node->dag() && !visibleInWorld(*item.node->dag()); });

    std::vector<Selected> now = theScene().selection();
    if (args.has("d")) {
        now = without(now, given);
    } else if (args.has("tgl")) {
        now = toggled(now, given);
    } else if (args.has("af")) {
        now = without(now, given);
        now.insert(now.begin(), given.begin(), given.end());
    } else if (args.has("add")) {
        now.insert(now.end(), given.begin(), given.end());
    } else {
        now = given;
    }
    theScene().setSelection(std::move(now));
    return {};
}

} // namespace

void registerSelectionCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "ls", ls);
    registerSceneCommand(interpreter, "select", select);
}

} // namespace host::mel
