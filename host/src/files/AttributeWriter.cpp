#include "files/AttributeWriter.h"

#include "base/QuotedText.h"
#include "files/NumberWords.h"
#include "scene/AnimCurve.h"
#include "scene/AttributeKind.h"
#include "scene/MeshNode.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace host::files {

using namespace scene;

namespace {

constexpr std::size_t lineLength = 110, longestText = 800;

/// A text as a value: a sum of pieces when it is long.
std::string textValue(std::string_view text) {
    if (text.size() <= longestText) return quotedText(text);
    std::string out = "(";
    while (!text.empty()) {
        std::size_t n = std::min(text.size(), longestText);
        if (n < text.size()) {
            const auto line = text.substr(0, n).rfind('\n');
            if (line != text.npos && line > n / 2) n = line + 1;
            while (n > 1 && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80) --n; // not within a character
        }
        out += out.size() == 1 ? "\n\t\t" : "\n\t\t+ ";
        out += quotedText(text.substr(0, n));
        text.remove_prefix(n);
    }
    return out + ")";
}

/// Numbers one after the other, in lines of a bearable length.
class Lines {
public:
    explicit Lines(std::string& out) : out_(out), start_(out.size()) {}
    void gap() {
        if (out_.size() - start_ < lineLength) {
            out_ += ' ';
        } else {
            out_ += "\n\t\t";
            start_ = out_.size();
        }
    }

private:
    std::string& out_;
    std::size_t start_;
};

/// A float of which the reader makes `value` when it scales it.
void appendScaled(std::string& out, float value, double factor) {
    if (factor != 1.0 && value != 0) {
        const float wanted = value, quotient = static_cast<float>(value / factor);
        float candidate = quotient;
        for (int k = 0; k < 3; ++k) candidate = std::nextafter(candidate, -std::numeric_limits<float>::infinity());
        value = quotient;
        for (int k = -3; k <= 3; ++k, candidate = std::nextafter(candidate, std::numeric_limits<float>::infinity()))
            if (static_cast<float>(candidate * factor) == wanted) value = candidate;
    }
    appendNumber(out, value);
}

bool isConnected(const Cell& cell) {
    for (const Cell* c = &cell; c; c = c->parent)
        if (c->source) return true;
    return false;
}

bool hasStates(const Cell& c) { return c.locked || c.keyable || c.channelBox; }

bool isInArray(const Cell& cell) {
    for (const Cell* c = &cell; c; c = c->parent)
        if (c->index >= 0) return true;
    return false;
}

/// Whether the element is numbers alone that nothing else is said of, so that it may be part of a range.
bool isPlainElement(const Cell& c) {
    if (c.source || hasStates(c)) return false;
    const Attribute& a = c.attribute;
    if (a.children.empty() && !a.isNumber()) return false;
    for (const auto& part : a.children)
        if (part->array || (!part->isNumber() && !part->isCompound())) return false;
    return std::all_of(c.children.begin(), c.children.end(),
                       [](const auto& child) { return !child || isPlainElement(*child); });
}

bool anyWritten(const Cell& c) {
    return c.written ||
           std::any_of(c.children.begin(), c.children.end(), [](const auto& k) { return k && anyWritten(*k); });
}

/// Whether the mesh has more than the one empty UV set that all have.
bool hasUvSets(const mesh::PolyMesh* m) {
    return m && (m->numUvSets() > 1 || (m->numUvSets() == 1 && (m->uvSet(0).size() > 0 || m->uvSet(0).name != "map1")));
}

const char* truth(bool b) { return b ? "true" : "false"; }

} // namespace

std::string plugText(const Cell& cell, bool source) {
    const Attribute& a = cell.attribute;
    if (cell.index >= 0) {
        const std::string array = plugText(*cell.parent, source);
        const bool ofInstance = a.worldSpace || a.longName == "instObjGroups";
        return source && ofInstance && cell.index == 0 ? array : array + "[" + std::to_string(cell.index) + "]";
    }
    const bool alone = !isInArray(cell) && cell.node.findAttribute(a.shortName) == &a;
    return cell.parent && !alone ? plugText(*cell.parent, source) + "." + a.shortName : a.shortName;
}

