#include "files/NumberWords.h"
#include "files/SceneStatements.h"
#include "files/StatementFlags.h"
#include "scene/AttributeKind.h"
#include "scene/Evaluation.h"
#include "scene/MeshNode.h"

#include <optional>

namespace host::files {

using namespace scene;

namespace {

std::string inQuotes(std::string_view word) { return "'" + std::string(word.substr(0, 60)) + "'"; }

/// The words of a statement's values, taken one after the other.
class Values {
public:
    explicit Values(std::span<const Word> words) : words_(words) {}
    std::size_t left() const { return words_.size(); }
    const Word& take() {
        if (words_.empty()) throw SceneError("There are too few values.");
        const Word& word = words_.front();
        words_ = words_.subspan(1);
        return word;
    }
    double number() {
        const Word& word = take();
        const auto value = word.quoted ? std::nullopt : parseNumber(word.text);
        if (!value) throw SceneError(inQuotes(word.text) + " is not a number.");
        return *value;
    }
    /// A count that is not larger than what follows, tuples taken together.
    std::size_t count(std::size_t tuple) {
        const Word& word = take();
        const auto n = parseInteger(word.text);
        if (!n || *n < 0) throw SceneError(inQuotes(word.text) + " is not a count.");
        if (static_cast<std::uint64_t>(*n) > left() / tuple)
            throw SceneError("A list of " + std::to_string(*n) + " elements is announced, with too few values.");
        return static_cast<std::size_t>(*n);
    }

private:
    std::span<const Word> words_;
};

struct Request {
    std::string_view plug, type;
    std::span<const Word> values;
    std::optional<bool> lock, keyable, channelBox;
    bool clamp = false;
    bool single = true; ///< for one cell, which takes all values; else for the elements of a range

    explicit Request(std::span<const Word> words);
};

SceneError tooMany(const Request& r) {
    return SceneError("There are too many values for '" + std::string(r.plug) + "'.");
}

/// How many words a value of the type has; 0 for lists, which take all.
std::size_t fixedLength(std::string_view type) {
    if (type == "string") return 1;
    for (const std::string_view stem : {"short", "long", "float", "double"})
        if (type.size() == stem.size() + 1 && type.starts_with(stem) && type.back() >= '2' && type.back() <= '4')
            return static_cast<std::size_t>(type.back() - '0');
    return 0;
}

Request::Request(std::span<const Word> words) {
    std::size_t first = 0, count = 0;
    bool typed = false;
    for (FlagReader reader(setAttrFlags, words); !reader.atEnd();) {
        // Behind the plug and the type everything is data, such as a text that begins with a dash.
        const std::size_t i = reader.place(), wanted = fixedLength(type);
        const bool data = !plug.empty() && typed && (wanted == 0 || count < wanted);
        if (data || !reader.peek().isFlag()) {
            const Word& word = reader.next();
            if (plug.empty()) {
                plug = word.text;
                continue;
            }
            if (count == 0) first = i;
            if (first + count != i) throw SceneError("setAttr: the values are not in one place.");
            ++count;
            continue;
        }
        const std::string_view f = reader.flag<SceneError>().shortName;
        const auto truth = [&] {
            const std::string_view v = reader.next().text;
            const auto flag = parseBool(v);
            if (!flag)
                throw SceneError("setAttr: flag " + inQuotes(words[i].text) + " needs on or off, not " + inQuotes(v) +
                                 ".");
            return *flag;
        };
        if (f == "typ") {
            type = reader.next().text;
            typed = true;
        } else if (f == "k") {
            keyable = truth();
        } else if (f == "l") {
            lock = truth();
        } else if (f == "cb") {
            channelBox = truth();
        } else if (f == "ca") {
            truth();
        } else if (f == "c") {
            clamp = true;
        } else if (f == "s" || f == "ch") {
            // Only hints: what is there decides.
            reader.next();
        }
    }
    if (plug.empty()) throw SceneError("setAttr: the name of the attribute is missing.");
    values = words.subspan(first, count);
}

/// Whether the numbers of such an attribute can be stored without looking at each of them.
bool isPlain(const Attribute& a) {
    if (a.internal || !a.writable) return false;
    for (const Limits& l : a.limits)
        if (l.min || l.max) return false;
    if (a.children.empty()) return a.isNumber();
    for (const auto& c : a.children)
        if (c->array || !isPlain(*c)) return false;
    return true;
}

/// Sets the numbers of cells in the order of their attributes.
class NumberFiller {
public:
    NumberFiller(const StatementContext& c, const Request& r, Values& values)
        : context_(c), values_(values), policy_(r.clamp ? Scene::LimitPolicy::Clamp : Scene::LimitPolicy::Refuse) {}

