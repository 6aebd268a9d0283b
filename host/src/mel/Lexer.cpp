#include "mel/Lexer.h"

#include "base/Letters.h"
#include "mel/Command.h"
#include "mel/Numbers.h"

#include <array>

namespace host::mel {
namespace {

/// What may stand in a command's bare word besides letters, digits and brackets.
bool isWordPart(char c) { return isNamePart(c) || c == '.' || c == ':' || c == '|' || c == '*' || c == '?'; }

Value numberValue(const NumberPrefix& number) {
    return number.whole ? Value(static_cast<int>(number.value)) : Value(number.value);
}

} // namespace

bool isNameStart(char c) { return isLetter(c) || c == '_'; }
bool isNamePart(char c) { return isNameStart(c) || isDigit(c); }

Position Lexer::skipSpace(Position p) const {
    for (;;) {
        const char c = at(p.at);
        if (c == '\n') ++p.line;
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v') {
            ++p.at;
        } else if (c == '/' && at(p.at + 1) == '/') {
            while (!atEnd(p.at) && text_[p.at] != '\n') ++p.at;
        } else if (c == '/' && at(p.at + 1) == '*') {
            const std::size_t close = text_.find("*/", p.at + 2);
            if (close == std::string_view::npos) throw Error("Syntax error: unterminated comment", {}, p.line);
            for (; p.at < close + 2; ++p.at) p.line += text_[p.at] == '\n';
        } else
            return p;
    }
}

Token Lexer::text(Position from) const {
    Token token{Token::Kind::Text, {}, {}, from.line, from.at, from.at};
    std::string out;
    for (std::size_t i = from.at + 1;; ++i) {
        if (atEnd(i) || text_[i] == '\n') throw Error("Syntax error: unterminated string", {}, from.line);
        char c = text_[i];
        if (c == '"') {
            token.end = i + 1;
            token.spelling = text_.substr(from.at, token.end - from.at);
            token.value = std::move(out);
            return token;
        }
        if (c == '\\' && !atEnd(i + 1)) {
            c = text_[++i];
            if (c == '\r' && at(i + 1) == '\n') c = text_[++i];
            if (c == '\n') continue; // a line goes on behind a backslash
            if (c == 'n')
                c = '\n';
            else if (c == 't')
                c = '\t';
            else if (c == 'r')
                c = '\r';
        }
        out += c;
    }
}

Token Lexer::token(Position from) const {
    from = skipSpace(from);
    Token token{Token::Kind::End, {}, {}, from.line, from.at, from.at};
    if (atEnd(from.at)) return token;
    auto finish = [&](Token::Kind kind, std::size_t end) {
        token.kind = kind;
        token.end = end;
        token.spelling = text_.substr(from.at, end - from.at);
    };
    const char c = text_[from.at];
    std::size_t i = from.at + 1;
    if (c == '"') return text(from);
    if (isNameStart(c) || (c == '$' && isNameStart(at(i)))) {
        while (isNamePart(at(i))) ++i;
        finish(c == '$' ? Token::Kind::Variable : Token::Kind::Identifier, i);
        if (c == '$') token.spelling.remove_prefix(1);
        return token;
    }
    if (isDigit(c) || (c == '.' && isDigit(at(i)))) {
        auto number = numberPrefix(text_.substr(from.at));
        finish(number ? Token::Kind::Number : Token::Kind::Invalid, from.at + (number ? number->length : 1));
        if (number) token.value = numberValue(*number);
        return token;
    }
    static constexpr std::array<std::string_view, 16> pairs = {"<<", ">>", "==", "!=", "<=", ">=", "&&", "||",
                                                               "+=", "-=", "*=", "/=", "%=", "^=", "++", "--"};
    for (std::string_view pair : pairs)
        if (text_.substr(from.at, 2) == pair) {
            finish(Token::Kind::Operator, from.at + 2);
            return token;
        }
    const bool known = std::string_view("+-*/%^!<>=?:;,.(){}[]`").find(c) != std::string_view::npos;
    finish(known ? Token::Kind::Operator : Token::Kind::Invalid, i);
    return token;
}

Token Lexer::word(Position from) const {
    Token token{Token::Kind::Text, {}, {}, from.line, from.at, from.at};
    std::size_t i = from.at;
    if (at(i) == '-') ++i;
    for (;; ++i) {
        const char c = at(i);
        if (c == '[') { // an index or a range of indices belongs to the word
            std::size_t close = i + 1;
            while (isDigit(at(close)) || at(close) == ':' || at(close) == '*' || at(close) == '-' || at(close) == ' ')
                ++close;
            if (at(close) != ']') break;
            i = close;
        } else if (c == '-' && at(i + 1) == '>')
            ++i;
        else if ((c == '-' || c == '+') && i > from.at && (at(i - 1) == 'e' || at(i - 1) == 'E')) {
            // The exponent's sign belongs to the word only in a number such as 1.5e-05.
            auto number = numberPrefix(text_.substr(from.at));
            if (!number || from.at + number->length <= i) break;
        } else if (!isWordPart(c))
            break;
    }
    token.end = i;
    token.spelling = text_.substr(from.at, i - from.at);
    auto number = numberPrefix(token.spelling);
    if (number && number->length == token.spelling.size()) {
        token.kind = Token::Kind::Number;
        token.value = numberValue(*number);
    } else if (token.spelling.empty() || token.spelling == "-")
        token.kind = Token::Kind::Invalid;
    else
        token.value = token.spelling;
    return token;
}

} // namespace host::mel