void AttributeWriter::number(const Attribute& a, double value) {
    if (a.isUnit())
        appendQuotient(out_, value, units_.factor(a.type));
    else if (a.numeric == NumericType::Bool)
        out_ += value != 0 ? "yes" : "no";
    else if (a.numeric == NumericType::Float)
        appendNumber(out_, static_cast<float>(value));
    else
        appendNumber(out_, value);
}

void AttributeWriter::number(Cell& leaf) {
    int k = 0;
    const Numeric* n = leaf.numbers(&k);
    if (!n) return;
    if (n->type == NumericType::Int64)
        appendNumber(out_, n->getInt64(k));
    else
        number(leaf.attribute, n->get(k));
}

bool AttributeWriter::differs(Cell& c) const {
    const Attribute& a = c.attribute;
    if (anyWritten(c) && (c.node.isDefault || !c.node.type.plugin.empty() || isInArray(c))) return true;
    if (a.type == AttributeType::Compound) {
        return std::any_of(c.children.begin(), c.children.end(),
                           [&](const auto& child) { return child && differs(*child); });
    }
    if (c.isTupleChild()) {
        const auto* standard = std::get_if<Numeric>(&a.defaultValue);
        return !standard || c.number() != standard->get();
    }
    return !equal(c.value, a.defaultValue);
}

void AttributeWriter::states(Cell& c, std::string& flags) const {
    // The lock of a fed plug goes with its connection.
    if (c.locked && !c.source) flags += " -l on";
    if (c.keyable) flags += *c.keyable ? " -k on" : " -k off";
    if (c.channelBox) flags += *c.channelBox ? " -cb on" : " -cb off";
}

void AttributeWriter::value(Cell& c, const std::string& flags) {
    const Attribute& a = c.attribute;
    out_ += "\tsetAttr" + flags + " \"." + plugText(c, false) + '"';
    Lines lines(out_);
    if (a.type == AttributeType::Tuple) {
        const bool named = a.numeric == NumericType::Float || a.numeric == NumericType::Double ||
                           a.numeric == NumericType::Short || a.numeric == NumericType::Int;
        if (named) out_ += " -type \"" + a.typeName() + '"';
        for (std::size_t k = 0; k < a.children.size(); ++k) {
            lines.gap();
            number(c.child(static_cast<int>(k)));
        }
    } else if (std::holds_alternative<Numeric>(c.value) || c.isTupleChild()) {
        out_ += ' ';
        number(c);
    } else if (const auto* text = std::get_if<std::string>(&c.value)) {
        out_ += " -type \"string\" " + textValue(*text);
    } else if (const auto* m = matrixIn(c.value)) {
        out_ += " -type \"matrix\"";
        for (unsigned k = 0; k < 16; ++k) {
            lines.gap();
            appendNumber(out_, (*m)(k / 4, k % 4));
        }
    } else if (const auto* f = floatMatrixIn(c.value)) {
        out_ += " -type \"matrix\"";
        for (unsigned k = 0; k < 16; ++k) {
            lines.gap();
            appendNumber(out_, (*f)(k / 4, k % 4));
        }
    } else if (const auto* data = std::get_if<DataPtr>(&c.value)) {
        const auto& list = static_cast<const ArrayData&>(**data);
        const std::size_t size = list.texts.size() + list.numbers.size() / static_cast<std::size_t>(list.tupleSize());
        out_.append(" -type \"").append(dataTypeName(list.kind())) += "\" " + std::to_string(size);
        for (const std::string& text : list.texts) {
            lines.gap();
            out_ += quotedText(text);
        }
        for (const double v : list.numbers) {
            lines.gap();
            appendNumber(out_, v);
        }
    }
    out_ += ";\n";
}

