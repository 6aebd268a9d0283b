#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// What `orvosky inspect` learns of a file. It reads exported files by their documentation alone: it shares no code
/// with the plug-in that writes them.
namespace orvosky::inspect {

using Triple = std::array<double, 3>;
using Value = std::variant<std::int64_t, double, Triple, std::string>;

/// A value of a file, or one worked out from it.
struct NamedValue {
    std::string name;
    Value value;
    std::string_view unit = {}; ///< empty for what has none
};

/// One element, read and checked. A value that cannot be read as what it should be is kept as text.
struct Element {
    std::string name;
    int number = 0; ///< counted from 1 among the elements of its name; 0 where there can be only one
    int line = 0;
    std::vector<NamedValue> attributes = {};
    std::vector<NamedValue> derived = {}; ///< worked out
    std::vector<Element> children = {};

    /// A value of the given type, by the attribute's name.
    template <class T>
    std::optional<T> get(std::string_view attribute) const {
        for (const NamedValue& a : attributes)
            if (a.name == attribute && std::holds_alternative<T>(a.value)) return std::get<T>(a.value);
        return std::nullopt;
    }
    /// "ParticleCloud 3"
    std::string described() const { return number ? name + " " + std::to_string(number) : name; }
};

/// What does not fit. Only the first hundred are kept as text.
class Problems {
public:
    void add(int line, std::string_view where, std::string_view what);
    void add(const Element& element, std::string_view what) { add(element.line, element.described(), what); }
    std::size_t count() const { return count_; }
    const std::vector<std::string>& texts() const { return texts_; }

private:
    static constexpr std::size_t kept = 100;
    std::vector<std::string> texts_;
    std::size_t count_ = 0;
};

/// The companion file of a sky scene.
struct DataFile {
    std::string file;
    std::uint64_t size = 0; ///< bytes
    bool endMark = false;   ///< whether the last byte is 1
};

struct Inspection {
    std::string file;
    std::string type;         ///< of the root element
    std::string version = {}; ///< of the root element
    std::vector<Element> elements = {};
    std::optional<DataFile> data = {};
    std::vector<std::string> notes = {};    ///< worth knowing, but no fault
    std::vector<std::string> warnings = {}; ///< of the files that it names
    Problems problems = {};
};

/// Reads and checks a sky scene with its data, a cloud, a cloud library or a file of shading parameters.
/// Throws Failure, which names the file, when it cannot be read at all or is none of these.
Inspection inspectFile(const std::string& file);

/// "1 byte", "2 bytes"
std::string counted(std::uint64_t count, std::string_view noun);

/// The text with what would steer a terminal shown as \xNN; long ones are cut where `limit` is given.
std::string printable(std::string_view text, std::size_t limit = std::string_view::npos);

} // namespace orvosky::inspect
