#include "mel/AttributeProgram.h"

#include "base/NumberText.h"
#include "mel/Execution.h"
#include "mel/Lexer.h"
#include "mel/Numbers.h"
#include "mel/Parser.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace host::mel {
namespace {

/// Steps that one run may take; fewer when several programs have used them up, so that a scene full of endless loops
/// opens all the same.
constexpr std::int64_t kSteps = 100'000, kStepsAfterRunaways = 1'000;
constexpr int kRunaways = 20;

bool isPathPart(char c) { return isNamePart(c) || c == ':'; }

/// Cuts a text into what stands for attributes and what does not.
class WordScanner {
public:
    WordScanner(std::string_view text, AttributeWords& found) : text_(text), lexer_(text), found_(found) {}

    void scan() {
        Position at{0, 1};
        while (at = lexer_.skipSpace(at), at.at < text_.size()) {
            if (const std::size_t end = attributeAt(at.at)) {
                note(at, end);
                at.at = end;
                continue;
            }
            const Token token = lexer_.token(at);
            if ((token.isWord("time") || token.isWord("frame")) && last_ != '.' && next(token.end).spelling != "(")
                found_.clocks.push_back({token.begin, token.end, token.line, true, false, false});
            if (token.kind == Token::Kind::Variable) found_.variables.insert(std::string(token.spelling));
            if (token.is(";") || token.is("{") || token.is("}")) settle();
            last_ = token.spelling.empty() ? ' ' : token.spelling.back();
            // There a dot may begin a component, as in $v.x.
            afterOperand_ = token.kind == Token::Kind::Variable || token.is("]") || token.is(")");
            at = {std::max(token.end, at.at + 1), token.line};
            for (const char c : token.spelling) at.line += c == '\n';
        }
        settle();
    }

private:
    Token next(std::size_t from) const { return lexer_.token(lexer_.skipSpace({from, 1})); }
    char at(std::size_t i) const { return i < text_.size() ? text_[i] : '\0'; }

    /// Where a node's path ends that begins here; `from` itself when none does.
    std::size_t pathEnd(std::size_t from) const {
        std::size_t i = from;
        for (;;) {
            if (at(i) == '|' && at(i + 1) != '|' && (isNameStart(at(i + 1)) || at(i + 1) == ':')) ++i;
            const std::size_t start = i;
            while (isPathPart(at(i))) ++i;
            if (i == start) return from;
            if (at(i) != '|' || at(i + 1) == '|') return i;
        }
    }

    /// Where the attribute's name ends that begins with the dot here; 0 when none does.
    std::size_t nameEnd(std::size_t dot) const {
        std::size_t i = dot;
        while (at(i) == '.' && isNameStart(at(i + 1))) {
            for (++i; isNamePart(at(i)); ++i) {}
            while (at(i) == '[') {
                std::size_t close = i + 1;
                while (at(close) >= '0' && at(close) <= '9') ++close;
                if (close == i + 1 || at(close) != ']') return i;
                i = close + 1;
            }
        }
        return i == dot ? 0 : i;
    }

    std::size_t attributeAt(std::size_t from) {
        if (at(from) == '.') {
            const bool component = at(from + 1) >= 'x' && at(from + 1) <= 'z' && !isNamePart(at(from + 2));
            return afterOperand_ && component ? 0 : nameEnd(from);
        }
        if (!isNameStart(at(from)) && at(from) != '|' && !(at(from) == ':' && beginsOperand())) return 0;
        // The words of the clock stand alone: in "a ? time:b.tx" the colon is the condition's.
        for (const std::string_view word : {"time:", "frame:"})
            if (text_.substr(from).starts_with(word)) return 0;
        if (from < noPathBefore_) return 0;
        const std::size_t path = pathEnd(from);
        if (path > from && at(path) == '.') return nameEnd(path);
        noPathBefore_ = path; // nor does one begin in its midst
        return 0;
    }

    bool beginsOperand() const { return std::string_view(" =(+-*/%<>,;{}&!").find(last_) != std::string_view::npos; }

    void note(Position begin, std::size_t end) {
        AttributeWord word{begin.at, end, begin.line};
        const Token op = next(end);
        const bool sets = op.is("=");
        bool both = stepsBefore(begin.at);
        for (const std::string_view compound : {"+=", "-=", "*=", "/=", "%=", "^=", "++", "--"})
            both |= op.is(compound);
        word.assigned = sets || both;
        word.read = !sets;
        const std::string name(text_.substr(begin.at, end - begin.at));
        word.readFirst = word.read && !assigned_.contains(name);
        if (word.assigned) pending_.push_back(name);
        found_.attributes.push_back(word);
        last_ = 'a';
        afterOperand_ = true;
    }

    /// Whether ++ or -- stands before.
    bool stepsBefore(std::size_t begin) const {
        const auto before = text_.substr(0, begin).find_last_not_of(" \t\r\n");
        if (before == text_.npos || before == 0) return false;
        const std::string_view two = text_.substr(before - 1, 2);
        return two == "++" || two == "--";
    }

    /// An assignment counts from the end of its statement on.
    void settle() {
        for (std::string& name : pending_) assigned_.insert(std::move(name));
        pending_.clear();
    }

