#pragma once

#include <tinyxml.h>

#include <cstdint>
#include <string>

namespace orvosky::inspect {

/// The bytes of a plain file. Throws Failure, which names the file, when it cannot be read or is larger than `limit`.
std::string readBytes(const std::string& file, std::uint64_t limit);

/// An XML file in memory.
///
/// The parser recurses for each level of nesting and forgives much that is no XML. Before it sees a file, the text is
/// held against the plain XML that these files consist of: UTF-8; a declaration, comments, elements with quoted
/// attributes, text. Nesting, elements and attributes are bounded.
class XmlFile {
public:
    /// Throws Failure, which names the file and the line.
    explicit XmlFile(const std::string& file);
    const TiXmlElement& root() const { return *document_.RootElement(); }

private:
    TiXmlDocument document_;
};

} // namespace orvosky::inspect