void AttributeWriter::array(Cell& c) {
    const bool tuple = c.attribute.type == AttributeType::Tuple;
    bool first = true;
    for (auto it = c.elements.begin(); it != c.elements.end();) {
        Cell& element = *it->second;
        if (!isPlainElement(element)) {
            cell(element);
            ++it;
            continue;
        }
        if (!differs(element)) {
            ++it;
            continue;
        }
        auto end = it;
        int last = it->first - 1;
        while (end != c.elements.end() && end->first == last + 1 && last - it->first < 199 &&
               isPlainElement(*end->second) && differs(*end->second)) {
            last = end->first;
            ++end;
        }
        out_ += "\tsetAttr";
        if (first) out_ += " -s " + std::to_string(c.elements.size());
        first = false;
        out_ += " \"." + plugText(c, false) + "[" + std::to_string(it->first);
        if (last > it->first) out_ += ":" + std::to_string(last);
        out_ += "]\"";
        if (tuple && (c.attribute.numeric == NumericType::Float || c.attribute.numeric == NumericType::Double))
            out_ += " -type \"" + c.attribute.typeName() + '"';
        Lines lines(out_);
        const std::function<void(Cell&)> leaves = [&](Cell& e) {
            for (std::size_t k = 0; k < e.attribute.children.size(); ++k) leaves(e.child(static_cast<int>(k)));
            if (!e.attribute.children.empty()) return;
            lines.gap();
            number(e);
        };
        for (; it != end; ++it) leaves(*it->second);
        out_ += ";\n";
    }
}

void AttributeWriter::plug(Cell& c) {
    std::string flags;
    states(c, flags);
    const bool single = c.attribute.type == AttributeType::Tuple || c.attribute.children.empty();
    const auto* data = std::get_if<DataPtr>(&c.value);
    const bool writable = !data || (*data && (*data)->kind() != DataKind::Mesh);
    if (single && !c.isArray() && c.attribute.storable && !isConnected(c) && writable &&
        !c.node.isComputed(c.attribute))
        value(c, flags);
    else if (!flags.empty())
        out_ += "\tsetAttr" + flags + " \"." + plugText(c, false) + "\";\n";
}

void AttributeWriter::cell(Cell& c) {
    const Attribute& a = c.attribute;
    std::string flags;
    states(c, flags);
    const auto statesAlone = [&] {
        if (!flags.empty()) out_ += "\tsetAttr" + flags + " \"." + plugText(c, false) + "\";\n";
    };
    const bool hasValue = a.storable && !isConnected(c) && !c.node.isComputed(a) && a.type != AttributeType::Message;
    if (c.isArray()) {
        if (a.storable || a.type == AttributeType::Message) array(c);
        statesAlone();
        return;
    }
    if (a.type == AttributeType::Compound) {
        // Parts first: they could not be set below a locked compound.
        for (auto& child : c.children)
            if (child) cell(*child);
        statesAlone();
        return;
    }
    if (a.type == AttributeType::Tuple) {
        const bool fed = std::any_of(c.children.begin(), c.children.end(), [](auto& k) { return k && k->source; });
        const bool whole = hasValue && !fed && differs(c);
        if (whole) value(c, flags);
        for (std::size_t k = 0; k < a.children.size(); ++k) {
            const bool exists = k < c.children.size() && c.children[k];
            if (!exists && !(fed && hasValue)) continue;
            Cell& child = c.child(static_cast<int>(k));
            std::string childFlags;
            states(child, childFlags);
            if (fed && hasValue && !child.source && differs(child))
                value(child, childFlags);
            else if (!childFlags.empty())
                out_ += "\tsetAttr" + childFlags + " \"." + plugText(child, false) + "\";\n";
        }
        if (!whole) statesAlone();
        return;
    }
    const auto* data = std::get_if<DataPtr>(&c.value);
    const bool writable = !data || (*data && (*data)->kind() != DataKind::Mesh);
    const bool holds = !std::holds_alternative<std::monostate>(c.value) || c.isTupleChild();
    if (hasValue && writable && holds && differs(c))
        value(c, flags);
    else
        statesAlone();
}

