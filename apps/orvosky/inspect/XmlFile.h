#pragma once

#include <pugixml.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvosky::inspect {

/// The bytes of a plain file. Throws Failure, which names the file, when it cannot be read or is larger than `limit`.
std::string readBytes(const std::string& file, std::uint64_t limit);

/// An element of an XmlFile, which must outlive it; or none.
class XmlElement {
public:
    using Lines = std::vector<std::ptrdiff_t>; ///< where the lines of the file begin

    XmlElement() = default;
    XmlElement(pugi::xml_node node, const Lines& lines) : node_(node), lines_(&lines) {}
    explicit operator bool() const { return !node_.empty(); }
    bool operator==(const XmlElement& other) const { return node_ == other.node_; }

    std::string_view name() const { return node_.name(); }
    int line() const; ///< in the file, from 1 on
    std::optional<std::string> attribute(const char* name) const;
    std::vector<std::string_view> attributeNames() const;

    /// @name Elements of that name, or of any; none at the end
    /// @{
    XmlElement first(const char* name = nullptr) const;
    XmlElement next(const char* name = nullptr) const;
    XmlElement previous() const;
    /// @}
    /// A text that stands beside the elements in this one, and its line.
    struct Text {
        std::string_view text;
        int line;
    };
    std::vector<Text> texts() const;

private:
    XmlElement from(pugi::xml_node node, const char* name) const;
    pugi::xml_node node_;
    const Lines* lines_ = nullptr;
};

/// An XML file in memory: one element with what is in it, in UTF-8. Nesting, elements and attributes are bounded.
class XmlFile {
public:
    /// Throws Failure, which names the file and the line.
    explicit XmlFile(const std::string& file);
    XmlFile(const XmlFile&) = delete;
    XmlFile& operator=(const XmlFile&) = delete;
    XmlElement root() const { return {root_, lines_}; }

private:
    std::string text_; ///< which the document's names and values lie in
    XmlElement::Lines lines_;
    pugi::xml_document document_;
    pugi::xml_node root_;
};

} // namespace orvosky::inspect
