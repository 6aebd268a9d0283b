#pragma once

#include "files/FileUnits.h"
#include "scene/Scene.h"

#include <string>
#include <string_view>

namespace host::files {

/// The name of a plug below its node, in short names. `source`: the first element of an array of a node's instances
/// is meant by the array's own name.
std::string plugText(const scene::Cell& cell, bool source);

/// Writes the addAttr and setAttr statements of a node.
class AttributeWriter {
public:
    AttributeWriter(const FileUnits& units, std::string& out) : units_(units), out_(out) {}
    void write(scene::Node& node);

    /// Writes one plug's value and states, whatever they are.
    void plug(scene::Cell& cell);
    /// Writes what makes an added attribute.
    void define(const scene::Attribute& attribute);

private:
    void cell(scene::Cell& cell);
    void array(scene::Cell& cell);
    void value(scene::Cell& cell, const std::string& flags);
    void states(scene::Cell& cell, std::string& flags) const;
    void mesh(scene::Node& node);
    void curve(scene::Node& node);
    void listStates(scene::Cell& list);
    template <class Put>
    void pieces(const std::string& list, const char* type, std::size_t first, std::size_t count, std::size_t all,
                std::size_t most, std::size_t width, Put put);
    void number(scene::Cell& leaf);
    void number(const scene::Attribute& attribute, double value);
    bool differs(scene::Cell& cell) const;

    const FileUnits& units_;
    std::string& out_;
};

} // namespace host::files
