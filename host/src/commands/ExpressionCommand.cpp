#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "commands/ExpressionNode.h"

#include "mel/AttributeProgram.h"

#include <algorithm>

namespace host::mel {

using namespace scene;

namespace {

/// A text as the user wrote it, with what its words stand for.
struct Bound {
    std::string text; ///< as it is saved: ".I[0]" and ".O[0]"
    std::vector<Cell*> inputs, outputs;
    bool usesTime = false;
};

Cell& attributeOf(const std::string& word, const std::string& object, int line) {
    const std::string name = word.starts_with('.') ? object + word : word;
    Cell* cell = name.starts_with('.') ? nullptr : findPlug(name);
    if (!cell) throw Error("No attribute matches name: " + word, {}, line);
    if (cell->isArray() || !cell->attribute.isNumber())
        throw Error("The attribute '" + word + "' is not a number, and cannot be used in an expression.", {}, line);
    return *cell;
}

std::size_t placeIn(std::vector<Cell*>& list, Cell& cell) {
    const auto at = std::find(list.begin(), list.end(), &cell);
    if (at == list.end()) {
        list.push_back(&cell);
        return list.size() - 1;
    }
    return static_cast<std::size_t>(at - list.begin());
}

Bound boundText(const std::string& text, const std::string& object) {
    const AttributeWords words(text);
    Bound bound;
    bound.usesTime = !words.clocks.empty();
    std::vector<Cell*> cells;
    for (const AttributeWord& word : words.attributes) {
        cells.push_back(&attributeOf(text.substr(word.begin, word.end - word.begin), object, word.line));
        if (word.assigned) placeIn(bound.outputs, *cells.back());
    }
    std::size_t done = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const AttributeWord& word = words.attributes[i];
        bound.text.append(text, done, word.begin - done);
        done = word.end;
        const bool output = std::find(bound.outputs.begin(), bound.outputs.end(), cells[i]) != bound.outputs.end();
        const std::size_t place = placeIn(output ? bound.outputs : bound.inputs, *cells[i]);
        bound.text += (output ? ".O[" : ".I[") + std::to_string(place) + "]";
    }
    bound.text.append(text, done);
    return bound;
}

/// Undoes what was recorded within a scope that ends by an exception.
class Attempt {
public:
    explicit Attempt(UndoQueue& queue) : queue_(queue), capture_(std::in_place, queue, edits_) {}
    void succeed() {
        capture_.reset();
        if (queue_.recording())
            for (Edit& edit : edits_) queue_.record(std::move(edit));
        edits_.clear();
    }
    ~Attempt() {
        capture_.reset();
        const UndoQueue::Suspend quiet(queue_);
        for (auto edit = edits_.rbegin(); edit != edits_.rend(); ++edit) edit->undo();
    }
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

private:
    UndoQueue& queue_;
    std::vector<Edit> edits_;
    std::optional<UndoQueue::Capture> capture_;
};

/// Whether what the node sets has an influence on what it reads. A change of the outputs is followed to the inputs.
Cell* loopingInput(Node& node) {
    auto& inputs = node.cell("input").elements;
    for (auto& [index, input] : inputs) setClean(*input);
    dirtyDependents(node.cell("output"));
    Cell* found = nullptr;
    for (auto& [index, input] : inputs) {
        if (input->dirty && !found) found = input.get();
        dirtyWithDependents(*input);
    }
    return found;
}

void disconnectAll(Node& node) {
    Scene& scene = theScene();
    for (auto& [index, input] : node.cell("input").elements)
        if (input->source) scene.disconnect(*input->source, *input);
    for (auto& [index, output] : node.cell("output").elements) {
        while (!output->destinations.empty()) scene.disconnect(*output, *output->destinations.back());
        output->written = false;
    }
    Cell& time = node.cell("time");
    if (time.source) scene.disconnect(*time.source, time);
}

void give(Node& node, const Bound& bound) {
    Scene& scene = theScene();
    int index = 0;
    for (Cell* cell : bound.inputs) scene.connect(*cell, node.cell("input").element(index++));
    index = 0;
    for (Cell* cell : bound.outputs) scene.connect(node.cell("output").element(index++), *cell);
    if (bound.usesTime) scene.connect(scene.findNode("time1")->cell("outTime"), node.cell("time"));
    scene.setValue(node.cell("internalExpression"), bound.text);
    if (const Cell* input = loopingInput(node))
        throw Error("The expression reads '" + input->source->name() +
                    "', which depends on what it sets: an endless loop of attributes.");
}

/// The text with the names that its attributes have now.
std::string shownText(Node& node) {
    const std::string text = std::get<std::string>(node.cell("internalExpression").value);
    const auto named = [&](const std::string& word) -> std::string {
        Cell* cell = theScene().tryPlug(node, (word[1] == 'I' ? "input" : "output") + word.substr(2), false);
        const bool isOutput = word[1] == 'O';
        for (int most = 0; cell && most < 100; ++most) {
            Cell* other = !isOutput ? cell->source : cell->destinations.empty() ? nullptr : cell->destinations.front();
            if (!other) break;
            if (!other->node.type.name.ends_with("Conversion")) return other->name();
            cell = &other->node.cell(isOutput ? "output" : "input");
        }
        return word;
    };
    std::string shown;
    std::size_t done = 0;
    for (const AttributeWord& word : AttributeWords(text).attributes) {
        const std::string spelling = text.substr(word.begin, word.end - word.begin);
        shown.append(text, done, word.begin - done);
        shown += spelling.starts_with(".I[") || spelling.starts_with(".O[") ? named(spelling) : spelling;
        done = word.end;
    }
    return shown.append(text, done);
}

Value expression(Call& call) {
    const ParsedArguments args(call,
                               {{"s", "string", 1},
                                {"n", "name", 1},
                                {"o", "object", 1},
                                {"ae", "alwaysEvaluate", 1},
                                {"an", "animated", 1},
                                {"td", "timeDependent", 1},
                                {"uc", "unitConversion", 1},
                                {"sn", "shortNames"}},
                               true);
    Node* node = nullptr;
    if (args.query() || args.edit()) {
        const StringArray names = args.names();
        node = names.size() == 1 ? &nodeNamed(names.front()) : nullptr;
        if (!node || node->type.name != "expression") throw Error("expression needs the name of one expression.");
    }
    if (args.query()) {
        if (args.has("s")) return shownText(*node);
        if (args.has("n")) return node->name;
        if (args.has("o")) return "";
        if (args.has("an") || args.has("ae")) return static_cast<int>(node->cell("animated").number());
        throw Error("expression was not told what to query.");
    }
    if (!node && !args.has("s")) throw Error("expression needs its text.");
    Attempt attempt(theScene().undo);
    if (!node) node = theScene().createNode(*theScene().findType("expression"), args.text("n", "expression#")).get();
    if (args.edit() && args.has("n")) theScene().rename(*node, args.text("n"));
    if (args.has("s")) {
        const std::string text = args.text("s");
        if (args.edit()) disconnectAll(*node);
        const Bound bound = boundText(text, args.text("o"));
        const AttributeProgram program(bound.text); // what cannot be read is not made
        if (program.readsItself())
            throw Error("The expression cannot be made: " + program.obstacle() + " of attributes.");
        for (Cell* output : bound.outputs) theScene().requireFree(*output);
        give(*node, bound);
    }
    if (args.has("an")) theScene().setNumber(node->cell("animated"), args.integer("an", 1));
    attempt.succeed();
    return node->name;
}

} // namespace

void registerExpressionCommands(Interpreter& interpreter) {
    theScene().findType("expression")->makeBehavior = makeExpressionNode;
    registerSceneCommand(interpreter, "expression", expression);
}

} // namespace host::mel
