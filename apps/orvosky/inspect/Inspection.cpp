#include "Inspection.h"

#include "../Failure.h"
#include "CloudFile.h"
#include "SceneFile.h"
#include "XmlFile.h"

#include <fmt/format.h>

namespace orvosky::inspect {

void Problems::add(int line, std::string_view where, std::string_view what) {
    if (++count_ <= kept) texts_.push_back(fmt::format("line {}, {}: {}", line, where, what));
}

std::string counted(std::uint64_t count, std::string_view noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string printable(std::string_view text, std::size_t limit) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const bool continues = (byte & 0xC0) == 0x80;
        if (shown.size() >= limit && !continues) return shown + "...";
        // Beside ASCII's control characters there are those of U+0080 to U+009F.
        const bool control = byte < 0x20 || byte == 0x7F ||
                             (byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0);
        if (control && byte == 0xC2)
            shown += fmt::format("\\x{:02X}", static_cast<unsigned char>(text[++i]));
        else if (control)
            shown += fmt::format("\\x{:02X}", byte);
        else
            shown += text[i];
    }
    return shown;
}

Inspection inspectFile(const std::string& file) {
    const XmlFile xml(file);
    const XmlElement root = xml.root();
    const std::string name = printable(file);
    if (root.name() != "OrvoAtmosphere")
        throw Failure(
            fmt::format("{}: the root element is <{}>, not <OrvoAtmosphere>.", name, printable(root.name(), 60)));
    const auto type = root.attribute("type");
    if (!type) throw Failure(name + ": <OrvoAtmosphere> has no 'type', so its content is unknown.");

    Inspection found{.file = file, .type = *type};
    struct Document {
        const char* type;
        const char* version;
        void (*inspect)(const XmlElement&, Inspection&);
    };
    static constexpr Document documents[] = {
        {"SceneDefinition", "7", inspectScene},
        {"Modeler_ParticleCloud", "1", inspectCloud},
        {"Modeler_ParticleCloudLibrary", "1", inspectCloudLibrary},
        {"Modeler_ParticleCloudShadingParams", "2", inspectShadingParams},
    };
    for (const Document& document : documents) {
        if (*type != document.type) continue;
        const auto version = root.attribute("version");
        if (version) found.version = *version;
        if (!version)
            found.problems.add(root.line(), "OrvoAtmosphere", "the attribute 'version' is missing");
        else if (*version != document.version)
            found.problems.add(root.line(), "OrvoAtmosphere",
                               fmt::format("the version is '{}', not '{}'", printable(*version, 60), document.version));
        for (const std::string_view name : root.attributeNames())
            if (name != "type" && name != "version")
                found.problems.add(root.line(), "OrvoAtmosphere", "unknown attribute '" + printable(name, 60) + "'");
        document.inspect(root, found);
        return found;
    }
    throw Failure(
        fmt::format("{}: unknown type '{}'; sky scenes, clouds, cloud libraries and shading parameters can be "
                    "inspected.",
                    name, printable(*type, 60)));
}

} // namespace orvosky::inspect
