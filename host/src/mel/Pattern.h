#pragma once

#include <bitset>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace host::mel {

/// MEL's regular expressions: . * + ? ^ $ [a-z] [^a-z] ( ) | and \ before a character that stands for itself. Within
/// brackets a backslash is a character like any other: scripts write "[^/\\]*$" for a path's last part.
///
/// Matching takes time proportional to text times pattern and no recursion, whatever the text.
class Pattern {
public:
    /// Throws Error for a pattern whose brackets or parentheses do not pair.
    explicit Pattern(std::string_view pattern);
    /// Begin and length of the leftmost match, the longest one that starts there.
    std::optional<std::pair<std::size_t, std::size_t>> find(std::string_view text) const;

    /// Whether a text matches a file name pattern in full (* ? and [a-z]).
    static bool glob(std::string_view pattern, std::string_view text);

private:
    struct Node {
        enum class Kind { Characters, Split, Begin, End, Match } kind;
        std::bitset<256> characters;
        int next = -1, other = -1;
    };
    /// A piece of the automaton: its entry and the node whose `next` is still open.
    struct Piece {
        int entry, exit;
    };

    int add(Node node);
    Piece alternatives(std::string_view p, std::size_t& at, int depth);
    Piece sequence(std::string_view p, std::size_t& at, int depth);
    Piece atom(std::string_view p, std::size_t& at, int depth);
    std::optional<std::size_t> longest(std::string_view text, std::size_t from) const;

    std::vector<Node> nodes_;
    int entry_ = 0;
};

/// The set of characters a bracket expression stands for; `at` is behind "[" and moves behind "]".
std::bitset<256> characterSet(std::string_view pattern, std::size_t& at);

} // namespace host::mel
