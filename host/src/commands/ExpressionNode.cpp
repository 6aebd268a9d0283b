#include "commands/ExpressionNode.h"

#include "base/Messages.h"
#include "base/Units.h"
#include "mel/AttributeProgram.h"
#include "scene/Evaluation.h"
#include "scene/Scene.h"

namespace host::mel {

using namespace scene;

namespace {

/// As users give an attribute's numbers to expressions.
double shown(Cell& cell) { return toUi(cell.attribute, cell.number()); }

class ExpressionBehavior final : public NodeBehavior {
public:
    explicit ExpressionBehavior(Node& node) : node_(node) {}

    bool compute(Cell& cell) override {
        Cell& outputs = node_.cell("output");
        if (&cell.attribute != &outputs.attribute) return false;
        prepare(std::get<std::string>(node_.cell("internalExpression").value));
        if (runs()) run();
        setClean(outputs);
        return true;
    }

    bool setInternal(Cell& cell, const scene::Value& value) override {
        if (const auto* text = std::get_if<std::string>(&value);
            text && cell.attribute.longName == "internalExpression")
            prepare(*text);
        return false; // the node holds its text
    }

    /// An output that nothing has set yet holds what its destination had: so an expression that does not run changes
    /// nothing.
    void connectionChanged(Cell& cell, Cell& other, bool asSource, bool made) override {
        if (!asSource || !made || cell.index < 0 || cell.written || !other.attribute.isNumber()) return;
        if (auto* n = std::get_if<Numeric>(&cell.value)) n->set(0, shown(other));
        cell.written = true;
    }

    bool runs() const { return program_ && program_->obstacle().empty() && !failed_; }

private:
    void prepare(const std::string& text) {
        if (known_ && text == *known_) return;
        known_ = text;
        failed_ = false;
        program_.reset();
        try {
            program_ = std::make_unique<AttributeProgram>(text);
            if (!program_->obstacle().empty())
                showWarning("The expression '" + node_.name + "' is kept and not run: " + program_->obstacle() + ".");
        } catch (const Error& e) {
            showError("The expression '" + node_.name + "' is kept and not run: " + e.described());
        }
    }

    void run() {
        Cell &inputs = node_.cell("input"), &outputs = node_.cell("output");
        AttributeProgram::Attributes attributes;
        attributes.input = [&](int n) {
            Cell& input = inputs.element(n);
            evaluate(input);
            return input.number();
        };
        attributes.output = [&](int n) { return outputs.element(n).number(); };
        attributes.setOutput = [&](int n, double v) { std::get<Numeric>(outputs.element(n).value).set(0, v); };
        if (program_->usesTime()) {
            Cell& time = node_.cell("time");
            evaluate(time);
            attributes.seconds = time.number() / ticksPerSecond;
            attributes.frame = time.number() / timeUnit().ticks;
        }
        try {
            program_->run(attributes);
        } catch (const Error& e) {
            failed_ = true;
            showError("The expression '" + node_.name + "' failed and does not run any more: " + e.described());
        }
    }

    Node& node_;
    std::unique_ptr<AttributeProgram> program_;
    std::optional<std::string> known_; ///< the text that was compiled
    bool failed_ = false;
};

} // namespace

std::unique_ptr<NodeBehavior> makeExpressionNode(Node& node) { return std::make_unique<ExpressionBehavior>(node); }

} // namespace host::mel
