#include "files/NumberWords.h"
#include "files/SceneStatements.h"
#include "files/StatementFlags.h"
#include "scene/AttributeKind.h"

#include <algorithm>
#include <optional>

namespace host::files {

using namespace scene;

namespace {

/// The words of an addAttr statement, by flag.
class Definition {
public:
    explicit Definition(const Statement& s) {
        for (FlagReader words(addAttrFlags, s.words); !words.atEnd();) {
            if (!words.peek().isFlag()) {
                objects.push_back(words.next().text);
                continue;
            }
            // A later release may have others.
            const StatementFlag& flag = words.flag<UnknownHere>();
            values_[flag.shortName] = flag.values > 0 ? words.next().text : "1";
        }
    }

    bool has(std::string_view flag) const { return values_.contains(flag); }
    std::string text(std::string_view flag) const {
        const auto it = values_.find(flag);
        return it == values_.end() ? std::string() : std::string(it->second);
    }
    std::optional<double> number(std::string_view flag) const {
        const auto it = values_.find(flag);
        if (it == values_.end()) return std::nullopt;
        const auto v = parseNumber(it->second);
        if (!v) throw SceneError("addAttr: '" + std::string(it->second) + "' is not a number.");
        return v;
    }
    bool truth(std::string_view flag, bool otherwise) const {
        const auto v = number(flag);
        return v ? *v != 0 : otherwise;
    }