    void fill(Cell& cell) {
        const Attribute& a = cell.attribute;
        if (cell.isArray()) throw UnknownHere("The attribute '" + cell.name() + "' is an array; set its elements.");
        if (a.type == AttributeType::Tuple) {
            Numeric n(NumericType::Double, static_cast<int>(a.children.size()));
            for (int k = 0; k < n.count; ++k) n.set(k, number(*a.children[static_cast<std::size_t>(k)]));
            context_.scene.setValue(cell, n, policy_);
        } else if (a.type == AttributeType::Compound) {
            for (std::size_t k = 0; k < a.children.size(); ++k) fill(cell.child(static_cast<int>(k)));
        } else if (a.numeric == NumericType::Int64 && a.type == AttributeType::Numeric) {
            const Word& word = values_.take();
            const auto whole = parseInteger(word.text);
            if (!whole) throw SceneError(inQuotes(word.text) + " is not a whole number.");
            context_.scene.setInt64(cell, *whole);
        } else if (a.isNumber()) {
            context_.scene.setNumber(cell, number(a), policy_);
        } else if (a.type == AttributeType::Generic) {
            context_.scene.setValue(cell, Numeric(NumericType::Double, 1, values_.number()), policy_);
        } else {
            throw SceneError("The attribute '" + cell.name() + "' is not a number: its value needs a type.");
        }
    }

    /// The same for a new element of an array of plain numbers, without telling anyone.
    void store(Cell& cell) {
        const Attribute& a = cell.attribute;
        cell.dirty = false;
        cell.written = true;
        if (auto* n = std::get_if<Numeric>(&cell.value)) {
            if (a.children.empty()) n->set(0, number(a));
            for (std::size_t k = 0; k < a.children.size(); ++k) n->set(static_cast<int>(k), number(*a.children[k]));
        } else {
            for (std::size_t k = 0; k < a.children.size(); ++k) store(cell.child(static_cast<int>(k)));
        }
    }

private:
    double number(const Attribute& a) { return values_.number() * context_.units.factor(a.type); }

