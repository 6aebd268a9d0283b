#include "base/Letters.h"
#include "base/Pattern.h"
#include "base/QuotedText.h"
#include "mel/Execution.h"
#include "mel/TextTools.h"

#include <algorithm>
#include <bitset>
#include <cstring>

namespace host::mel {

StringArray tokens(std::string_view text, std::string_view separators) {
    // Not by find_first_of, which looks through all separators at each character.
    std::bitset<256> separates;
    for (char c : separators) separates.set(static_cast<unsigned char>(c));
    StringArray out;
    for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
        for (end = begin; end < text.size() && !separates.test(static_cast<unsigned char>(text[end]));) ++end;
        if (end > begin) out.emplace_back(text.substr(begin, end - begin));
    }
    return out;
}

void requireTextSize(std::size_t characters) {
    if (characters > std::size_t{1} << 28) throw Error("The text is too long.");
}

namespace {

Value toUpper(Arguments& a) {
    a.expect(1);
    std::string s = a.text(0);
    std::transform(s.begin(), s.end(), s.begin(), upperCase);
    return s;
}

Value toLower(Arguments& a) {
    a.expect(1);
    return lowerCase(a.text(0));
}

Value capitalize(Arguments& a) {
    a.expect(1);
    std::string s = a.text(0);
    if (!s.empty()) s[0] = upperCase(s[0]);
    return s;
}

/// substring(text, first, last): positions from 1, both included.
Value substring(Arguments& a) {
    a.expect(3);
    const std::string s = a.text(0);
    const int first = std::max(a.integer(1), 1), last = std::min(a.integer(2), static_cast<int>(s.size()));
    if (first > last) return "";
    return s.substr(static_cast<std::size_t>(first - 1), static_cast<std::size_t>(last - first + 1));
}

Value startString(Arguments& a) {
    a.expect(2);
    return a.text(0).substr(0, static_cast<std::size_t>(std::max(a.integer(1), 0)));
}

Value endString(Arguments& a) {
    a.expect(2);
    const std::string s = a.text(0);
    const auto n = static_cast<std::size_t>(std::max(a.integer(1), 0));
    return n >= s.size() ? s : s.substr(s.size() - n);
}

Value startsWith(Arguments& a) {
    a.expect(2);
    return a.text(0).starts_with(a.text(1));
}

Value endsWith(Arguments& a) {
    a.expect(2);
    return a.text(0).ends_with(a.text(1));
}

Value compare(Arguments& a) {
    a.expect(2);
    const int order = a.text(0).compare(a.text(1));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

Value strip(Arguments& a) {
    a.expect(1);
    const std::string s = a.text(0);
    const std::size_t begin = s.find_first_not_of(kWhiteSpace);
    return begin == std::string::npos ? std::string() : s.substr(begin, s.find_last_not_of(kWhiteSpace) - begin + 1);
}

/// substitute(pattern, text, replacement): the first match only.
Value substitute(Arguments& a) {
    a.expect(3);
    std::string s = a.text(1);
    if (auto found = Pattern(a.text(0)).find(s)) s.replace(found->first, found->second, a.text(2));
    return s;
}

Value substituteAll(Arguments& a) {
    a.expect(3);
    const std::string s = a.text(0), old = a.text(1), replacement = a.text(2);
    if (old.empty()) return s;
    std::string out;
    // Not by string::find, whose time is the product of the two lengths at worst.
    const char *at = s.data(), *const end = at + s.size();
    while (const void* found = memmem(at, static_cast<std::size_t>(end - at), old.data(), old.size())) {
        out.append(at, static_cast<const char*>(found)).append(replacement);
        requireTextSize(out.size());
        at = static_cast<const char*>(found) + old.size();
    }
    return out.append(at, end);
}

Value match(Arguments& a) {
    a.expect(2);
    const std::string s = a.text(1);
    auto found = Pattern(a.text(0)).find(s);
    return found ? s.substr(found->first, found->second) : std::string();
}

Value globMatch(Arguments& a) {
    a.expect(2);
    return matchesFileName(a.text(1), a.text(0));
}

/// isValidString(text, pattern): whether the pattern's match is the whole text.
Value isValidString(Arguments& a) {
    a.expect(2);
    const std::string s = a.text(0);
    auto found = Pattern(a.text(1)).find(s);
    return found && found->first == 0 && found->second == s.size();
}

Value isValidObjectName(Arguments& a) {
    a.expect(1);
    const std::string s = a.text(0);
    return !s.empty() && !isDigit(s[0]) &&
           std::all_of(s.begin(), s.end(), [](char c) { return isLetter(c) || isDigit(c) || c == '_'; });
}

/// tokenize(text, [separators,] array): fills the array, answers how many there are.
Value tokenize(Arguments& a) {
    a.expect(2, 3);
    StringArray out = tokens(a.text(0), a.count() == 3 ? a.text(1) : kWhiteSpace);
    Value& target = *a.values.back();
    if (target.type() != Value::Type::StringArray) throw Error("tokenize needs a string array as its last argument.");
    const int count = static_cast<int>(out.size());
    target = std::move(out);
    return count;
}

Value tokenizeList(Arguments& a) {
    a.expect(2);
    Value separators(", \t\n");
    Arguments inner{a.interpreter, a.name, {a.values[0], &separators, a.values[1]}};
    return tokenize(inner);
}

Value stringToArray(Arguments& a) {
    a.expect(2);
    return tokens(a.text(0), a.text(1));
}

/// format -stringArg A -stringArg B "^1s and ^2s"
Value format(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"s", "stringArg", 1}});
    const StringArray texts = p.names();
    if (texts.size() != 1) throw Error("format needs one text with places such as ^1s.");
    const std::string& pattern = texts[0];
    std::string out;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '^' && i + 1 < pattern.size() && isDigit(pattern[i + 1])) {
            std::size_t end = i + 1, index = 0;
            for (; end < pattern.size() && isDigit(pattern[end]) && index < 1000; ++end)
                index = index * 10 + static_cast<std::size_t>(pattern[end] - '0');
            if (end < pattern.size() && pattern[end] == 's') {
                if (index == 0 || index > p.occurrences("s"))
                    throw Error("format: there is no argument for ^" + std::to_string(index) + "s.");
                out += p.value("s", 0, index - 1).toString();
                requireTextSize(out.size());
                i = end;
                continue;
            }
        }
        out += pattern[i];
    }
    return out;
}

