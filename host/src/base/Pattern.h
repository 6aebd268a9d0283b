#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace re2 {
class RE2;
}

namespace host {

/// A pattern that cannot be used. Its text is for the user.
class PatternError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// MEL's regular expressions: . * + ? ^ $ [a-z] [^a-z] ( ) | and \ before a character that stands for itself. Within
/// brackets a backslash is a character like any other: scripts write "[^/\\]*$" for a path's last part. Texts are
/// bytes; ^ and $ stand for the text's two ends, whatever lines it has.
///
/// Finding takes time proportional to the text, and no recursion.
class Pattern {
public:
    /// Throws PatternError for a pattern whose brackets or parentheses do not pair, or that is too long (20,000
    /// characters) or nested too deeply (100 groups).
    explicit Pattern(std::string_view pattern);
    /// Begin and length of the leftmost match, the longest one that starts there.
    std::optional<std::pair<std::size_t, std::size_t>> find(std::string_view text) const;

private:
    std::shared_ptr<const re2::RE2> automaton_;
};

/// Whether a name matches a pattern in full: * stands for any characters, ? for one.
bool matchesName(std::string_view pattern, std::string_view name);
/// The same for names of files, where [a-z] and [^a-z] stand for one character of a set. Throws PatternError when the
/// brackets do not pair.
bool matchesFileName(std::string_view pattern, std::string_view name);

} // namespace host