    const StatementContext& context_;
    Values& values_;
    Scene::LimitPolicy policy_;
};

DataPtr readArray(DataKind kind, Values& in) {
    auto data = std::make_shared<ArrayData>(kind);
    const auto tuple = static_cast<std::size_t>(data->tupleSize());
    const std::size_t n = in.count(tuple);
    const bool texts = kind == DataKind::StringArray || kind == DataKind::ComponentList;
    for (std::size_t i = 0; i < n * tuple; ++i) {
        if (texts)
            data->texts.emplace_back(in.take().text);
        else
            data->numbers.push_back(in.number());
    }
    return data;
}

void setMatrix(const StatementContext& c, Cell& cell, const Request& r, Values& in) {
    double m[4][4];
    for (auto& row : m)
        for (double& v : row) v = in.number();
    if (r.single && in.left() > 0) throw tooMany(r);
    if (cell.attribute.type == AttributeType::FloatMatrix)
        c.scene.setValue(cell, MFloatMatrix(m));
    else
        c.scene.setValue(cell, MMatrix(m));
}

void setTyped(const StatementContext& c, Cell& cell, const Request& r, Values& in) {
    if (r.type == "string") {
        c.scene.setValue(cell, std::string(in.take().text));
    } else if (const std::size_t n = fixedLength(r.type)) {
        if (cell.attribute.type != AttributeType::Tuple || cell.attribute.children.size() != n)
            throw SceneError("The attribute '" + cell.name() + "' does not hold a " + std::string(r.type) + ".");
        NumberFiller(c, r, in).fill(cell);
    } else if (r.type == "matrix" || r.type == "fltMatrix") {
        if (in.left() > 0 && r.values.front().text == "xform")
            throw UnknownHere("A matrix in the form \"xform\" is not known here.");
        setMatrix(c, cell, r, in);
    } else if (const auto kind = dataTypeNamed(r.type);
               kind && kind->data != DataKind::None && kind->data != DataKind::Mesh) {
        DataPtr data = readArray(kind->data, in);
        if (r.single && in.left() > 0) throw tooMany(r);
        c.scene.setValue(cell, std::move(data));
    } else {
        throw UnknownHere("Data of the type " + inQuotes(r.type) + " is not known here.");
    }
}

void setOne(const StatementContext& c, Cell& cell, const Request& r, Values& in) {
    const Node& node = cell.node;
    if (node.type.name == "time" && cell.attribute.longName == "outTime" && r.type.empty()) {
        c.scene.setTime(in.number() * c.units.factor(AttributeType::Time));
        return;
    }
    if (r.type.empty())
        NumberFiller(c, r, in).fill(cell);
    else
        setTyped(c, cell, r, in);
}

/// How many numbers an attribute takes; 0 where values of another kind are among them.
std::size_t numberCount(const Attribute& a) {
    if (a.children.empty()) return a.isNumber() ? 1 : 0;
    std::size_t count = 0;
    for (const auto& c : a.children) {
        const std::size_t n = c->array ? 0 : numberCount(*c);
        if (n == 0) return 0;
        count += n;
    }
    return count;
}

UnknownHere noAttribute(const Request& r, const Node& node) {
    const bool named = r.plug.front() != '.';
    return UnknownHere("No object matches name: " + (named ? std::string() : node.name) + std::string(r.plug));
}

void setRange(const StatementContext& c, Node& node, const PlugRange& range, const Request& r, Values& in) {
    Cell* array = c.scene.tryPlug(node, range.array);
    if (!array || !array->isArray()) throw noAttribute(r, node);
    const bool quick = r.type.empty() ? array->elements.empty() && !c.scene.undo.recording() && range.rest.empty() &&
                                            isPlain(array->attribute)
                                      : false;
    if (quick) c.scene.requireSettable(*array);
    for (int i = range.first; i <= range.last && in.left() > 0; ++i) {
        Cell* cell = &array->element(i);
        if (quick) {
            NumberFiller(c, r, in).store(*cell);
            continue;
        }
        if (!range.rest.empty()) {
            const std::string path = std::string(range.array) + "[" + std::to_string(i) + "]" + std::string(range.rest);
            cell = c.scene.tryPlug(node, path);
            if (!cell) throw noAttribute(r, node);
        }
        setOne(c, *cell, r, in);
        if (i == range.last) break;
    }
    if (quick) {
        c.scene.modified = true;
        dirtyDependents(*array);
    }
    const auto elements = static_cast<std::size_t>(range.last - range.first) + 1;
    if (!array->elements.contains(range.last))
        throw SceneError("There are too few values for the " + std::to_string(elements) + " elements of '" +
                         std::string(r.plug) + "'.");
}

} // namespace

void setAttrStatement(const StatementContext& c, const Statement& s) {
    Request r(s.words);
    std::string_view path;
    Node& node = c.plugNode(r.plug, path);
    if (!node.unknownType.empty() && !node.dag())
        throw UnknownHere("The node '" + c.scene.displayName(node) + "' is of a type that is not known here.");
    if (r.type == "attributeAlias" && (path == "aal" || path == "aliasList")) {
        std::vector<std::string> texts; // within braces, with commas between them
        for (const Word& word : r.values)
            if (word.quoted) texts.emplace_back(word.text);
        if (texts.size() % 2 != 0) throw SceneError("Aliases come in pairs of a name and an attribute.");
        std::vector<std::pair<std::string, std::string>> aliases;
        for (std::size_t i = 0; i < texts.size(); i += 2) aliases.emplace_back(texts[i], texts[i + 1]);
        c.scene.setAliases(node, std::move(aliases));
        return;
    }
    if (s.kind == Statement::Kind::Braced) throw UnknownHere("Data in braces is not known here.");
    const ListValues list{r.values, s.tail};
    if (setMeshList(c, node, path, r.type, list) || setCurveList(c, node, path, list)) return;
    std::vector<Word> words;
    if (!s.tail.empty()) r = Request(words = s.allWords());

    const PlugRange range(path);
    r.single = !range.isRange;
    Values in(r.values);
    if (range.isRange) {
        if (!r.values.empty())
            setRange(c, node, range, r, in);
        else if (!c.scene.tryPlug(node, range.array, false))
            throw noAttribute(r, node);
    } else {
        Cell* cell = c.scene.tryPlug(node, path);
        if (!cell) throw noAttribute(r, node);
        // Before anything is set: a statement that fails leaves the attribute as it was.
        const std::size_t most = cell->isArray()  ? 0
                                 : r.type.empty() ? numberCount(cell->attribute)
                                                  : fixedLength(r.type);
        if (most > 0 && in.left() > most) throw tooMany(r);
        if (r.lock && !*r.lock) c.scene.setLocked(*cell, false);
        if (!r.values.empty())
            setOne(c, *cell, r, in);
        else if (!r.type.empty())
            throw SceneError("There are too few values.");
        if (r.keyable) c.scene.setKeyable(*cell, *r.keyable);
        if (r.channelBox) c.scene.setChannelBox(*cell, *r.channelBox);
        if (r.lock && *r.lock) c.scene.setLocked(*cell, true);
    }
    if (in.left() > 0) throw tooMany(r);
}

} // namespace host::files
