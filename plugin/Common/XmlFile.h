#pragma once

#include "Vector3.h"

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class TiXmlDocument;
class TiXmlElement;

namespace orvo {

/// What a number in a file may be; both ends are part of it. A number beyond an end is held there.
struct XmlRange {
    double min = -std::numeric_limits<double>::max();
    double max = std::numeric_limits<double>::max();
    std::optional<double> below{}; ///< what a number below `min` is held at, where that is not `min` itself
};

/// An XML file that is being read, and the first thing that is wrong with it.
///
/// Reading goes on after a problem: elements are then null, values empty or 0, and later problems are not kept. So a
/// reader asks for all that it wants and tests ok() at the end. Numbers are read alike in every locale. Files come from
/// anywhere: size, nesting and number of parts are limited before anything is built from them.
class XmlFile {
public:
    static constexpr std::size_t maxBytes = std::size_t(64) << 20;
    static constexpr std::size_t maxWarnings = 20;
    static constexpr int maxDepth = 64;              ///< elements within one another
    static constexpr int maxAttributes = 256;        ///< of one element
    static constexpr std::size_t maxParts = 2000000; ///< elements, attributes, comments and the like of a file

    /// A file's kind and the version in which it is known.
    struct Form {
        const char* type;
        int version;
    };

    XmlFile();
    ~XmlFile();
    XmlFile(const XmlFile&) = delete;
    XmlFile& operator=(const XmlFile&) = delete;

    /// Reads a file. @return ok()
    bool load(const std::string& path);
    /// Reads a text. @param name of it in messages. @return ok()
    bool parse(std::string text, const std::string& name);

    bool ok() const { return error_.empty(); }
    /// "FILE, line 12: element Cloud: attribute \"size\" is missing", empty while all is well.
    const std::string& error() const { return error_; }
    /// What was read otherwise than it stands there, up to 20 and how many more:
    /// "FILE, line 12: element Cloud: attribute \"size\" is out of range: \"-1\", held at 0".
    std::vector<std::string> warnings() const;
    /// Notes a problem with an element, which may be null.
    void fail(const TiXmlElement* element, const std::string& problem);

    /// @name Elements: the first of the name; null, and a problem, when there is none
    /// @{
    const TiXmlElement* root(const char* name);
    /// A root whose attributes `type` and `version` must be, as texts, those of one of the forms.
    const TiXmlElement* root(const char* name, std::initializer_list<Form> forms);
    const TiXmlElement* child(const TiXmlElement* parent, const char* name);
    /// @}

    /// @name Attributes: one that is missing, or holds no such value, is a problem
    /// What follows a number in an attribute is not looked at. A number out of its range, or of its type's, is held at
    /// the limit, with a warning.
    /// @{
    std::string text(const TiXmlElement* element, const char* attribute);
    double real(const TiXmlElement* element, const char* attribute, const XmlRange& range = {});
    /// A number in single precision, widened.
    double single(const TiXmlElement* element, const char* attribute, const XmlRange& range = {});
    /// Three numbers in single precision, widened.
    Vector3 triple(const TiXmlElement* element, const char* attribute);
    /// An integer; true when it is not 0.
    bool flag(const TiXmlElement* element, const char* attribute);
    /// 32 bits, as a signed or an unsigned number.
    std::uint32_t word(const TiXmlElement* element, const char* attribute);
    /// @}

private:
    template <class Real>
    double number(const TiXmlElement* element, const char* attribute, const XmlRange& range);
    void warnHeld(const TiXmlElement* element, const char* attribute, const std::string& limit);
    std::string place(const TiXmlElement* element) const;
    const char* attribute(const TiXmlElement* element, const char* name);
    void failAttribute(const TiXmlElement* element, const char* name, const std::string& problem);

    std::unique_ptr<TiXmlDocument> document_;
    std::string name_, error_;
    std::vector<std::string> warnings_;
    std::size_t moreWarnings_ = 0;
};

} // namespace orvo
