#pragma once

#include "scene/Node.h"

#include <QString>

#include <optional>
#include <string>

namespace orvosky::window {

/// An attribute of a node as a page shows it: what it holds now, what feeds it, what may be done with it. It is looked
/// up in the scene at each call; a node that is gone answers as an attribute without a value.
class PlugView {
public:
    PlugView() = default;
    PlugView(const host::scene::NodePtr& node, const host::scene::Attribute& attribute)
        : node_(node), attribute_(attribute.shared_from_this()) {}

    bool alive() const;
    host::scene::Node* node() const;
    const host::scene::Attribute& attribute() const { return *attribute_; }
    /// "|sky|skyShape.sunDir", for MEL; unquoted.
    std::string path() const;
    std::string path(int component) const; ///< of a component of a tuple
    std::string quotedPath() const;

    int components() const;          ///< of a number or a tuple; 0 for others
    double number(int k = 0) const;  ///< in the user's units
    double initial(int k = 0) const; ///< its default, in the user's units
    QString text() const;            ///< of a string
    bool differs() const;            ///< from the default
    /// @name Limits of a component in the user's units
    /// @{
    std::optional<double> min(int k = 0) const, max(int k = 0) const, softMin(int k = 0) const,
        softMax(int k = 0) const;
    /// @}

    bool locked() const;
    /// The plug that feeds it, a curve of keys aside: "sun.worldMatrix[0]"; empty for none.
    QString feed() const;
    bool keyed() const;
    /// Whether the user may set it: neither locked, nor fed by anything but keys.
    bool settable() const;

private:
    host::scene::Cell* cell() const;
    const host::scene::Cell* feeding() const;
    const host::scene::Limits& limits(int k) const;
    std::optional<double> shown(const std::optional<double>& limit, int k) const;

    std::weak_ptr<host::scene::Node> node_;
    std::shared_ptr<const host::scene::Attribute> attribute_;
};

} // namespace orvosky::window
