#include "base/Pattern.h"

#include <re2/re2.h>

#include <bitset>
#include <string>

namespace host {
namespace {

constexpr int kGroupLimit = 100;
constexpr std::size_t kPatternLimit = 20000;
/// Of one pattern's automaton, in bytes: more than what the longest pattern needs.
constexpr std::int64_t kMemory = 64 << 20;

unsigned char byte(char c) { return static_cast<unsigned char>(c); }

[[noreturn]] void unpaired(std::string_view pattern, const char* what) {
    throw PatternError("The pattern \"" + std::string(pattern.substr(0, 200)) + "\" has an unpaired \"" + what + "\".");
}

/// The set of characters a bracket expression stands for; `at` is behind "[" and moves behind "]".
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
    if (at >= p.size()) unpaired(p, "[");
    ++at;
    return inverted ? ~set : set;
}

/// Writes a MEL pattern as RE2 reads it, where the two differ in what is special and what an escape means.
class Translation {
public:
    explicit Translation(std::string_view pattern) : p_(pattern) {
        alternatives(0);
        if (at_ < p_.size()) unpaired(p_, ")");
    }

    std::string text;

private:
    void alternatives(int depth) {
        if (depth > kGroupLimit) throw PatternError("The pattern is nested too deeply.");
        sequence(depth);
        while (at_ < p_.size() && p_[at_] == '|') {
            ++at_;
            text += '|';
            sequence(depth);
        }
    }

    void sequence(int depth) {
        while (at_ < p_.size() && p_[at_] != '|' && p_[at_] != ')') {
            atom(depth);
            // Repetitions of repetitions: all but the same one twice amount to any number of times.
            char repeat = 0;
            for (; at_ < p_.size() && (p_[at_] == '*' || p_[at_] == '+' || p_[at_] == '?'); ++at_)
                repeat = repeat == 0 || repeat == p_[at_] ? p_[at_] : '*';
            if (repeat) text += repeat;
        }
    }

    void atom(int depth) {
        const char c = p_[at_++];
        if (c == '(') {
            text += "(?:";
            alternatives(depth + 1);
            if (at_ >= p_.size()) unpaired(p_, "(");
            ++at_;
            text += ')';
        } else if (c == '[')
            set(characterSet(p_, at_));
        else if (c == '.')
            text += "(?s:.)";
        else if (c == '^')
            text += "\\A";
        else if (c == '$')
            text += "\\z";
        else
            code(byte(c == '\\' && at_ < p_.size() ? p_[at_++] : c));
    }

    void set(const std::bitset<256>& characters) {
        text += characters.none() ? "[^" : "[";
        for (unsigned c = 0; c < 256; ++c) {
            if (characters.none() ? c > 0 : !characters.test(c)) continue;
            code(c);
            unsigned last = characters.none() ? 255 : c;
            while (last < 255 && characters.test(last + 1)) ++last;
            if (last > c) {
                text += '-';
                code(last);
            }
            c = last;
        }
        text += ']';
    }

    void code(unsigned c) {
        constexpr char digits[] = "0123456789abcdef";
        text += "\\x";
        text += digits[c / 16];
        text += digits[c % 16];
    }

    std::string_view p_;
    std::size_t at_ = 0;
};

re2::RE2::Options options() {
    re2::RE2::Options o(re2::RE2::Latin1);
    o.set_longest_match(true);
    o.set_log_errors(false);
    o.set_max_mem(kMemory);
    return o;
}

/// Goes through a text once, coming back to the last * where the rest does not fit. `one` moves behind the pattern's
/// next part and says whether it stands for the character.
template <class One>
bool matchesStars(std::string_view pattern, std::string_view text, One one) {
    std::size_t p = 0, t = 0, star = std::string_view::npos, mark = 0;
    while (t < text.size()) {
        std::size_t at = p;
        if (p < pattern.size() && pattern[p] == '*') {
            star = ++p;
            mark = t;
        } else if (p < pattern.size() && one(at, text[t])) {
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

} // namespace

Pattern::Pattern(std::string_view pattern) {
    if (pattern.size() > kPatternLimit) throw PatternError("The pattern is too long.");
    automaton_ = std::make_shared<const re2::RE2>(Translation(pattern).text, options());
    if (!automaton_->ok()) throw PatternError("The pattern is too long.");
}

std::optional<std::pair<std::size_t, std::size_t>> Pattern::find(std::string_view text) const {
    re2::StringPiece found;
    if (!automaton_->Match({text.data(), text.size()}, 0, text.size(), re2::RE2::UNANCHORED, &found, 1))
        return std::nullopt;
    return std::pair{static_cast<std::size_t>(found.data() - text.data()), found.size()};
}

bool matchesName(std::string_view pattern, std::string_view name) {
    return matchesStars(pattern, name, [&](std::size_t& at, char c) {
        const char wanted = pattern[at++];
        return wanted == '?' || wanted == c;
    });
}

bool matchesFileName(std::string_view pattern, std::string_view name) {
    return matchesStars(pattern, name, [&](std::size_t& at, char c) {
        const char wanted = pattern[at++];
        if (wanted == '[') return characterSet(pattern, at).test(byte(c));
        return wanted == '?' || wanted == c;
    });
}

} // namespace host
