#pragma once

#include <deque>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host::files {

/// One word of a statement, with the quotes taken off and escapes resolved.
struct Word {
    std::string_view text;
    bool quoted = false;

    /// Whether it is an unquoted dash with a letter: -name, but neither -5 nor -inf.
    bool isFlag() const;
};

/// A command with its words, as a scene file has it. The words point into the text that was read or into `texts`.
struct Statement {
    enum class Kind {
        Plain,  ///< words alone
        Braced, ///< has a list in braces
        Script, ///< has variables, expressions or control flow: not for a scene file
    };

    std::string_view name;
    std::vector<Word> words;
    std::string_view raw; ///< from the name to the semicolon
    int line = 0;         ///< where it begins, 1-based
    Kind kind = Kind::Plain;
    std::deque<std::string> texts;

    Statement() = default;
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    void clear();
    /// Adds a word that the statement keeps the text of.
    void add(std::string text, bool quoted);
    /// The raw text with plain line ends, for keeping.
    std::string kept() const;
};

/// A text that ends in the midst of a statement, a quoted text or a comment.
class SyntaxError : public std::runtime_error {
public:
    SyntaxError(const std::string& what, int line) : runtime_error(what), line(line) {}
    int line;
};

/// Cuts the text of a scene file into statements. What is more than a command with plain words is skipped as a
/// whole, with its nested blocks. Uses no recursion; time and memory grow with the text alone.
class StatementScanner {
public:
    /// `text` must outlive the scanner and the statements.
    explicit StatementScanner(std::string_view text);
    /// Reads the next statement; false at the end. Throws SyntaxError.
    bool next(Statement& statement);
    /// What the text says of itself in its first line ("//Maya ASCII 2011 scene"); may be empty.
    std::string_view header() const { return header_; }

private:
    bool skipSpace(bool mayEnd);
    char peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
    void readQuoted(Statement& statement);
    std::string_view quotedText(Statement& statement);
    bool readConcatenation(Statement& statement);
    void skipQuoted();
    void skipScript(const Statement& statement, bool block);

    std::string_view text_, header_;
    std::size_t at_ = 0;
    int line_ = 1;
};

} // namespace host::files