    std::string_view text_;
    Lexer lexer_;
    AttributeWords& found_;
    char last_ = ' ';
    bool afterOperand_ = false;
    std::size_t noPathBefore_ = 0;
    std::vector<std::string> pending_;
    std::set<std::string> assigned_;
};

/// The functions that expressions may call, and no others.
Interpreter& arithmetic() {
    static Interpreter& interpreter = [&]() -> Interpreter& {
        static Interpreter made;
        addMathFunctions(made.impl());
        // What they answer depends on what was asked before.
        for (const char* name : {"rand", "seed", "gauss", "sphrand"}) made.unregisterCommand(name);
        return made;
    }();
    return interpreter;
}

/// "input" of ".I[3]" with its number.
struct Slot {
    bool isOutput;
    int number;
};

std::optional<Slot> slotOf(std::string_view word) {
    if (!word.starts_with(".I[") && !word.starts_with(".O[")) return std::nullopt;
    const bool isOutput = word[1] == 'O';
    word.remove_prefix(3);
    const auto number = takeInt(word);
    constexpr int most = 1 << 20;
    if (!number || word != "]" || *number > most) return std::nullopt;
    return Slot{isOutput, *number};
}

} // namespace

AttributeWords::AttributeWords(std::string_view text) { WordScanner(text, *this).scan(); }

struct AttributeProgram::Impl {
    FileScope scope;
    std::shared_ptr<Script> script;
    std::map<int, Variable*> inputs, outputs;
    Variable *seconds = nullptr, *frame = nullptr;
};

AttributeProgram::~AttributeProgram() = default;

AttributeProgram::AttributeProgram(std::string_view text) : impl_(std::make_unique<Impl>()) {
    const AttributeWords words(text);
    usesTime_ = !words.clocks.empty();
    std::vector<AttributeWord> all = words.attributes;
    all.insert(all.end(), words.clocks.begin(), words.clocks.end());
    std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.begin < b.begin; });

    // Attributes become variables of a name that the text does not have.
    std::string prefix;
    for (int n = 0; prefix.empty(); ++n) {
        const std::string name = "plug" + std::to_string(n) + "_";
        const auto at = words.variables.lower_bound(name);
        if (at == words.variables.end() || !at->starts_with(name)) prefix = name;
    }
    Interpreter::Impl& machine = arithmetic().impl();
    const auto variable = [&](const std::string& name) -> Variable* {
        Variable& v = machine.global(name);
        if (v.type != Value::Type::Float) v.reset(Value::Type::Float, 0, 0);
        return &v;
    };
    std::string script = "{";
    std::size_t done = 0;
    for (const AttributeWord& word : all) {
        const std::string_view spelling = text.substr(word.begin, word.end - word.begin);
        script += text.substr(done, word.begin - done);
        done = word.end;
        std::string name;
        if (spelling == "time" || spelling == "frame") {
            name = prefix + std::string(spelling);
            (spelling == "time" ? impl_->seconds : impl_->frame) = variable(name);
        } else {
            const auto slot = slotOf(spelling);
            if (!slot) throw Error("No attribute matches name: " + std::string(spelling.substr(0, 80)), {}, word.line);
            name = prefix + (slot->isOutput ? "O" : "I") + std::to_string(slot->number);
            (slot->isOutput ? impl_->outputs : impl_->inputs)[slot->number] = variable(name);
            if (!slot->isOutput && word.assigned)
                throw Error("Syntax error: an input cannot be assigned to", {}, word.line);
            readsItself_ |= slot->isOutput && word.readFirst;
        }
        (script += "$").append(name);
    }
    script.append(text.substr(done)).append("\n;}");
    impl_->script = parseScript(script, impl_->scope, [&](std::string_view name) -> const Variable* {
        const auto found = machine.globals.find(std::string(name));
        // Only what stands for an attribute: what other programs use is theirs.
        return found != machine.globals.end() && name.starts_with(prefix) ? found->second.get() : nullptr;
    });
    if (readsItself_) obstacle_ = "it reads what it sets itself: an endless loop";
    for (const std::string& called : impl_->script->calls)
        if (!machine.commands.contains(called)) {
            obstacle_ = "it calls '" + called.substr(0, 80) + "', which is no pure function known here";
            break;
        }
    if (!impl_->script->procedures.empty()) obstacle_ = "it defines procedures";
    if (impl_->script->declaresGlobals) obstacle_ = "it uses global variables";
}

void AttributeProgram::run(const Attributes& attributes) {
    for (auto& [number, variable] : impl_->inputs) variable->value = attributes.input(number);
    for (auto& [number, variable] : impl_->outputs) variable->value = attributes.output(number);
    if (impl_->seconds) impl_->seconds->value = attributes.seconds;
    if (impl_->frame) impl_->frame->value = attributes.frame;
    static int runaways = 0;
    Interpreter& machine = arithmetic();
    machine.setStepLimit(runaways > kRunaways ? kStepsAfterRunaways : kSteps);
    std::vector<Variable> locals(static_cast<std::size_t>(impl_->script->slots));
    Frame frame{machine.impl(), impl_->scope, locals.data(), {}};
    try {
        for (const StatementPointer& statement : impl_->script->statements)
            if (statement->execute(frame) == Flow::Return) break;
    } catch (...) {
        if (machine.impl().stepsLeft + machine.impl().stepsBehind <= 0) ++runaways;
        throw;
    }
    for (const auto& [number, variable] : impl_->outputs) attributes.setOutput(number, variable->value.toFloat());
}

} // namespace host::mel
