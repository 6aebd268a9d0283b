#pragma once

#include "mel/Value.h"

#include <string>
#include <string_view>

namespace host::mel {

struct Token {
    enum class Kind { End, Identifier, Variable, Number, Text, Operator, Invalid };
    Kind kind = Kind::End;
    std::string_view spelling; ///< as written
    Value value;               ///< of a Number or a Text, escapes resolved
    int line = 1;              ///< where it begins, 1-based
    std::size_t begin = 0, end = 0;

    bool is(std::string_view op) const { return kind == Kind::Operator && spelling == op; }
    bool isWord(std::string_view word) const { return kind == Kind::Identifier && spelling == word; }
};

/// A place in a text.
struct Position {
    std::size_t at = 0;
    int line = 1;
};

/// Cuts script text into tokens, on demand: the parser alone knows whether the next characters are an expression or
/// the bare words of a command. Throws Error with a line for texts and comments that are never closed.
class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {}

    /// The next token of an expression, from the place given.
    Token token(Position from) const;
    /// The next word of a command's arguments, from the place given, which is neither white space nor one of the
    /// characters that begin an expression or end the command. A number, when it is one in full; else a Text.
    Token word(Position from) const;
    /// The next place that is neither white space nor comment.
    Position skipSpace(Position from) const;
    char at(std::size_t i) const { return i < text_.size() ? text_[i] : '\0'; }
    bool atEnd(std::size_t i) const { return i >= text_.size(); }

private:
    Token text(Position from) const;
    std::string_view text_;
};

bool isNameStart(char c);
bool isNamePart(char c);

} // namespace host::mel
