#include "XmlFile.h"

#include "FileSystem.h"
#include "Format.h"
#include "ScanNumber.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>
#include <tinyxml.h>

namespace orvo {
namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";

/// As the parser knows them.
bool isNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x7f;
}
bool isNameCharacter(char c) { return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':'; }

/// Walks over the tags of a text before the parser does, which goes down into nested elements by calling itself and
/// compares each attribute of an element with all before it. Whatever the parser could take for a deeper nesting than
/// this walk sees is refused here, so the walk is strict where the parser is lenient: declaration, quotes, tags.
class StructureScan {
public:
    explicit StructureScan(std::string_view text) : text_(text) {}

    /// What is wrong, with its line; nothing when the text may be parsed.
    std::optional<std::string> problem() {
        const char* found = walk();
        if (!found) return std::nullopt;
        const auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at_), '\n');
        return formatText("line %d: %s", line, found);
    }

private:
    const char* walk() {
        for (std::size_t parts = 0;; ++parts) {
            const std::size_t open = std::min(text_.find('<', at_), text_.size());
            const std::size_t stray = depth_ == 0 ? text_.find_first_not_of(blanks, at_) : open;
            if (stray < open) {
                at_ = stray;
                return "text outside of all elements";
            }
            at_ = open;
            if (at_ == text_.size()) return depth_ == 0 ? nullptr : "the end tag of an element is missing";
            if (parts + attributes_ > XmlFile::maxParts) return "too many elements";
            if (const char* found = markup()) return found;
        }
    }

    const char* markup() {
        if (startsWith("<!--")) return skipPast("-->", 4);
        if (startsWith("<![CDATA[")) return skipPast("]]>", 9);
        if (isDeclaration()) return declaration();
        if (startsWith("<!") || startsWith("<?")) return skipPast(">", 2);
        if (!startsWith("</")) return tag();
        if (--depth_ < 0) return "an end tag without an element";
        return skipPast(">", 2);
    }

    const char* tag() {
        if (depth_ == XmlFile::maxDepth) return "elements are nested too deeply";
        ++at_;
        if (at_ == text_.size() || !isNameStart(text_[at_])) return "a tag without a name";
        skipName();
        for (int count = 0;; ++count) {
            skipBlanks();
            if (startsWith(">")) {
                ++depth_;
                ++at_;
                return nullptr;
            }
            if (startsWith("/>")) {
                at_ += 2;
                return nullptr;
            }
            if (count == XmlFile::maxAttributes) return "too many attributes";
            std::string_view name, value;
            if (!attribute(name, value)) return "a tag is cut off or not well formed";
            ++attributes_;
        }
    }

    bool isDeclaration() const {
        const std::string_view head = text_.substr(at_, 5);
        return head.size() == 5 && head.substr(0, 2) == "<?" && (head[2] | 0x20) == 'x' && (head[3] | 0x20) == 'm' &&
               (head[4] | 0x20) == 'l';
    }

    const char* declaration() {
        static const char* const wrong = "the XML declaration is not well formed";
        at_ += 5;
        while (true) {
            skipBlanks();
            if (startsWith("?>")) return skipPast("?>", 0);
            std::string_view name, value;
            if (!attribute(name, value) || (name != "version" && name != "encoding" && name != "standalone") ||
                value.find_first_of("<>&\"'") != std::string_view::npos)
                return wrong;
        }
    }

    /// Takes name = "value".
    bool attribute(std::string_view& name, std::string_view& value) {
        const std::size_t start = at_;
        skipName();
        name = text_.substr(start, at_ - start);
        skipBlanks();
        if (name.empty() || !startsWith("=")) return false;
        ++at_;
        skipBlanks();
        if (!startsWith("\"") && !startsWith("'")) return false;
        const std::size_t end = text_.find(text_[at_], at_ + 1);
        if (end == std::string_view::npos) return false;
        value = text_.substr(at_ + 1, end - at_ - 1);
        at_ = end + 1;
        return true;
    }

    bool startsWith(std::string_view what) const { return text_.substr(at_, what.size()) == what; }
    void skipName() {
        while (at_ < text_.size() && isNameCharacter(text_[at_])) ++at_;
    }
    void skipBlanks() { at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size()); }
    /// Goes behind the end mark, looked for `offset` characters from here on.
    const char* skipPast(std::string_view end, std::size_t offset) {
        const std::size_t found = text_.find(end, at_ + offset);
        if (found == std::string_view::npos) return "the end of a tag or comment is missing";
        at_ = found + end.size();
        return nullptr;
    }

    std::string_view text_;
    std::size_t at_ = 0, attributes_ = 0;
    int depth_ = 0;
};

