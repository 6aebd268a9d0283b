#include "files/Statement.h"

#include "base/Letters.h"

#include <algorithm>
#include <array>

namespace host::files {
namespace {

bool isNameStart(char c) { return isLetter(c) || c == '_'; }
bool isNamePart(char c) { return isNameStart(c) || isDigit(c) || c == ':'; }

/// Characters that end an unquoted word.
constexpr auto wordEnds = [] {
    std::array<bool, 256> ends{};
    for (const char c : {' ', '\t', '\n', '\r', '\v', '\f', ';', '"', '(', ')', '{', '}', '`', '$', ','})
        ends[static_cast<unsigned char>(c)] = true;
    return ends;
}();

/// Characters that lists of numbers and of faces are made of.
constexpr auto listParts = [] {
    std::array<bool, 256> parts{};
    for (const char c : {' ', '\t', '\n', '\r', '+', '-', '.', 'e', 'E', 'f', 'h', 'm', 'u', 'c'})
        parts[static_cast<unsigned char>(c)] = true;
    for (char c = '0'; c <= '9'; ++c) parts[static_cast<unsigned char>(c)] = true;
    return parts;
}();

/// Shorter ones are taken apart at once.
constexpr std::size_t shortestList = 64;

bool startsBlock(std::string_view word) {
    constexpr std::string_view words[] = {"proc", "global", "if", "else", "for", "while", "do", "switch", "{", "}"};
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

} // namespace

bool Word::isFlag() const {
    return !quoted && text.size() > 1 && text[0] == '-' && isNameStart(text[1]) && text != "-inf" && text != "-nan";
}

void Statement::clear() {
    name = raw = tail = {};
    words.clear();
    texts.clear();
    kind = Kind::Plain;
}

void Statement::add(std::string text, bool quoted) {
    texts.push_back(std::move(text));
    words.push_back({texts.back(), quoted});
}

std::vector<Word> Statement::allWords() const {
    std::vector<Word> all = words;
    for (std::size_t at = 0; at < tail.size();) {
        std::size_t end = at;
        while (end < tail.size() && !isBlank(tail[end])) ++end;
        if (end > at) all.push_back({tail.substr(at, end - at), false});
        at = end + 1;
    }
    return all;
}

std::string Statement::kept() const {
    std::string text(raw);
    std::erase(text, '\r');
    return text;
}

StatementScanner::StatementScanner(std::string_view text, std::span<const RawList> lists) : text_(text), known_(lists) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text_.starts_with(mark)) text_.remove_prefix(mark.size());
    if (text_.starts_with("//")) header_ = text_.substr(2, text_.find_first_of("\r\n") - 2);
}

