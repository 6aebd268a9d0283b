#include "base/NumberText.h"
#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "commands/MeshLists.h"

#include "mel/Numbers.h"

#include <algorithm>
#include <climits>

namespace host::mel {

using namespace scene;

namespace {

[[noreturn]] void noValue(Cell& cell) {
    if (cell.attribute.type == AttributeType::Message) throw Error("Message attributes have no data values.");
    throw Error("The data of '" + cell.name() + "' is not a numeric or string value, and cannot be displayed.");
}

bool isWhole(NumericType type) { return type != NumericType::Float && type != NumericType::Double; }

Value numberValue(Cell& cell) {
    int k = 0;
    const Numeric* n = cell.numbers(&k);
    if (!n) noValue(cell);
    if (!isWhole(n->type)) return toUi(cell.attribute, n->get(k));
    const std::int64_t v = n->getInt64(k);
    // MEL's int has 32 bits.
    if (v < INT_MIN || v > INT_MAX) return static_cast<double>(v);
    return static_cast<int>(v);
}

Value tupleValue(Cell& cell) {
    const Numeric* n = cell.numbers();
    if (!n) noValue(cell);
    FloatArray numbers;
    for (int k = 0; k < n->count; ++k)
        numbers.push_back(toUi(*cell.attribute.children[static_cast<std::size_t>(k)], n->get(k)));
    if (!isWhole(n->type)) return numbers;
    IntArray whole;
    for (double v : numbers) whole.push_back(saturatedInt(v));
    return whole;
}

Value dataValue(Cell& cell) {
    const auto* data = std::get_if<DataPtr>(&cell.value);
    const auto* array = data ? dynamic_cast<const ArrayData*>(data->get()) : nullptr;
    switch (cell.attribute.dataKind) {
    case DataKind::StringArray:
    case DataKind::ComponentList: return array ? array->texts : StringArray{};
    case DataKind::IntArray: return array ? Value(FloatArray(array->numbers)).toIntArray() : IntArray{};
    case DataKind::VectorArray: return Value(array ? array->numbers : FloatArray{}).toVectorArray();
    case DataKind::FloatArray:
    case DataKind::DoubleArray:
    case DataKind::PointArray:
    case DataKind::MatrixArray: return array ? array->numbers : FloatArray{};
    default: noValue(cell);
    }
}

Value heldValue(Cell& cell) {
    if (std::get_if<Numeric>(&cell.value)) return numberValue(cell);
    if (auto* text = std::get_if<std::string>(&cell.value)) return *text;
    FloatArray elements;
    if (auto* m = matrixIn(cell.value)) {
        for (unsigned k = 0; k < 16; ++k) elements.push_back((*m)(k / 4, k % 4));
        return elements;
    }
    if (auto* m = floatMatrixIn(cell.value)) {
        for (unsigned k = 0; k < 16; ++k) elements.push_back((*m)(k / 4, k % 4));
        return elements;
    }
    noValue(cell);
}

Value valueOf(Cell& cell, bool asString) {
    evaluate(cell);
    switch (cell.attribute.type) {
    case AttributeType::Tuple: return tupleValue(cell);
    case AttributeType::Data: return dataValue(cell);
    case AttributeType::Enum:
        if (asString) {
            const auto index = static_cast<short>(cell.number());
            return cell.attribute.fieldName(index).value_or(std::to_string(index));
        }
        return numberValue(cell);
    case AttributeType::Message:
    case AttributeType::Compound: noValue(cell);
    default: return cell.attribute.isNumber() ? numberValue(cell) : heldValue(cell);
    }
}

/// Whether somebody set the cell or anything in it, or connected it.
bool inUse(const Cell& cell) {
    return anyCell(cell, [](const Cell& c) { return c.written || c.source || !c.destinations.empty(); });
}

IntArray indicesOf(Cell& array) {
    evaluate(array);
    IntArray indices;
    for (auto& [index, element] : array.elements)
        if (array.node.isComputed(array.attribute) || inUse(*element)) indices.push_back(index);
    return indices;
}

/// The plugs that a name with element ranges stands for: "n.a[0:2].b", "n.a[*]".
std::vector<Cell*> plugsInRange(const std::string& name) {
    const auto open = name.find('[');
    const auto close = open == std::string::npos ? open : name.find(']', open);
    if (close == std::string::npos) return {&plugNamed(name)};
    const std::string inside = name.substr(open + 1, close - open - 1), head = name.substr(0, open),
                      tail = name.substr(close + 1);
    const auto colon = inside.find(':');
    if (inside != "*" && colon == std::string::npos) return {&plugNamed(name)};
    Cell& array = plugNamed(head);
    if (!array.isArray()) throw Error("'" + head + "' is not a multi attribute.");
    int first = 0, last = Scene::maxArrayIndex;
    if (colon != std::string::npos) {
        const auto from = readInt(std::string_view(inside).substr(0, colon));
        const auto to = readInt(std::string_view(inside).substr(colon + 1));
        if (!from || !to || *from < 0 || *to < *from) throw Error("Invalid index range: " + name);
        first = *from;
        last = *to;
        if (last - first >= 1'000'000) throw Error("Index range too large: " + name);
    }
    std::vector<Cell*> found;
    if (inside == "*")
        for (int i : indicesOf(array)) found.push_back(&plugNamed(head + "[" + std::to_string(i) + "]" + tail));
    else
        for (int i = first; i <= last; ++i) found.push_back(&plugNamed(head + "[" + std::to_string(i) + "]" + tail));
    return found;
}

/// Several values as one: numbers side by side, or texts.
Value joined(const std::vector<Value>& values) {
    if (values.size() == 1) return values.front();
    bool texts = false, whole = true;
    for (const Value& v : values) {
        texts |= v.type() == Value::Type::String || v.type() == Value::Type::StringArray;
        whole &= v.type() == Value::Type::Int || v.type() == Value::Type::IntArray;
    }
    StringArray words;
    FloatArray numbers;
    for (const Value& v : values) {
        const auto w = texts ? v.toStringArray() : StringArray{};
        const auto n = texts ? FloatArray{} : v.toFloatArray();
        words.insert(words.end(), w.begin(), w.end());
        numbers.insert(numbers.end(), n.begin(), n.end());
    }
    if (texts) return words;
    return whole ? Value(Value(numbers).toIntArray()) : Value(numbers);
}

bool locked(const Cell& cell) {
    for (const Cell* c = &cell; c; c = c->parent)
        if (c->locked) return true;
    return false;
}

bool settable(Cell& cell) {
    try {
        theScene().requireSettable(cell);
        return true;
    } catch (const SceneError&) {
        return false;
    }
}

/// Holds the scene at another time for a scope, unrecorded.
class AtTime {
public:
    explicit AtTime(double ticks) : before_(theScene().time()), quiet_(theScene().undo) { theScene().setTime(ticks); }
    ~AtTime() { theScene().setTime(before_); }
    AtTime(const AtTime&) = delete;
    AtTime& operator=(const AtTime&) = delete;

private:
    double before_;
    UndoQueue::Suspend quiet_;
};

Value getAttr(Call& call) {
    const ParsedArguments args(call, {{"as", "asString"},
                                      {"ca", "caching"},
                                      {"cb", "channelBox"},
                                      {"x", "expandEnvironmentVariables"},
                                      {"k", "keyable"},
                                      {"l", "lock"},
                                      {"mi", "multiIndices"},
                                      {"se", "settable"},
                                      {"sl", "silent"},
                                      {"s", "size"},
                                      {"t", "time", 1},
                                      {"typ", "type"}});
    const StringArray names = args.names();
    if (names.empty()) throw Error("No attribute was specified.");
    std::optional<AtTime> held;
    if (args.has("t")) held.emplace(args.number("t", 0) * timeTicks());
    std::vector<Value> values;
    std::vector<Cell*> cells;
    for (const std::string& name : names)
        if (auto list = meshListValue(name, args))
            values.push_back(std::move(*list));
        else
            for (Cell* cell : plugsInRange(name)) cells.push_back(cell);

    for (Cell* cell : cells) {
        if (cell->isArray() && cell->attribute.worldSpace && !args.has("s") && !args.has("mi"))
            cell = &cell->element(0);
        const Attribute& a = cell->attribute;
        if (args.has("typ"))
            values.emplace_back(cell->isArray() ? "TdataCompound" : a.typeName());
        else if (args.has("l"))
            values.emplace_back(locked(*cell));
        else if (args.has("k"))
            values.emplace_back(cell->keyable.value_or(a.keyable));
        else if (args.has("cb"))
            values.emplace_back(cell->channelBox.value_or(a.channelBox));
        else if (args.has("ca"))
            values.emplace_back(a.cached);
        else if (args.has("se"))
            values.emplace_back(settable(*cell));
        else if (args.has("mi"))
            values.emplace_back(cell->isArray() ? indicesOf(*cell) : IntArray{});
        else if (args.has("s"))
            values.emplace_back(cell->isArray() ? static_cast<int>(indicesOf(*cell).size()) : 1);
        else if (cell->isArray()) {
            std::vector<Value> elements;
            for (int i : indicesOf(*cell)) elements.push_back(valueOf(cell->element(i), args.has("as")));
            values.push_back(joined(elements));
        } else
            values.push_back(valueOf(*cell, args.has("as")));
    }
    return joined(values);
}

struct NodeAndAttribute {
    Node& node;
    const Attribute& attribute;
};

NodeAndAttribute userAttribute(const std::string& name) {
    Cell& cell = plugNamed(name);
    if (!cell.attribute.dynamic && !cell.attribute.root().dynamic)
        throw Error("'" + name + "' was not added by a user: it cannot be deleted or renamed.");
    return {cell.node, cell.attribute};
}

Value deleteAttr(Call& call) {
    const ParsedArguments args(call, {{"at", "attribute", 1}});
    StringArray names = args.names();
    if (args.has("at"))
        for (auto& name : names) name += "." + args.text("at");
    if (names.empty()) throw Error("No attribute was specified.");
    for (const std::string& name : names) {
        const auto [node, attribute] = userAttribute(name);
        if (attribute.parent) throw Error("'" + name + "' is a child of a compound: delete the compound.");
        if (Cell* cell = node.existingCell(attribute); cell && cell->locked)
            throw Error("The attribute '" + name + "' is locked and cannot be deleted.");
        theScene().deleteAttribute(node, attribute);
    }
    return {};
}

Value renameAttr(Call& call) {
    const ParsedArguments args(call, {});
    const StringArray names = args.names();
    if (names.size() != 2) throw Error("renameAttr needs an attribute and its new name.");
    const auto [node, attribute] = userAttribute(names[0]);
    theScene().renameAttribute(node, attribute, names[1]);
    return names[1];
}

} // namespace

void registerAttributeCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "getAttr", getAttr);
    registerSceneCommand(interpreter, "deleteAttr", deleteAttr);
    registerSceneCommand(interpreter, "renameAttr", renameAttr);
}

} // namespace host::mel