/// Whether the text is UTF-8 throughout. Only such text is given to the parser as UTF-8: at a broken character it would
/// lose its place.
bool isUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80                   ? 1
                                   : lead >= 0xc2 && lead < 0xe0 ? 2
                                   : lead >= 0xe0 && lead < 0xf0 ? 3
                                   : lead >= 0xf0 && lead < 0xf5 ? 4
                                                                 : 0;
        if (length == 0 || length > text.size() - i) return false;
        for (std::size_t k = 1; k < length; ++k)
            if ((static_cast<unsigned char>(text[i + k]) & 0xc0) != 0x80) return false;
        i += length;
    }
    return true;
}

/// A file's bytes, one more than allowed at most. Nothing, with errno, when it cannot be read.
std::optional<std::string> contentsOf(const std::string& path) {
    std::FILE* file = openFile(path, "rb");
    if (!file) return std::nullopt;
    std::string text;
    char block[65536];
    while (text.size() <= XmlFile::maxBytes) {
        const std::size_t count = std::fread(block, 1, sizeof block, file);
        if (count == 0) break;
        text.append(block, count);
    }
    const bool failed = std::ferror(file) != 0;
    const int reason = errno;
    std::fclose(file);
    if (!failed) return text;
    errno = reason;
    return std::nullopt;
}

/// Up to 60 characters of a value, for a message.
std::string inQuotes(std::string_view value) {
    return '"' + std::string(value.substr(0, 60)) + (value.size() > 60 ? "...\"" : "\"");
}

} // namespace

XmlFile::XmlFile() : document_(std::make_unique<TiXmlDocument>()) {}
XmlFile::~XmlFile() = default;

bool XmlFile::load(const std::string& path) {
    name_ = path;
    auto text = contentsOf(path);
    if (!text) {
        error_ = path + ": cannot be read: " + std::strerror(errno);
        return false;
    }
    return parse(std::move(*text), path);
}

bool XmlFile::parse(std::string text, const std::string& name) {
    name_ = name;
    const auto refuse = [&](const std::string& problem) {
        error_ = name_ + (problem.starts_with("line ") ? ", " : ": ") + problem;
        return false;
    };
    if (text.size() > maxBytes) return refuse("larger than 64 MB");
    if (text.starts_with("\xef\xbb\xbf")) text.erase(0, 3);
    if (text.find('\0') != std::string::npos) return refuse("not an XML file in UTF-8 (holds a zero byte)");
    if (text.find_first_not_of(blanks) == std::string::npos) return refuse("empty");
    if (const auto problem = StructureScan(text).problem()) return refuse(*problem);
    // Text that is not UTF-8 passes unchanged: paths written under another code page.
    document_->Parse(text.c_str(), nullptr, isUtf8(text) ? TIXML_ENCODING_UTF8 : TIXML_ENCODING_LEGACY);
    if (document_->Error()) return refuse(formatText("line %d: %s", document_->ErrorRow(), document_->ErrorDesc()));
    return true;
}

std::string XmlFile::place(const TiXmlElement* element) const {
    if (!element) return name_ + ": ";
    return name_ + formatText(", line %d: element %s: ", element->Row(), element->Value());
}

void XmlFile::fail(const TiXmlElement* element, const std::string& problem) {
    if (ok()) error_ = place(element) + problem;
}

std::vector<std::string> XmlFile::warnings() const {
    std::vector<std::string> all = warnings_;
    if (moreWarnings_ > 0) all.push_back(formatText("%s: %d more values are out of range", name_, moreWarnings_));
    return all;
}

void XmlFile::warnHeld(const TiXmlElement* element, const char* name, const std::string& limit) {
    if (!ok()) return;
    if (warnings_.size() == maxWarnings)
        ++moreWarnings_;
    else
        warnings_.push_back(place(element) + formatText("attribute \"%s\" is out of range: %s, held at %s", name,
                                                        inQuotes(element->Attribute(name)), limit));
}

