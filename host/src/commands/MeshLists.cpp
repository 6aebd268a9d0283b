#include "commands/MeshLists.h"
#include "base/NumberText.h"

#include "commands/CommandSupport.h"
#include "mesh/PolyMesh.h"
#include "scene/MeshNode.h"

#include <functional>
#include <numeric>

namespace host::mel {

using namespace scene;

namespace {

/// "list[2:5]" or "list": its name, and the elements that are meant.
struct Word {
    std::string_view name, inside;
    bool hasIndex = false;

    explicit Word(std::string_view text) : name(text.substr(0, text.find('['))) {
        if (name.size() == text.size()) return;
        hasIndex = text.back() == ']';
        inside = text.substr(name.size() + 1, text.size() - name.size() - 2);
    }
    bool is(const char* longName, const char* shortName) const { return name == longName || name == shortName; }
};

int number(std::string_view text, const std::string& plug) {
    const auto value = readInt(text);
    if (!value || *value < 0) throw Error("Invalid index: " + plug);
    return *value;
}

/// A list of tuples: how many there are, which of them somebody set, and their numbers.
struct List {
    int count = 0, width = 0;
    bool whole = false; ///< integers
    std::vector<int> used;
    std::function<double(int, int)> at;
};

const char* const kAxes = "xyz";

List listOf(Node& shape, const Word& word, const mesh::PolyMesh& stored) {
    const double unit = lengthUnit();
    const auto axis = [](const mesh::Float3& p, int k) { return double(k == 0 ? p.x : k == 1 ? p.y : p.z); };
    List list;
    if (word.is("vrts", "vt")) {
        list = {stored.numVertices(), 3, false, {}, [&stored, axis, unit](int i, int k) {
                    return axis(stored.point(i), k) / unit;
                }};
    } else if (word.is("pnts", "pt")) {
        const auto& tweaks = meshBehavior(shape)->tweaks;
        list = {stored.numVertices(), 3, false, {}, [&tweaks, axis, unit](int i, int k) {
                    const auto found = tweaks.find(i);
                    return found == tweaks.end() ? 0.0 : axis(found->second, k) / unit;
                }};
        for (const auto& [vertex, offset] : tweaks) list.used.push_back(vertex);
        return list;
    } else if (word.is("edge", "ed")) {
        list = {stored.numEdges(), 3, true, {}, [&stored](int i, int k) {
                    const mesh::Edge& e = stored.edges()[static_cast<std::size_t>(i)];
                    return k == 0 ? e.v1 : k == 1 ? e.v2 : double(e.smooth);
                }};
    } else if (word.is("normals", "n")) {
        const auto normals = stored.explicitNormals();
        list = {static_cast<int>(normals.size()), 3, false, {}, [normals, axis](int i, int k) {
                    return axis(normals[static_cast<std::size_t>(i)], k);
                }};
    }
    list.used.resize(static_cast<std::size_t>(list.count));
    std::iota(list.used.begin(), list.used.end(), 0);
    return list;
}

Value valueOf(const List& list, const Word& word, std::string_view part, const std::string& plug,
              const ParsedArguments& flags) {
    std::vector<int> wanted = list.used;
    const auto colon = word.inside.find(':');
    if (word.hasIndex && word.inside != "*") {
        const int first = number(word.inside.substr(0, colon), plug);
        const int last = colon == std::string_view::npos ? first : number(word.inside.substr(colon + 1), plug);
        if (last < first || last >= list.count) throw Error("No object matches name: " + plug);
        wanted.resize(static_cast<std::size_t>(last - first) + 1);
        std::iota(wanted.begin(), wanted.end(), first);
    }
    if (flags.has("s")) return word.hasIndex ? 1 : static_cast<int>(wanted.size());
    if (flags.has("mi")) return word.hasIndex ? IntArray{} : wanted;
    int from = 0, to = list.width;
    if (!part.empty()) {
        const auto axis = std::string_view(list.width == 2 ? "UV" : kAxes).find(part.back());
        if (axis == std::string_view::npos) throw Error("No object matches name: " + plug);
        from = static_cast<int>(axis);
        to = from + 1;
    }
    FloatArray numbers;
    for (const int i : wanted)
        for (int k = from; k < to; ++k) numbers.push_back(list.at(i, k));
    const bool one = !part.empty() && wanted.size() == 1;
    if (list.whole) return one ? Value(static_cast<int>(numbers.front())) : Value(Value(numbers).toIntArray());
    return one ? Value(numbers.front()) : Value(std::move(numbers));
}

} // namespace

std::optional<Value> meshListValue(const std::string& name, const ParsedArguments& flags) {
    for (const char* flag : {"typ", "l", "k", "cb", "ca", "se"})
        if (flags.has(flag)) return std::nullopt;
    const auto dot = name.find('.');
    if (dot == std::string::npos) return std::nullopt;
    std::string_view path = std::string_view(name).substr(dot + 1);
    const auto next = path.find('.');
    const Word word(path.substr(0, next));
    std::string_view part = next == std::string_view::npos ? std::string_view() : path.substr(next + 1);
    const bool uvs = word.is("uvSet", "uvst");
    if (!uvs && !word.is("vrts", "vt") && !word.is("pnts", "pt") && !word.is("edge", "ed") && !word.is("normals", "n"))
        return std::nullopt;

    Node* node = theScene().findNode(name.substr(0, dot));
    if (!node || !node->dag()) return std::nullopt;
    if (!meshBehavior(*node)) {
        if (node->findAttribute(word.name)) return std::nullopt;
        Node* shape = nullptr;
        for (DagNode* below : shapesOf(*node->dag()))
            if (!shape && meshBehavior(*below)) shape = below;
        node = shape;
    }
    const auto stored = node ? storedMeshOf(*node) : nullptr;
    if (!stored) return std::nullopt;
    if (!uvs) return valueOf(listOf(*node, word, *stored), word, part, name, flags);

    if (!word.hasIndex) {
        if (flags.has("s")) return stored->numUvSets();
        if (!flags.has("mi")) return std::nullopt;
        IntArray indices(static_cast<std::size_t>(stored->numUvSets()));
        std::iota(indices.begin(), indices.end(), 0);
        return indices;
    }
    const int set = number(word.inside, name);
    if (set >= stored->numUvSets()) throw Error("No object matches name: " + name);
    const mesh::UvSet& held = stored->uvSet(set);
    const auto inner = part.find('.');
    const Word list(part.substr(0, inner));
    if (list.is("uvSetName", "uvsn") && !flags.has("s") && !flags.has("mi")) return held.name;
    if (!list.is("uvSetPoints", "uvsp")) return std::nullopt;
    List points{held.size(), 2, false, {}, [&held](int i, int k) {
                    const auto place = static_cast<std::size_t>(i);
                    return double(k == 0 ? held.u[place] : held.v[place]);
                }};
    points.used.resize(static_cast<std::size_t>(points.count));
    std::iota(points.used.begin(), points.used.end(), 0);
    return valueOf(points, list, inner == std::string_view::npos ? std::string_view() : part.substr(inner + 1), name,
                   flags);
}

} // namespace host::mel
