#include "mel/Pattern.h"

#include "mel/Command.h"

#include <algorithm>

namespace host::mel {
namespace {

constexpr int kGroupLimit = 100;
constexpr std::size_t kPatternLimit = 20000;

unsigned char byte(char c) { return static_cast<unsigned char>(c); }

} // namespace

std::bitset<256> characterSet(std::string_view p, std::size_t& at) {
    std::bitset<256> set;
    const bool inverted = at < p.size() && p[at] == '^';
    if (inverted) ++at;
    for (bool first = true; at < p.size() && (p[at] != ']' || first); first = false) {
        const unsigned char low = byte(p[at++]);
        unsigned char high = low;
        if (at + 1 < p.size() && p[at] == '-' && p[at + 1] != ']') {
            high = byte(p[at + 1]);
            at += 2;
        }
        for (unsigned c = low; c <= high; ++c) set.set(c);
    }
    if (at >= p.size()) throw Error("The pattern \"" + std::string(p.substr(0, 200)) + "\" has an unpaired \"[\".");
    ++at;
    return inverted ? ~set : set;
}

Pattern::Pattern(std::string_view pattern) {
    if (pattern.size() > kPatternLimit) throw Error("The pattern is too long.");
    std::size_t at = 0;
    const Piece whole = alternatives(pattern, at, 0);
    if (at < pattern.size())
        throw Error("The pattern \"" + std::string(pattern.substr(0, 200)) + "\" has an unpaired \")\".");
    const int match = add({Node::Kind::Match, {}});
    nodes_[static_cast<std::size_t>(whole.exit)].next = match;
    entry_ = whole.entry;
}

int Pattern::add(Node node) {
    nodes_.push_back(std::move(node));
    return static_cast<int>(nodes_.size()) - 1;
}

Pattern::Piece Pattern::alternatives(std::string_view p, std::size_t& at, int depth) {
    if (depth > kGroupLimit) throw Error("The pattern is nested too deeply.");
    Piece left = sequence(p, at, depth);
    while (at < p.size() && p[at] == '|') {
        ++at;
        const Piece right = sequence(p, at, depth);
        const int split = add({Node::Kind::Split, {}, left.entry, right.entry});
        const int join = add({Node::Kind::Split, {}});
        nodes_[static_cast<std::size_t>(left.exit)].next = join;
        nodes_[static_cast<std::size_t>(right.exit)].next = join;
        left = {split, join};
    }
    return left;
}

Pattern::Piece Pattern::sequence(std::string_view p, std::size_t& at, int depth) {
    const int start = add({Node::Kind::Split, {}});
    Piece all{start, start};
    while (at < p.size() && p[at] != '|' && p[at] != ')') {
        Piece piece = atom(p, at, depth);
        while (at < p.size() && (p[at] == '*' || p[at] == '+' || p[at] == '?')) {
            const char repeat = p[at++];
            const int leave = add({Node::Kind::Split, {}});
            const int split = add({Node::Kind::Split, {}, piece.entry, leave});
            nodes_[static_cast<std::size_t>(piece.exit)].next = repeat == '?' ? leave : split;
            piece = {repeat == '+' ? piece.entry : split, leave};
        }
        nodes_[static_cast<std::size_t>(all.exit)].next = piece.entry;
        all.exit = piece.exit;
    }
    return all;
}

Pattern::Piece Pattern::atom(std::string_view p, std::size_t& at, int depth) {
    const char c = p[at++];
    Node node{Node::Kind::Characters, {}};
    if (c == '(') {
        const Piece inner = alternatives(p, at, depth + 1);
        if (at >= p.size()) throw Error("The pattern \"" + std::string(p.substr(0, 200)) + "\" has an unpaired \"(\".");
        ++at;
        return inner;
    }
    if (c == '[')
        node.characters = characterSet(p, at);
    else if (c == '.')
        node.characters.set();
    else if (c == '^')
        node.kind = Node::Kind::Begin;
    else if (c == '$')
        node.kind = Node::Kind::End;
    else
        node.characters.set(byte(c == '\\' && at < p.size() ? p[at++] : c));
    const int index = add(std::move(node));
    return {index, index};
}

std::optional<std::size_t> Pattern::longest(std::string_view text, std::size_t from) const {
    std::vector<int> current, next, pending;
    std::vector<std::size_t> seen(nodes_.size(), std::string_view::npos);
    std::optional<std::size_t> best;
    // Enters a node and all that are reached from it without taking a character.
    auto enter = [&](int start, std::size_t at, std::vector<int>& states) {
        pending.assign(1, start);
        while (!pending.empty()) {
            const int index = pending.back();
            pending.pop_back();
            if (index < 0 || std::exchange(seen[static_cast<std::size_t>(index)], at) == at) continue;
            const Node& node = nodes_[static_cast<std::size_t>(index)];
            switch (node.kind) {
            case Node::Kind::Characters: states.push_back(index); break;
            case Node::Kind::Match: best = at; break;
            case Node::Kind::Begin:
                if (at == 0) pending.push_back(node.next);
                break;
            case Node::Kind::End:
                if (at == text.size()) pending.push_back(node.next);
                break;
            case Node::Kind::Split:
                pending.push_back(node.other);
                pending.push_back(node.next);
                break;
            }
        }
    };
    enter(entry_, from, current);
    for (std::size_t at = from; at < text.size() && !current.empty(); ++at) {
        next.clear();
        for (int index : current) {
            const Node& node = nodes_[static_cast<std::size_t>(index)];
            if (node.characters.test(byte(text[at]))) enter(node.next, at + 1, next);
        }
        std::swap(current, next);
    }
    return best;
}

std::optional<std::pair<std::size_t, std::size_t>> Pattern::find(std::string_view text) const {
    for (std::size_t from = 0; from <= text.size(); ++from)
        if (auto end = longest(text, from)) return std::pair{from, *end - from};
    return std::nullopt;
}

bool Pattern::glob(std::string_view pattern, std::string_view text) {
    std::size_t p = 0, t = 0, star = std::string_view::npos, mark = 0;
    auto matchesOne = [&](std::size_t& at) {
        if (at >= pattern.size() || pattern[at] == '*') return false;
        if (pattern[at] == '[') {
            ++at;
            return characterSet(pattern, at).test(byte(text[t]));
        }
        const char c = pattern[at++];
        return c == '?' || c == text[t];
    };
    while (t < text.size()) {
        std::size_t at = p;
        if (p < pattern.size() && pattern[p] == '*') {
            star = ++p;
            mark = t;
        } else if (matchesOne(at)) {
            p = at;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star;
            t = ++mark;
        } else
            return false;
    }
    while (p < pattern.size() && pattern[p] == '*') ++p;
    return p == pattern.size();
}

} // namespace host::mel