/// Goes to the next character that is neither white space nor comment; false at the end of the text.
bool StatementScanner::skipSpace(bool mayEnd) {
    while (at_ < text_.size()) {
        const char c = text_[at_];
        if (c == '\n') ++line_;
        if (isBlank(c)) {
            ++at_;
        } else if (c == '/' && peek(1) == '/') {
            at_ = std::min(text_.find('\n', at_), text_.size());
        } else if (c == '/' && peek(1) == '*') {
            const std::size_t end = text_.find("*/", at_ + 2);
            if (end == text_.npos) throw SyntaxError("the comment is not closed", line_);
            line_ += static_cast<int>(std::count(text_.begin() + static_cast<std::ptrdiff_t>(at_),
                                                 text_.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
            at_ = end + 2;
        } else {
            return true;
        }
    }
    if (!mayEnd) throw SyntaxError("the file ends within a statement: the \";\" is missing", line_);
    return false;
}

/// Takes a quoted text; it points into the file unless it has escapes.
std::string_view StatementScanner::quotedText(Statement& statement) {
    const int start = line_;
    const std::size_t first = ++at_;
    std::string* own = nullptr;
    std::size_t done = first;
    while (true) {
        while (at_ < text_.size() && text_[at_] != '"' && text_[at_] != '\\' && text_[at_] != '\n') ++at_;
        if (at_ >= text_.size() || text_[at_] == '\n') throw SyntaxError("the quoted text is not closed", start);
        if (text_[at_] == '"') break;
        if (at_ + 1 >= text_.size()) throw SyntaxError("the quoted text is not closed", start);
        if (!own) own = &statement.texts.emplace_back();
        own->append(text_.substr(done, at_ - done));
        const char c = text_[at_ + 1];
        at_ += 2;
        switch (c) {
        case 'n': *own += '\n'; break;
        case 't': *own += '\t'; break;
        case 'r': *own += '\r'; break;
        case '\r':
            if (peek() == '\n') ++at_, ++line_;
            break;
        case '\n': ++line_; break;
        default: *own += c;
        }
        done = at_;
    }
    std::string_view text = text_.substr(first, at_ - first);
    if (own) {
        own->append(text_.substr(done, at_ - done));
        text = *own;
    }
    ++at_;
    return text;
}

/// ("..." + "..."): long texts are written as a sum. False when the parenthesis holds anything else.
bool StatementScanner::readConcatenation(Statement& statement) {
    ++at_;
    std::string sum;
    while (true) {
        skipSpace(false);
        if (peek() != '"') return false;
        sum += quotedText(statement);
        skipSpace(false);
        const char c = peek();
        if (c != '+' && c != ')') return false;
        ++at_;
        if (c == ')') break;
    }
    statement.add(std::move(sum), true);
    return true;
}

void StatementScanner::skipQuoted() {
    const int start = line_;
    for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_) {
        if (text_[at_] == '\\')
            ++at_;
        else if (text_[at_] == '\n')
            break;
        if (peek() == '\n') ++line_;
    }
    if (peek() != '"') throw SyntaxError("the quoted text is not closed", start);
    ++at_;
}

/// Goes behind a statement that is more than words: behind its semicolon, or behind the block of a control
/// statement or procedure.
void StatementScanner::skipScript(const Statement& statement, bool block) {
    int depth = 0;
    bool command = false;
    while (true) {
        if (!skipSpace(true))
            throw SyntaxError("the file ends within '" + std::string(statement.name) + "'", statement.line);
        const char c = text_[at_];
        if (c == '"') {
            skipQuoted();
            continue;
        }
        ++at_;
        if (c == '`')
            command = !command;
        else if (c == '(' || c == '{' || c == '[')
            ++depth;
        else if (c == ')' || c == '}' || c == ']')
            depth = std::max(depth - 1, 0);
        if (depth > 0 || command) continue;
        if (c == ';' || (block && c == '}')) return;
    }
}

/// Takes the values up to the semicolon as they are; false when there is more to them, or they are few.
bool StatementScanner::readTail(Statement& s) {
    RawList list{at_, at_, 0};
    while (!known_.empty() && known_.front().first < at_) known_ = known_.subspan(1);
    if (!known_.empty() && known_.front().first == at_) {
        list = known_.front();
    } else {
        while (list.last < text_.size() && listParts[static_cast<unsigned char>(text_[list.last])]) ++list.last;
        if (list.last >= text_.size() || text_[list.last] != ';' || list.last - at_ < shortestList) return false;
        const auto in = text_.substr(at_, list.last - at_);
        list.lineEnds = static_cast<int>(std::count(in.begin(), in.end(), '\n'));
    }
    s.tail = text_.substr(list.first, list.last - list.first);
    at_ = list.last;
    line_ += list.lineEnds;
    met_.push_back(list);
    return true;
}

bool StatementScanner::next(Statement& s) {
    s.clear();
    while (skipSpace(true) && peek() == ';') ++at_;
    if (at_ >= text_.size()) return false;
    const std::size_t start = at_;
    s.line = line_;
    const auto finish = [&](Statement::Kind kind) {
        s.kind = kind;
        s.raw = text_.substr(start, at_ - start);
        return true;
    };
    const auto script = [&] {
        at_ = start;
        line_ = s.line;
        s.words.clear();
        s.tail = {};
        skipScript(s, startsBlock(s.name));
        return finish(Statement::Kind::Script);
    };
    while (isNamePart(peek())) ++at_;
    if (at_ == start) ++at_;
    s.name = text_.substr(start, at_ - start);
    if (!isNameStart(s.name.front()) || startsBlock(s.name)) return script();

    bool braces = false, list = s.name == "setAttr";
    int depth = 0;
    while (true) {
        skipSpace(false);
        const char c = peek();
        if (c == '"') {
            const std::string_view text = quotedText(s);
            s.words.push_back({text, true});
        } else if (c == ';' && depth == 0) {
            ++at_;
            return finish(braces ? Statement::Kind::Braced : Statement::Kind::Plain);
        } else if (c == '(') {
            if (!readConcatenation(s)) return script();
        } else if (c == '{' || c == '}' || c == ',') {
            braces = true;
            depth += c == '{' ? 1 : c == '}' ? -1 : 0;
            if (depth < 0) return script();
            s.words.push_back({text_.substr(at_++, 1), false});
        } else if (c == ')' || c == '`' || c == '$' || c == ';') {
            return script();
        } else {
            const std::size_t first = at_;
            // Values follow the name of the attribute; what begins with a dash and a letter is a flag.
            const bool values = list && depth == 0 && !braces && !s.words.empty() && s.words.back().quoted &&
                                listParts[static_cast<unsigned char>(c)] && !(c == '-' && isNameStart(peek(1)));
            if (values) {
                list = false;
                if (readTail(s)) continue;
            }
            while (at_ < text_.size() && !wordEnds[static_cast<unsigned char>(text_[at_])]) {
                if (text_[at_] == '/' && (peek(1) == '/' || peek(1) == '*')) break;
                ++at_;
            }
            s.words.push_back({text_.substr(first, at_ - first), false});
        }
    }
}

} // namespace host::files
