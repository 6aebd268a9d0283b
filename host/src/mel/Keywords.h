#pragma once

#include "mel/Lexer.h"

#include <optional>

namespace host::mel {

/// The type a word such as "float" names.
inline std::optional<Value::Type> typeKeyword(const Token& token) {
    if (token.kind != Token::Kind::Identifier) return std::nullopt;
    if (token.spelling == "int") return Value::Type::Int;
    if (token.spelling == "float") return Value::Type::Float;
    if (token.spelling == "string") return Value::Type::String;
    if (token.spelling == "vector") return Value::Type::Vector;
    if (token.spelling == "matrix") return Value::Type::Matrix;
    return std::nullopt;
}

/// The value of on, true, yes, off, false and no.
inline std::optional<int> constantWord(std::string_view word) {
    if (word == "true" || word == "on" || word == "yes") return 1;
    if (word == "false" || word == "off" || word == "no") return 0;
    return std::nullopt;
}

/// Whether a word belongs to the grammar and can name no procedure.
inline bool isReserved(std::string_view word) {
    for (std::string_view w : {"if", "else", "while", "do", "for", "in", "switch", "case", "default", "break",
                               "continue", "return", "proc", "global", "int", "float", "string", "vector", "matrix"})
        if (w == word) return true;
    return false;
}

} // namespace host::mel
