#include "XmlFile.h"

#include "../Failure.h"
#include "Inspection.h"
#include "PlainFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace orvosky::inspect {
namespace {

// Room for a sprite cloud of four million triangles, and for more clouds than their data could be addressed.
constexpr std::uint64_t xmlLimit = 512 << 20; // bytes
constexpr std::size_t depthLimit = 64, elementLimit = 8'000'000, attributeLimit = 64;

constexpr std::string_view blanks = " \t\r\n";

int lineAt(const XmlElement::Lines& lines, std::ptrdiff_t offset) {
    return static_cast<int>(std::ranges::upper_bound(lines, offset) - lines.begin());
}

XmlElement::Lines linesOf(std::string_view text) {
    XmlElement::Lines lines{0};
    for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos;)
        lines.push_back(static_cast<std::ptrdiff_t>(++at));
    return lines;
}

void checkCharacters(const std::string& text, const std::string& file) {
    if (text.find_first_not_of(blanks) == text.npos) throw Failure(printable(file) + ": the file is empty.");
    if (text.find('\0') != text.npos) throw Failure(printable(file) + ": is a binary file, not XML.");
    try {
        static_cast<void>(nlohmann::json(text).dump());
    } catch (const nlohmann::json::type_error&) {
        throw Failure(printable(file) + ": is not valid UTF-8 text.");
    }
    // Each element needs one of the first kind of characters, or two, each attribute one of the second.
    if (static_cast<std::size_t>(std::ranges::count(text, '<')) > 2 * elementLimit + attributeLimit ||
        static_cast<std::size_t>(std::ranges::count(text, '=')) > 3 * elementLimit)
        throw Failure(printable(file) + ": holds more than " + std::to_string(elementLimit) + " elements.");
}

/// What the parser forgives although it is no XML, or more of it than can be right.
class Check {
public:
    Check(const std::string& file, const XmlElement::Lines& lines) : file_(file), lines_(lines) {}

    /// The one element of the document.
    pugi::xml_node rootOf(const pugi::xml_document& document) {
        pugi::xml_node root;
        for (const pugi::xml_node node : document) {
            if (node.type() != pugi::node_element)
                fail(node, "there is text outside of the root element; this is no XML");
            if (root) fail(node, "there is more than one root element");
            root = node;
        }
        if (!root) throw Failure(printable(file_) + ": holds no element; this is no XML.");
        for (pugi::xml_node node = root; node; node = following(node)) check(node);
        return root;
    }

private:
    [[noreturn]] void fail(pugi::xml_node node, const std::string& what) const {
        throw Failure(printable(file_) + " line " + std::to_string(lineAt(lines_, node.offset_debug())) + ": " + what +
                      ".");
    }

    void check(pugi::xml_node node) const {
        const std::string shown = "<" + printable(node.name(), 40) + ">";
        std::vector<std::string_view> names;
        for (const pugi::xml_attribute a : node.attributes()) {
            if (std::ranges::find(names, a.name()) != names.end())
                fail(node, shown + " has the attribute '" + printable(a.name(), 40) + "' twice");
            names.emplace_back(a.name());
            if (names.size() > attributeLimit) fail(node, shown + " has too many attributes");
        }
    }

    /// The node behind this one, in the order of the text.
    pugi::xml_node following(pugi::xml_node node) {
        if (const pugi::xml_node child = node.first_child()) {
            if (++depth_ > depthLimit)
                fail(node, "elements are nested more than " + std::to_string(depthLimit) + " deep");
            return child;
        }
        while (node && depth_ > 0 && !node.next_sibling()) {
            node = node.parent();
            --depth_;
        }
        return depth_ > 0 ? node.next_sibling() : pugi::xml_node();
    }

    const std::string& file_;
    const XmlElement::Lines& lines_;
    std::size_t depth_ = 0;
};

} // namespace

std::string readBytes(const std::string& file, std::uint64_t limit) { return PlainFile(file).whole(limit); }

int XmlElement::line() const { return lineAt(*lines_, node_.offset_debug()); }

std::optional<std::string> XmlElement::attribute(const char* name) const {
    const pugi::xml_attribute found = node_.attribute(name);
    return found ? std::optional<std::string>(found.value()) : std::nullopt;
}

std::vector<std::string_view> XmlElement::attributeNames() const {
    std::vector<std::string_view> names;
    for (const pugi::xml_attribute a : node_.attributes()) names.emplace_back(a.name());
    return names;
}

XmlElement XmlElement::from(pugi::xml_node node, const char* name) const {
    while (node && (node.type() != pugi::node_element || (name && std::string_view(node.name()) != name)))
        node = node.next_sibling();
    return {node, *lines_};
}

XmlElement XmlElement::first(const char* name) const { return from(node_.first_child(), name); }
XmlElement XmlElement::next(const char* name) const { return from(node_.next_sibling(), name); }

XmlElement XmlElement::previous() const {
    pugi::xml_node node = node_.previous_sibling();
    while (node && node.type() != pugi::node_element) node = node.previous_sibling();
    return {node, *lines_};
}

std::vector<XmlElement::Text> XmlElement::texts() const {
    std::vector<Text> found;
    for (const pugi::xml_node node : node_)
        if (node.type() != pugi::node_element) {
            const std::string_view text = node.value();
            const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
            found.push_back({text.substr(begin, text.find_last_not_of(blanks) + 1 - begin),
                             lineAt(*lines_, node.offset_debug() + static_cast<std::ptrdiff_t>(begin))});
        }
    return found;
}

XmlFile::XmlFile(const std::string& file) : text_(readBytes(file, xmlLimit)) {
    if (text_.starts_with("\xEF\xBB\xBF")) text_.erase(0, 3);
    checkCharacters(text_, file);
    lines_ = linesOf(text_);
    // Read in place: a copy of a large file would cost as much again. With the zero behind it, for the parser puts one
    // in the place of the last character.
    constexpr unsigned forms = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute | pugi::parse_eol |
                               pugi::parse_fragment | pugi::parse_doctype;
    const pugi::xml_parse_result read =
        document_.load_buffer_inplace(text_.data(), text_.size() + 1, forms, pugi::encoding_utf8);
    if (!read)
        throw Failure(printable(file) + " line " + std::to_string(lineAt(lines_, read.offset)) +
                      ": this is no XML: " + read.description() + ".");
    root_ = Check(file, lines_).rootOf(document_);
}

} // namespace orvosky::inspect
