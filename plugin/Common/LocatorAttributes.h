#pragma once

#include "SourcePlace.h"

#include <array>
#include <initializer_list>
#include <maya/MObject.h>
#include <optional>

namespace orvo {

/// Limits of a numeric attribute. Hard limits cannot be passed; soft ones bound the slider only.
struct AttributeLimits {
    std::optional<double> min{}, max{}, softMin{}, softMax{};
};

/// An attribute's flags; the host's own defaults hold for what is not named.
struct AttributeFlags {
    bool storable = true, readable = true, writable = true;
    std::optional<bool> keyable{}, hidden{};
};

/// Creates the attributes of a node type, one call an attribute: created with equal long and short names, made
/// storable, readable and writable, given limits and default, added to the node. Every step is tested; a failure is
/// reported with the place of the call, and the next step follows all the same.
///
/// For use in a node's `initialize`. Each call answers the new attribute.
class LocatorAttributes {
public:
    using Where = SourcePlace;
    using Triple = std::array<double, 3>;
    struct EnumField {
        const char* name;
        short value;
    };

    static MObject boolean(const char* name, bool defaultValue, const AttributeFlags& flags = {},
                           const Where& where = Where::current());
    static MObject integer(const char* name, int defaultValue, const AttributeLimits& limits = {},
                           const AttributeFlags& flags = {}, const Where& where = Where::current());
    static MObject real(const char* name, double defaultValue, const AttributeLimits& limits = {},
                        const AttributeFlags& flags = {}, const Where& where = Where::current());
    /// Three doubles; the hard limits hold for each of them.
    static MObject vector(const char* name, const Triple& defaultValue, const AttributeLimits& limits = {},
                          const AttributeFlags& flags = {}, const Where& where = Where::current());
    /// Three floats, shown as a colour.
    static MObject colour(const char* name, const Triple& defaultValue, const AttributeFlags& flags = {},
                          const Where& where = Where::current());
    static MObject enumeration(const char* name, short defaultValue, std::initializer_list<EnumField> fields,
                               const AttributeFlags& flags = {}, const Where& where = Where::current());
    /// A text, empty at first.
    static MObject text(const char* name, const AttributeFlags& flags = {}, const Where& where = Where::current());
    /// A text that names a file or a folder; the host knows it as such.
    static MObject filePath(const char* name, const AttributeFlags& flags = {}, const Where& where = Where::current());
};

} // namespace orvo