void AttributeWriter::define(const Attribute& a) {
    const bool isData =
        a.type == AttributeType::String || a.type == AttributeType::Data || a.type == AttributeType::Matrix;
    out_ += "\taddAttr -ci " + std::string(truth(a.cached));
    if (a.hidden) out_ += " -h true";
    if (a.keyable) out_ += " -k true";
    if (a.array) out_ += " -m";
    if (!a.indexMatters) out_ += " -im false";
    if (a.usedAsColor) out_ += " -uac";
    if (a.usedAsFilename) out_ += " -uaf";
    if (!a.readable) out_ += " -r false";
    if (!a.writable) out_ += " -w false";
    if (!a.storable && a.type != AttributeType::Message) out_ += " -s false";
    out_ += " -sn " + quotedText(a.shortName) + " -ln " + quotedText(a.longName);
    if (!a.niceName.empty()) out_ += " -nn " + quotedText(a.niceName);
    const auto* standard = a.isNumber() ? std::get_if<Numeric>(&a.defaultValue) : nullptr;
    const auto limit = [&](const char* flag, const std::optional<double>& v) {
        if (!v) return;
        out_ += flag;
        number(a, *v);
    };
    if (standard && standard->type == NumericType::Int64)
        out_ += " -dv " + std::to_string(standard->getInt64());
    else if (standard && standard->get() != 0)
        limit(" -dv ", standard->get());
    if (a.isNumber()) {
        limit(" -min ", a.limits[0].min);
        limit(" -max ", a.limits[0].max);
        limit(" -smn ", a.limits[0].softMin);
        limit(" -smx ", a.limits[0].softMax);
    }
    if (a.type == AttributeType::Enum) {
        std::string names;
        int next = 0;
        for (const auto& [name, index] : a.fields) {
            names += (names.empty() ? "" : ":") + name;
            if (index != next) names += "=" + std::to_string(index);
            next = index + 1;
        }
        out_ += " -en " + quotedText(names);
    }
    out_ += (isData ? " -dt \"" : " -at \"") + addedTypeName(a) + '"';
    if (a.parent) out_ += " -p " + quotedText(a.parent->longName);
    if (a.isCompound()) out_ += " -nc " + std::to_string(a.children.size());
    out_ += ";\n";
    for (const auto& child : a.children) define(*child);
}

/// Writes `count` elements of a list from `start` on, in statements of at most `most`; the first says that the list has
/// `all`, unless that is 0.
template <class Put>
void AttributeWriter::pieces(const std::string& list, const char* type, std::size_t start, std::size_t count,
                             std::size_t all, std::size_t most, std::size_t width, Put put) {
    for (std::size_t done = 0; done < count; done += most) {
        const std::size_t first = start + done, last = start + std::min(done + most, count) - 1;
        out_ += "\tsetAttr";
        if (done == 0 && all > 0) out_ += " -s " + std::to_string(all);
        out_ += " \"." + list + "[" + std::to_string(first);
        if (last > first) out_ += ":" + std::to_string(last);
        out_ += "]\"";
        out_ += type;
        Lines lines(out_);
        for (std::size_t i = first; i <= last; ++i)
            for (std::size_t k = 0; k < width; ++k) {
                lines.gap();
                put(i, k);
            }
        out_ += ";\n";
    }
}

/// What is said of elements of a list whose values are written elsewhere.
void AttributeWriter::listStates(Cell& list) {
    forEachCell(list, [&](Cell& c) {
        std::string flags;
        states(c, flags);
        if (!flags.empty()) out_ += "\tsetAttr" + flags + " \"." + plugText(c, false) + "\";\n";
    });
}

void AttributeWriter::curve(Node& node) {
    const CurveKeys& curve = *curveKeys(node);
    const auto keys = curve.keys();
    for (const char* name : {"keyTimeValue", "keyTanInType", "keyTanOutType", "keyTanLocked", "keyWeightLocked",
                             "keyTanInX", "keyTanInY", "keyTanOutX", "keyTanOutY", "keyBreakdown"}) {
        const CurveKey::List list = *curveList(name);
        const Attribute& a = *node.type.find(name);
        const bool pairs = list == CurveKey::TimeValue;
        std::size_t all = 0;
        for (const CurveKey& key : keys) all += (key.given & list) != 0;
        bool first = true;
        for (std::size_t i = 0; i < keys.size();) {
            if (!(keys[i].given & list)) {
                ++i;
                continue;
            }
            std::size_t end = i + 1;
            while (end < keys.size() && (keys[end].given & list) && curve.indexOf(end) == curve.indexOf(end - 1) + 1)
                ++end;
            const auto from = static_cast<std::size_t>(curve.indexOf(i)), shift = from - i;
            pieces(a.shortName, "", from, end - i, first ? all : 0, 200, pairs ? 2 : 1,
                   [&](std::size_t index, std::size_t k) {
                       const CurveKey& key = keys[index - shift];
                       if (pairs)
                           number(*a.children[k], k == 0 ? key.time : key.value);
                       else
                           number(a, curveNumber(key, list));
                   });
            first = false;
            i = end;
        }
        if (Cell* cell = node.existingCell(a)) listStates(*cell);
    }
}

