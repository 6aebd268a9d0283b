#include "XmlFile.h"

#include "../Failure.h"
#include "Inspection.h"
#include "PlainFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string_view>
#include <vector>

namespace orvosky::inspect {
namespace {

// Room for a sprite cloud of four million triangles, and for more clouds than their data could be addressed.
constexpr std::uint64_t xmlLimit = 512 << 20; // bytes
constexpr std::size_t depthLimit = 64, elementLimit = 8'000'000, attributeLimit = 64;

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
constexpr std::string_view nameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789-.:";

class Scanner {
public:
    Scanner(std::string_view text, const std::string& file) : text_(text), file_(file) {}

    void scan() {
        skip("\xEF\xBB\xBF");
        if (skip("<?xml")) {
            const std::size_t end = text_.find('>', at_);
            if (end == text_.npos || text_[end - 1] != '?') fail("the XML declaration does not end");
            at_ = end + 1;
        }
        while (at_ < text_.size()) {
            if (skip("<!--"))
                passComment();
            else if (skip("</"))
                passClosingTag();
            else if (skip("<"))
                passOpeningTag();
            else
                passText();
        }
        if (!open_.empty()) fail("<" + std::string(open_.back()) + "> is not closed; the file may be cut off");
        if (elements_ == 0) fail("holds no element");
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        const auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at_), '\n');
        throw Failure(printable(file_) + " line " + std::to_string(line) + ": " + what + ".");
    }

    bool skip(std::string_view what) {
        if (!text_.substr(at_).starts_with(what)) return false;
        at_ += what.size();
        return true;
    }
    void skipBlanks() { at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size()); }

    std::string_view takeName() {
        if (at_ >= text_.size() || letters.find(text_[at_]) == letters.npos) fail("a name is missing; this is no XML");
        const std::size_t end = std::min(text_.find_first_not_of(nameCharacters, at_), text_.size());
        const std::string_view name = text_.substr(at_, end - at_);
        at_ = end;
        return name;
    }

    void passComment() {
        const std::size_t end = text_.find("-->", at_);
        if (end == text_.npos) fail("a comment does not end");
        at_ = end + 3;
    }

    void passClosingTag() {
        const std::string_view name = takeName();
        skipBlanks();
        if (!skip(">")) fail("</" + printable(name, 40) + " does not end");
        if (open_.empty() || open_.back() != name) fail("</" + printable(name, 40) + "> closes nothing that is open");
        open_.pop_back();
    }

    void passOpeningTag() {
        if (open_.empty() && elements_ > 0) fail("there is more than one root element");
        if (++elements_ > elementLimit) fail("holds more than " + std::to_string(elementLimit) + " elements");
        const std::string_view element = takeName();
        std::vector<std::string_view> attributes;
        for (;;) {
            const std::size_t before = at_;
            skipBlanks();
            if (skip("/>")) return;
            if (skip(">")) break;
            if (at_ == text_.size()) fail("<" + printable(element, 40) + "> does not end");
            if (at_ == before) fail("a blank is missing in <" + printable(element, 40) + ">");
            const std::string_view name = takeName();
            if (std::ranges::find(attributes, name) != attributes.end())
                fail("<" + printable(element, 40) + "> has the attribute '" + printable(name, 40) + "' twice");
            attributes.push_back(name);
            if (attributes.size() > attributeLimit) fail("<" + printable(element, 40) + "> has too many attributes");
            passValue(name);
        }
        open_.push_back(element);
        if (open_.size() > depthLimit) fail("elements are nested more than " + std::to_string(depthLimit) + " deep");
    }

    void passValue(std::string_view attribute) {
        skipBlanks();
        if (!skip("=")) fail("'" + printable(attribute, 40) + "' has no value");
        skipBlanks();
        const std::size_t end = skip("\"") ? text_.find('"', at_) : skip("'") ? text_.find('\'', at_) : text_.npos;
        if (end == text_.npos || text_.substr(at_, end - at_).find('<') != text_.npos)
            fail("the value of '" + printable(attribute, 40) + "' is not quoted, or does not end");
        at_ = end + 1;
    }

    void passText() {
        const std::size_t end = std::min(text_.find('<', at_), text_.size());
        if (open_.empty() && text_.substr(at_, end - at_).find_first_not_of(blanks) != text_.npos)
            fail("there is text outside of the root element; this is no XML");
        at_ = end;
    }

    std::string_view text_;
    const std::string& file_;
    std::size_t at_ = 0, elements_ = 0;
    std::vector<std::string_view> open_;
};

void checkCharacters(const std::string& text, const std::string& file) {
    if (text.find('\0') != text.npos) throw Failure(printable(file) + ": is a binary file, not XML.");
    try {
        static_cast<void>(nlohmann::json(text).dump());
    } catch (const nlohmann::json::type_error&) {
        throw Failure(printable(file) + ": is not valid UTF-8 text.");
    }
}

} // namespace

std::string readBytes(const std::string& file, std::uint64_t limit) { return PlainFile(file).whole(limit); }

XmlFile::XmlFile(const std::string& file) {
    const std::string text = readBytes(file, xmlLimit);
    if (text.find_first_not_of(blanks) == text.npos) throw Failure(printable(file) + ": the file is empty.");
    checkCharacters(text, file);
    Scanner(text, file).scan();
    document_.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (document_.Error() || !document_.RootElement())
        throw Failure(printable(file) + " line " + std::to_string(document_.ErrorRow()) + ": " + document_.ErrorDesc() +
                      ".");
}

} // namespace orvosky::inspect
