#pragma once

#include "mel/Command.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace host::mel {

/// A word of an expression's text that stands for an attribute: "ball.tx", "|arm|hand.rotateX", "set:fan.speed[2]", or
/// as a saved expression has it ".I[0]" and ".O[1]".
struct AttributeWord {
    std::size_t begin = 0, end = 0; ///< where it stands in the text
    int line = 1;
    bool read = false, assigned = false; ///< by what stands around it; both for += and its like
    bool readFirst = false;              ///< read where nothing before it in the text has assigned it
};

/// What stands for attributes in the text of an expression, in its order, and whether it asks for the time.
struct AttributeWords {
    std::vector<AttributeWord> attributes;
    std::vector<AttributeWord> clocks; ///< the words "time" and "frame"
    std::set<std::string> variables;   ///< names of MEL's variables, without "$"

    /// Throws Error for texts and comments that are never closed.
    explicit AttributeWords(std::string_view text);
};

/// The program of an expression node, in the form that is saved: attributes are ".I[n]" for the n-th input and ".O[n]"
/// for the n-th output.
///
/// It is MEL's arithmetic, and nothing else: variables, conditions, loops, and functions whose answer depends on their
/// arguments alone. It runs in an interpreter of its own that has no other commands, and ends with an Error after a
/// number of steps. What it is not to run is only read.
class AttributeProgram {
public:
    /// Throws Error with the line of a syntax error.
    explicit AttributeProgram(std::string_view text);
    ~AttributeProgram();
    AttributeProgram(const AttributeProgram&) = delete;
    AttributeProgram& operator=(const AttributeProgram&) = delete;

    /// Why it is not to run: "it calls 'setAttr', which is no pure function known here"; empty when it may run.
    const std::string& obstacle() const { return obstacle_; }
    bool usesTime() const { return usesTime_; }
    /// Whether the obstacle is that an output is read before it is set.
    bool readsItself() const { return readsItself_; }

    /// What the program reads and writes.
    struct Attributes {
        std::function<double(int)> input;           ///< the value of the n-th input
        std::function<double(int)> output;          ///< what the n-th output has before
        std::function<void(int, double)> setOutput; ///< takes what it has afterwards
        double seconds = 0, frame = 0;
    };
    /// Throws Error with a line; no output is set then. Not to be called with an obstacle.
    void run(const Attributes& attributes);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
    std::string obstacle_;
    bool usesTime_ = false, readsItself_ = false;
};

} // namespace host::mel