void AttributeWriter::mesh(Node& node) {
    MeshBehavior& b = *meshBehavior(node);
    b.settle();
    const double scale = units_.factor(AttributeType::Distance);
    const auto whole = [&](const std::string& list, const char* type, std::size_t count, std::size_t most,
                           std::size_t width, auto put) { pieces(list, type, 0, count, count, most, width, put); };
    if (b.own) {
        const mesh::PolyMesh& m = *b.own;
        const bool hasSets = hasUvSets(&m);
        for (int set = 0; hasSets && set < m.numUvSets(); ++set) {
            const mesh::UvSet& uvs = m.uvSet(set);
            const std::string list = "uvst[" + std::to_string(set) + "]";
            out_ += "\tsetAttr \"." + list + ".uvsn\" -type \"string\" " + quotedText(uvs.name) + ";\n";
            whole(list + ".uvsp", " -type \"float2\"", uvs.u.size(), 250, 2,
                  [&](std::size_t i, std::size_t k) { appendNumber(out_, k == 0 ? uvs.u[i] : uvs.v[i]); });
        }
        if (hasSets)
            out_ += "\tsetAttr \".cuvs\" -type \"string\" " + quotedText(m.uvSet(m.currentUvSet()).name) + ";\n";
        whole("vt", "", m.points().size(), 166, 3, [&](std::size_t i, std::size_t k) {
            const mesh::Float3& p = m.points()[i];
            appendScaled(out_, k == 0 ? p.x : k == 1 ? p.y : p.z, scale);
        });
        const std::vector<int> edges = mesh::fileEdges(m);
        whole("ed", "", edges.size() / 3, 166, 3,
              [&](std::size_t i, std::size_t k) { appendNumber(out_, static_cast<std::int64_t>(edges[3 * i + k])); });
        const auto normals = m.explicitNormals();
        whole("n", " -type \"float3\"", normals.size(), 166, 3, [&](std::size_t i, std::size_t k) {
            appendNumber(out_, k == 0 ? normals[i].x : k == 1 ? normals[i].y : normals[i].z);
        });
        for (int first = 0; first < m.numPolygons(); first += 500) {
            const int last = std::min(first + 500, m.numPolygons()) - 1;
            out_ += "\tsetAttr";
            if (first == 0)
                out_ += " -s " + std::to_string(m.numPolygons()) + " -ch " + std::to_string(m.numFaceVertices());
            out_ += " \".fc[" + std::to_string(first);
            if (last > first) out_ += ":" + std::to_string(last);
            out_ += "]\" -type \"polyFaces\"\n";
            for (int face = first; face <= last; ++face) out_ += mesh::fileFace(m, face, "\t\t");
            out_.back() = ';';
            out_ += '\n';
        }
    }
    for (const auto& [vertex, offset] : b.tweaks) {
        out_ += "\tsetAttr \".pt[" + std::to_string(vertex) + "]\" -type \"float3\"";
        for (const float v : {offset.x, offset.y, offset.z}) {
            out_ += ' ';
            appendScaled(out_, v, scale);
        }
        out_ += ";\n";
    }
}

void AttributeWriter::write(Node& node) {
    for (const AttributePtr& a : node.dynamicAttributes()) define(*a);
    const MeshBehavior* isMesh = meshBehavior(node);
    if (isMesh) mesh(node);
    const bool isCurve = curveKeys(node);
    for (Cell* c : node.cells()) {
        if (isCurve && curveList(c->attribute.longName)) continue;
        const std::string& name = c->attribute.longName;
        if (isMesh && name == "currentUVSet" && hasUvSets(isMesh->own.get())) continue; // the mesh knows it
        cell(*c);
    }
    if (isCurve) curve(node);
    if (!node.aliases.empty()) {
        out_ += "\tsetAttr \".aal\" -type \"attributeAlias\" {";
        for (const auto& [alias, path] : node.aliases) {
            if (&alias != &node.aliases.front().first) out_ += ',';
            out_ += quotedText(alias) + "," + quotedText(path);
        }
        out_ += "} ;\n";
    }
    constexpr double firstFrame = 250;
    if (node.type.name == "time" && node.isDefault && node.scene.time() != firstFrame) {
        out_ += "\tsetAttr \".o\" ";
        appendQuotient(out_, node.scene.time(), units_.factor(AttributeType::Time));
        out_ += ";\n";
    }
}

} // namespace host::files