    std::vector<std::string_view> objects;

private:
    std::map<std::string_view, std::string_view> values_;
};

} // namespace

std::vector<std::pair<std::string, short>> enumFields(std::string_view text) {
    std::vector<std::pair<std::string, short>> fields;
    int next = 0;
    while (!text.empty()) {
        const auto colon = text.find(':');
        std::string_view field = text.substr(0, colon);
        if (const auto equals = field.rfind('='); equals != field.npos) {
            if (const auto index = parseInteger(field.substr(equals + 1));
                index && *index >= -32768 && *index <= 32767) {
                next = static_cast<int>(*index);
                field = field.substr(0, equals);
            }
        }
        if (next > 32767) throw SceneError("addAttr: too many enum names.");
        if (!field.empty()) fields.emplace_back(std::string(field), static_cast<short>(next++));
        if (colon == text.npos) break;
        text.remove_prefix(colon + 1);
    }
    return fields;
}

namespace {

AttributePtr makeAttribute(const Definition& d, const AttributeKind& kind, const FileUnits& units, bool isData) {
    const std::string longName = d.has("ln") ? d.text("ln") : d.text("sn");
    const std::string shortName = d.has("sn") ? d.text("sn") : longName;
    AttributePtr a;
    switch (kind.type) {
    case AttributeType::Tuple:
        if (isData) {
            // Numbers without attributes of their own: the children make them reachable.
            a = Attribute::tuple(longName, shortName, kind.numeric, kind.count);
        } else {
            a = std::make_shared<Attribute>();
            a->type = AttributeType::Tuple;
            a->numeric = kind.numeric;
            a->defaultValue = Numeric(kind.numeric, kind.count);
        }
        break;
    case AttributeType::String: a = Attribute::text(longName, shortName); break;
    case AttributeType::Matrix: a = Attribute::matrix(longName, shortName); break;
    case AttributeType::FloatMatrix:
        a = std::make_shared<Attribute>();
        a->defaultValue = MFloatMatrix();
        break;
    case AttributeType::Data: a = Attribute::data(longName, shortName, kind.data); break;
    case AttributeType::Message: a = Attribute::message(longName, shortName); break;
    case AttributeType::Compound: a = Attribute::compound(longName, shortName, {}); break;
    case AttributeType::Generic: a = std::make_shared<Attribute>(); break;
    default: {
        const double factor = units.factor(kind.type);
        a = std::make_shared<Attribute>();
        a->numeric = kind.numeric;
        a->defaultValue = Numeric(kind.numeric, 1, d.number("dv").value_or(0) * factor);
        Limits& l = a->limits[0];
        const auto limit = [&](std::string_view flag, std::string_view has) -> std::optional<double> {
            const auto v = d.number(flag);
            return v && d.truth(has, true) ? std::optional(*v * factor) : std::nullopt;
        };
        l.min = limit("min", "hnv");
        l.max = limit("max", "hxv");
        l.softMin = limit("smn", "hsn");
        l.softMax = limit("smx", "hsx");
        if (kind.type == AttributeType::Enum) a->fields = enumFields(d.text("en"));
    }
    }
    a->type = kind.type;
    a->longName = longName;
    a->shortName = shortName;
    a->niceName = d.text("nn");
    a->keyable = d.truth("k", false);
    a->hidden = d.truth("h", false);
    a->array = d.has("m");
    a->indexMatters = d.truth("im", true);
    a->cached = d.truth("ci", true);
    a->usedAsColor = d.has("uac");
    a->usedAsFilename = d.has("uaf");
    a->proxy = d.has("uap") || d.has("pxy");
    a->readable = d.truth("r", true);
    a->writable = d.truth("w", true);
    a->storable = d.truth("s", kind.type != AttributeType::Message);
    a->channelBox = d.truth("cb", false);
    a->disconnectBehavior = static_cast<int>(std::min(std::max(d.number("dcb").value_or(2), 0.0), 2.0));
    a->dynamic = true;
    return a;
}

} // namespace

Attribute* OpenCompounds::find(Attribute& in, std::string_view name) {
    if (in.named(name)) return &in;
    for (const auto& c : in.children)
        if (c->isCompound())
            if (Attribute* found = find(*c, name)) return found;
    return nullptr;
}

void OpenCompounds::enter(Scene& scene, Node& node, const AttributePtr& attribute) {
    // The default of a tuple is made of its parts'.
    const std::function<void(Attribute&)> gather = [&](Attribute& a) {
        for (const auto& c : a.children) gather(*c);
        auto* whole = a.type == AttributeType::Tuple ? std::get_if<Numeric>(&a.defaultValue) : nullptr;
        if (!whole) return;
        if (a.children.size() != whole->count)
            throw SceneError("The attribute '" + a.longName + "' needs " + std::to_string(whole->count) + " children.");
        for (const auto& c : a.children) {
            const auto* n = std::get_if<Numeric>(&c->defaultValue);
            if (!n || n->count != 1)
                throw SceneError("The attribute '" + a.longName + "' needs numbers as its children.");
            // The parent stores the numbers, so its type must hold those of angles and lengths, too.
            if (n->type == NumericType::Double && whole->type != NumericType::Double) {
                a.numeric = NumericType::Double;
                *whole = Numeric(NumericType::Double, whole->count);
            }
        }
        for (const auto& c : a.children) whole->set(c->childIndex, std::get<Numeric>(c->defaultValue).get());
    };
    gather(*attribute);
    scene.addAttribute(node, attribute);
}

void OpenCompounds::add(Scene& scene, Node& node, AttributePtr attribute, int children, const std::string& parent) {
    std::erase_if(open_, [](const Open& o) { return o.node.expired(); });
    const auto isOpen = [](const Attribute& a) { return a.isCompound() && a.children.empty(); };
    const bool waits = isOpen(*attribute);
    if (parent.empty()) {
        if (!waits) {
            enter(scene, node, attribute);
            return;
        }
        if (node.findAttribute(attribute->longName) || node.findAttribute(attribute->shortName))
            throw SceneError("Node '" + scene.displayName(node) + "' already has an attribute named '" +
                             attribute->longName + "'.");
        std::erase_if(
            open_, [&](const Open& o) { return o.node.lock().get() == &node && o.root->named(attribute->longName); });
        Open o{node.weak_from_this(), attribute, {}};
        o.missing[attribute.get()] = children;
        open_.push_back(std::move(o));
        return;
    }
    for (auto it = open_.begin(); it != open_.end(); ++it) {
        Attribute* above = it->node.lock().get() == &node ? find(*it->root, parent) : nullptr;
        if (!above) continue;
        if (above->child(attribute->longName) || above->child(attribute->shortName))
            throw SceneError("The attribute '" + parent + "' already has a child named '" + attribute->longName + "'.");
        int depth = 0;
        for (const Attribute* up = above; up; up = up->parent)
            if (++depth > 64) throw SceneError("Attributes are nested too deeply at '" + attribute->longName + "'.");
        if (waits) it->missing[attribute.get()] = children;
        above->addChild(std::move(attribute));
        if (--it->missing[above] <= 0) it->missing.erase(above);
        if (it->missing.empty()) {
            const AttributePtr whole = it->root;
            open_.erase(it);
            enter(scene, node, whole);
        }
        return;
    }
    throw SceneError("addAttr: the node '" + scene.displayName(node) + "' has no open compound attribute '" + parent +
                     "'.");
}

std::vector<std::string> OpenCompounds::close(Scene& scene) {
    std::vector<std::string> failures;
    for (Open& o : open_) {
        const auto node = o.node.lock();
        if (!node) continue;
        try {
            if (o.root->children.empty()) throw SceneError("it has no children");
            enter(scene, *node, o.root);
        } catch (const SceneError& e) {
            failures.push_back("The attribute '" + scene.displayName(*node) + "." + o.root->longName +
                               "' is left out: " + e.what());
        }
    }
    open_.clear();
    return failures;
}

void addAttrStatement(const StatementContext& c, Node& node, const Statement& s) {
    if (!node.unknownType.empty())
        throw UnknownHere("The node '" + c.scene.displayName(node) + "' is of a type that is not known here.");
    const Definition d(s);
    if (!d.has("ln") && !d.has("sn")) throw SceneError("addAttr: the name of the attribute is missing.");
    const std::string name = d.has("ln") ? d.text("ln") : d.text("sn");
    const bool valid = Scene::isValidName(name) && name.find(':') == name.npos;
    if (!valid) throw SceneError("addAttr: '" + name + "' is not a valid name of an attribute.");
    const bool isData = d.has("dt");
    const std::string type = isData ? d.text("dt") : d.has("at") ? d.text("at") : "double";
    const auto kind = isData ? dataTypeNamed(type) : attributeTypeNamed(type);
    if (!kind) throw UnknownHere("Attributes of the type '" + type + "' are not known here.");
    int children = kind->count;
    if (const auto n = d.number("nc")) children = *n >= 0 && *n < 1e6 ? static_cast<int>(*n) : 1'000'000;
    c.compounds.add(c.scene, node, makeAttribute(d, *kind, c.units, isData), children, d.text("p"));
}

std::vector<std::string_view> addAttrObjects(const Statement& s) { return Definition(s).objects; }

} // namespace host::files