/// Escapes quotes, backslashes and control characters, so that the text can stand in script text.
Value encode(Arguments& a) {
    a.expect(1);
    return escapedText(a.text(0));
}

Value removePrefix(Arguments& a) {
    a.expect(2);
    const std::string s = a.text(0), prefix = a.text(1);
    return s.starts_with(prefix) ? s.substr(prefix.size()) : s;
}

Value addPrefix(Arguments& a) {
    a.expect(2);
    return a.text(0) + a.text(1);
}

/// "scaleFactorX" to "Scale Factor X".
Value interfaceName(Arguments& a) {
    a.expect(1);
    std::string out;
    for (char c : a.text(0)) {
        const bool begins = upperCase(c) == c && isLetter(c) && !out.empty() && out.back() != ' ' &&
                            lowerCase(out.back()) == out.back();
        if (begins) out += ' ';
        out += out.empty() ? upperCase(c) : c;
    }
    return out;
}

} // namespace

void addStringFunctions(Interpreter::Impl& impl) {
    static constexpr std::pair<const char*, LanguageFunction> functions[] = {{"toupper", toUpper},
                                                                             {"tolower", toLower},
                                                                             {"capitalizeString", capitalize},
                                                                             {"substring", substring},
                                                                             {"startString", startString},
                                                                             {"endString", endString},
                                                                             {"startsWith", startsWith},
                                                                             {"endsWith", endsWith},
                                                                             {"strcmp", compare},
                                                                             {"strip", strip},
                                                                             {"substitute", substitute},
                                                                             {"substituteAllString", substituteAll},
                                                                             {"match", match},
                                                                             {"gmatch", globMatch},
                                                                             {"isValidString", isValidString},
                                                                             {"isValidObjectName", isValidObjectName},
                                                                             {"tokenize", tokenize},
                                                                             {"tokenizeList", tokenizeList},
                                                                             {"stringToStringArray", stringToArray},
                                                                             {"encodeString", encode},
                                                                             {"stringRemovePrefix", removePrefix},
                                                                             {"stringAddPrefix", addPrefix},
                                                                             {"interToUI", interfaceName}};
    for (const auto& [name, function] : functions) impl.addLanguageFunction(name, function);
    impl.addLanguageFunction("format", format, true);
}

} // namespace host::mel