const TiXmlElement* XmlFile::root(const char* name) {
    if (!ok()) return nullptr;
    const TiXmlElement* found = document_->FirstChildElement(name);
    if (!found) fail(nullptr, formatText("no root element %s", name));
    return found;
}

const TiXmlElement* XmlFile::root(const char* name, std::initializer_list<Form> forms) {
    const TiXmlElement* found = root(name);
    const std::string type = text(found, "type"), version = text(found, "version");
    if (!ok()) return nullptr;
    bool knownType = false;
    for (const Form& form : forms) {
        if (type != form.type) continue;
        knownType = true;
        if (version == formatText("%d", form.version)) return found;
    }
    if (knownType)
        failAttribute(found, "version", "is \"" + version + "\", which is not known for this type");
    else
        failAttribute(found, "type", "is \"" + type + "\", which is not what is wanted here");
    return nullptr;
}

const TiXmlElement* XmlFile::child(const TiXmlElement* parent, const char* name) {
    if (!parent) return nullptr;
    const TiXmlElement* found = parent->FirstChildElement(name);
    if (!found) fail(parent, formatText("no element %s in it", name));
    return found;
}

const char* XmlFile::attribute(const TiXmlElement* element, const char* name) {
    if (!element || !ok()) return nullptr;
    const char* value = element->Attribute(name);
    if (!value) failAttribute(element, name, "is missing");
    return value;
}

void XmlFile::failAttribute(const TiXmlElement* element, const char* name, const std::string& problem) {
    fail(element, formatText("attribute \"%s\" %s", name, problem));
}

std::string XmlFile::text(const TiXmlElement* element, const char* name) {
    const char* value = attribute(element, name);
    return value ? value : "";
}

template <class Real>
double XmlFile::number(const TiXmlElement* element, const char* name, const XmlRange& range) {
    const char* value = attribute(element, name);
    if (!value) return 0.0;
    std::string_view rest = value;
    const auto number = scanReal<Real>(rest);
    if (!number || std::isnan(*number)) {
        failAttribute(element, name, "is no number: " + inQuotes(value));
        return 0.0;
    }
    constexpr double largest = std::numeric_limits<Real>::max();
    const double min = std::max(range.min, -largest), max = std::min(range.max, largest);
    if (*number >= min && *number <= max) return *number;
    const double held = *number < min ? range.below.value_or(min) : max;
    warnHeld(element, name, formatText("%g", held));
    return held;
}

double XmlFile::real(const TiXmlElement* element, const char* name, const XmlRange& range) {
    return number<double>(element, name, range);
}

double XmlFile::single(const TiXmlElement* element, const char* name, const XmlRange& range) {
    return number<float>(element, name, range);
}

Vector3 XmlFile::triple(const TiXmlElement* element, const char* name) {
    const char* value = attribute(element, name);
    if (!value) return {};
    std::string_view rest = value;
    float numbers[3];
    for (float& number : numbers) {
        const auto scanned = scanReal<float>(rest);
        if (!scanned || std::isnan(*scanned)) {
            failAttribute(element, name, "is not three numbers: " + inQuotes(value));
            return {};
        }
        constexpr float largest = std::numeric_limits<float>::max();
        number = std::clamp(*scanned, -largest, largest);
        if (number != *scanned) warnHeld(element, name, formatText("%g", number));
    }
    return {numbers[0], numbers[1], numbers[2]};
}

bool XmlFile::flag(const TiXmlElement* element, const char* name) {
    const char* value = attribute(element, name);
    if (!value) return false;
    std::string_view rest = value;
    const auto number = scanInteger(rest);
    if (!number) failAttribute(element, name, "is no integer: " + inQuotes(value));
    return number.value_or(0) != 0;
}

std::uint32_t XmlFile::word(const TiXmlElement* element, const char* name) {
    const char* value = attribute(element, name);
    if (!value) return 0;
    std::string_view rest = value;
    const auto number = scanInteger(rest);
    if (!number) {
        failAttribute(element, name, "is no integer: " + inQuotes(value));
        return 0;
    }
    const std::int64_t held = std::clamp<std::int64_t>(*number, std::numeric_limits<std::int32_t>::min(),
                                                       std::numeric_limits<std::uint32_t>::max());
    if (held != *number) warnHeld(element, name, formatText("%d", held));
    return static_cast<std::uint32_t>(held);
}

} // namespace orvo
