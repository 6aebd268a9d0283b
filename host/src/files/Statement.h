#pragma once

#include <deque>
#include <span>
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

/// A list of values that is not taken apart: where it lies in the text, and how many lines it has.
struct RawList {
    std::size_t first = 0, last = 0;
    int lineEnds = 0;
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
    /// A long list of values behind the words, up to the semicolon: unquoted words and white space. Only a setAttr's.
    std::string_view tail;
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
    /// Its words, those of the tail included.
    std::vector<Word> allWords() const;
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
    /// `text` must outlive the scanner and the statements. `lists` are those that a scanner of the same text found.
    explicit StatementScanner(std::string_view text, std::span<const RawList> lists = {});
    /// Reads the next statement; false at the end. Throws SyntaxError.
    bool next(Statement& statement);
    /// What the text says of itself in its first line ("//Maya ASCII 2011 scene"); may be empty.
    std::string_view header() const { return header_; }
    /// The lists that were met so far.
    std::vector<RawList> takeLists() { return std::move(met_); }

private:
    bool skipSpace(bool mayEnd);
    char peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
    std::string_view quotedText(Statement& statement);
    bool readConcatenation(Statement& statement);
    void skipQuoted();
    void skipScript(const Statement& statement, bool block);
    bool readTail(Statement& statement);

    std::string_view text_, header_;
    std::span<const RawList> known_;
    std::vector<RawList> met_;
    std::size_t at_ = 0;
    int line_ = 1;
};

} // namespace host::files
