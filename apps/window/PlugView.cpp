#include "PlugView.h"

#include "Editor.h"

#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <charconv>

namespace orvosky::window {

using host::scene::Attribute;
using host::scene::AttributeType;
using host::scene::Cell;
using host::scene::Numeric;

host::scene::Node* PlugView::node() const {
    const auto node = node_.lock();
    return node && node->inScene ? node.get() : nullptr;
}

bool PlugView::alive() const { return cell() != nullptr; }

Cell* PlugView::cell() const {
    host::scene::Node* at = node();
    return at && attribute_ && at->findAttribute(attribute_->longName) == attribute_.get() ? &at->cell(*attribute_)
                                                                                           : nullptr;
}

std::string PlugView::path() const {
    host::scene::Node* at = node();
    return at ? Editor::scene().displayName(*at) + "." + attribute_->longName : std::string();
}

std::string PlugView::path(int component) const {
    if (attribute_->type != AttributeType::Tuple) return path();
    host::scene::Node* at = node();
    return at ? Editor::scene().displayName(*at) + "." +
                    attribute_->children[static_cast<std::size_t>(component)]->longName
              : std::string();
}

std::string PlugView::quotedPath() const { return quoted(path()); }

int PlugView::components() const {
    if (attribute_->type == AttributeType::Tuple) return static_cast<int>(attribute_->children.size());
    return attribute_->isNumber() ? 1 : 0;
}

namespace {

const Attribute& part(const Attribute& attribute, int k) {
    return attribute.type == AttributeType::Tuple ? *attribute.children[static_cast<std::size_t>(k)] : attribute;
}

/// A number of single precision as one would write it: 0.45, not 0.44999998807907104.
double written(const Attribute& attribute, double number) {
    if (attribute.type != AttributeType::Numeric || attribute.numeric != host::scene::NumericType::Float) return number;
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, static_cast<float>(number)).ptr;
    std::from_chars(text, end, number);
    return number;
}

} // namespace

double PlugView::number(int k) const {
    Cell* at = cell();
    if (!at || components() <= k) return 0;
    try {
        host::scene::evaluate(*at);
        Cell& leaf = at->attribute.type == AttributeType::Tuple ? at->child(k) : *at;
        return written(leaf.attribute, host::scene::toUi(leaf.attribute, leaf.number()));
    } catch (const std::exception&) {
        return 0;
    }
}

double PlugView::initial(int k) const {
    const auto* n = std::get_if<Numeric>(&attribute_->defaultValue);
    const Attribute& leaf = part(*attribute_, k);
    if (n && k < n->count) return written(leaf, host::scene::toUi(leaf, n->get(k)));
    const auto* own = std::get_if<Numeric>(&leaf.defaultValue);
    return own ? written(leaf, host::scene::toUi(leaf, own->get())) : 0;
}

QString PlugView::text() const {
    Cell* at = cell();
    if (!at) return {};
    host::scene::evaluate(*at);
    const auto* text = std::get_if<std::string>(&at->value);
    return text ? QString::fromStdString(*text) : QString();
}

bool PlugView::differs() const {
    if (!alive()) return false;
    if (components() == 0) {
        const auto* initially = std::get_if<std::string>(&attribute_->defaultValue);
        return attribute_->type == AttributeType::String && text().toStdString() != (initially ? *initially : "");
    }
    for (int k = 0; k < components(); ++k)
        if (number(k) != initial(k)) return true;
    return false;
}

const host::scene::Limits& PlugView::limits(int k) const {
    // A tuple's parts have their own; one that has none has its tuple's.
    const auto& own = part(*attribute_, k).limits[0];
    if (own.min || own.max || own.softMin || own.softMax || attribute_->type != AttributeType::Tuple) return own;
    return attribute_->limits[k < 4 ? k : 0];
}

std::optional<double> PlugView::shown(const std::optional<double>& limit, int k) const {
    return limit ? std::optional(host::scene::toUi(part(*attribute_, k), *limit)) : std::nullopt;
}

std::optional<double> PlugView::min(int k) const { return shown(limits(k).min, k); }
std::optional<double> PlugView::max(int k) const { return shown(limits(k).max, k); }
std::optional<double> PlugView::softMin(int k) const { return shown(limits(k).softMin, k); }
std::optional<double> PlugView::softMax(int k) const { return shown(limits(k).softMax, k); }

bool PlugView::locked() const {
    const Cell* at = cell();
    if (!at) return true;
    for (const auto& child : at->children)
        if (child && child->locked) return true;
    return at->lockedHere();
}

const Cell* PlugView::feeding() const {
    const Cell* at = cell();
    if (!at) return nullptr;
    for (const Cell* c = at; c; c = c->parent)
        if (c->source) return c->source;
    for (const auto& child : at->children)
        if (child && child->source) return child->source;
    return nullptr;
}

QString PlugView::feed() const {
    const Cell* from = feeding();
    return from && !keyed() ? QString::fromStdString(from->name()) : QString();
}

bool PlugView::keyed() const {
    const Cell* from = feeding();
    return from && from->node.type.isA("animCurve");
}

bool PlugView::settable() const {
    const Cell* from = feeding();
    return alive() && !locked() && (!from || keyed()) && attribute_->writable;
}

} // namespace orvosky::window
