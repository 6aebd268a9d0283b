#include "base/NumberText.h"
#include "scene/AnimCurve.h"
#include "scene/Evaluation.h"
#include "scene/References.h"
#include "scene/Scene.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <tuple>

namespace host::scene {
namespace {

std::string formatLimit(double v) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, v, std::chars_format::general, 6).ptr;
    return std::string(text, end);
}

/// Holds the number against the limits, or throws.
double limited(const Cell& cell, const Limits& limits, double value, Scene::LimitPolicy policy) {
    if (policy == Scene::LimitPolicy::Ignore) return value;
    if (std::isnan(value) && (limits.min || limits.max))
        throw SceneError("Cannot set the attribute '" + cell.name() + "' to a value that is not a number.");
    // Limits are in internal units, the text for the user is in his.
    if (limits.min && value < *limits.min) {
        if (policy == Scene::LimitPolicy::Clamp) return *limits.min;
        throw SceneError("Cannot set the attribute '" + cell.name() + "' below its minimum value of " +
                         formatLimit(toUi(cell.attribute, *limits.min)) + ".");
    }
    if (limits.max && value > *limits.max) {
        if (policy == Scene::LimitPolicy::Clamp) return *limits.max;
        throw SceneError("Cannot set the attribute '" + cell.name() + "' past its maximum value of " +
                         formatLimit(toUi(cell.attribute, *limits.max)) + ".");
    }
    return value;
}

/// A change of what a reference brought is one that the scene makes.
void noteChange(Cell& cell) {
    if (cell.node.referenced) References::of(cell.node.scene).noteValue(cell);
}

void tellNodes(Cell& source, Cell& destination, bool made) {
    if (auto& b = source.node.behavior) b->connectionChanged(source, destination, true, made);
    if (auto& b = destination.node.behavior) b->connectionChanged(destination, source, false, made);
}

void tellValue(Cell& cell) {
    if (Observer* o = cell.node.scene.observer) o->valueSet(cell);
}

void tellAttribute(Node& node, const Attribute& attribute, Observer::AttributeEvent what) {
    if (Observer* o = node.scene.observer) o->attributeChanged(node, attribute, what);
}

/// Connects; the destination comes before another one of the source's, or behind all.
void join(Cell& source, Cell& destination, Cell* before = nullptr) {
    destination.source = &source;
    source.destinations.insert(destination, before);
    dirtyWithDependents(destination);
    tellNodes(source, destination, true);
    if (auto* o = source.node.scene.observer) o->connectionChanged(source, destination, true, false);
}

void part(Cell& source, Cell& destination) {
    destination.source = nullptr;
    destination.written = true;
    source.destinations.remove(destination);
    source.noteFreed();
    destination.noteFreed();
    dirtyDependents(destination);
    tellNodes(source, destination, false);
    if (auto* o = source.node.scene.observer) o->connectionChanged(source, destination, false, false);
}

/// The values and marks of a cell and of what it is made of, to be put back.
class Held {
public:
    explicit Held(Cell& cell) { take(cell); }

    void restore() const {
        for (const auto& [cell, value, written] : parts_) {
            int k = 0;
            if (!cell->isTupleChild())
                cell->value = value;
            else if (Numeric* n = cell->numbers(&k))
                n->set(k, std::get<Numeric>(value).get(k));
            cell->written = written;
            if (!written) cell->noteFreed();
        }
    }

private:
    void take(Cell& whole) {
        forEachCell(whole, [&](Cell& cell) {
            const Numeric* n = cell.isTupleChild() ? cell.numbers() : nullptr;
            parts_.emplace_back(&cell, n ? Value(*n) : cell.value, bool{cell.written});
        });
    }
    std::vector<std::tuple<Cell*, Value, bool>> parts_;
};

/// Before a value is set beside keys: what the curve gives now, so that this can be taken back.
void bringKeyed(Cell& cell) {
    const auto keyed = [](const Cell& c) { return c.source != nullptr; };
    if (anyCell(static_cast<const Cell&>(cell), keyed)) evaluate(cell);
}

Cell& ownerOfNumbers(Cell& cell) { return cell.isTupleChild() ? *cell.parent : cell; }

struct PathSegment {
    std::string_view name;
    bool indexed = false;
    int index = 0;
};

/// Takes "a[2].b" apart; empty when it is malformed.
std::vector<PathSegment> parsePath(std::string_view text) {
    std::vector<PathSegment> segments;
    while (true) {
        const auto dot = text.find('.');
        std::string_view word = text.substr(0, dot);
        PathSegment s;
        const auto bracket = word.find('[');
        s.name = word.substr(0, bracket);
        if (bracket != std::string_view::npos) {
            if (word.back() != ']') return {};
            const std::string_view digits = word.substr(bracket + 1, word.size() - bracket - 2);
            s.indexed = true;
            const auto index = readInt(digits);
            if (!index || *index < 0 || *index > Scene::maxArrayIndex) return {};
            s.index = *index;
        }
        if (s.name.empty()) return {};
        segments.push_back(s);
        if (dot == std::string_view::npos) return segments;
        text.remove_prefix(dot + 1);
    }
}

Cell* step(Cell* array, const PathSegment& s, bool create) {
    if (!s.indexed) return array;
    if (!array->attribute.array || array->index >= 0) {
        return nullptr;
    }
    const auto shown = [&] {
        const auto& behavior = array->node.behavior;
        return array->attribute.internal && behavior && behavior->hasElement(*array, s.index);
    };
    if (!create && !array->elements.contains(s.index) && !array->attribute.worldSpace && !shown()) return nullptr;
    return &array->element(s.index);
}

/// The part of that name: of the attribute, or of a plain compound within it; null when there is none.
const Attribute* partNamed(const Attribute& whole, std::string_view name) {
    if (const Attribute* part = whole.child(name)) return part;
    for (const auto& part : whole.children)
        if (part->isCompound() && !part->array)
            if (const Attribute* found = partNamed(*part, name)) return found;
    return nullptr;
}

Cell& partOf(Cell& cell, const Attribute& part) {
    Cell& whole = part.parent == &cell.attribute ? cell : partOf(cell, *part.parent);
    return whole.child(part.childIndex);
}

} // namespace

Cell* Scene::tryPlug(Node& node, std::string_view path, bool create) {
    const auto segments = parsePath(path);
    if (segments.empty()) return nullptr;
    const Attribute* attribute = node.findAttribute(segments[0].name);
    if (!attribute) {
        // An alias stands for an attribute, never for another alias.
        const auto head = [](std::string_view text) { return text.substr(0, text.find_first_of(".[")); };
        for (const auto& [alias, meant] : node.aliases)
            if (alias == head(path) && node.findAttribute(head(meant)))
                return tryPlug(node, meant + std::string(path.substr(alias.size())), create);
        return nullptr;
    }
    // A child of a plain compound may be named alone; one inside an array needs its element named.
    for (const Attribute* up = attribute->parent; up; up = up->parent)
        if (up->array) return nullptr;
    Cell* cell = step(&node.cell(*attribute), segments[0], create);
    for (std::size_t i = 1; cell && i < segments.size(); ++i) {
        if (cell->isArray()) {
            // Of what a node has for each of its places the first one's may be meant without its index.
            const bool ofPlace = cell->attribute.worldSpace || cell->attribute.longName == "instObjGroups";
            if (!ofPlace || (!create && !cell->elements.contains(0))) return nullptr;
            cell = &cell->element(0);
        }
        const Attribute* part = partNamed(cell->attribute, segments[i].name);
        if (!part) return nullptr;
        cell = step(&partOf(*cell, *part), segments[i], create);
    }
    return cell;
}

Cell* Scene::tryPlug(std::string_view text, bool create) {
    const auto dot = text.find('.');
    if (dot == std::string_view::npos) return nullptr;
    Node* node = findNode(text.substr(0, dot));
    return node ? tryPlug(*node, text.substr(dot + 1), create) : nullptr;
}

Cell& Scene::findPlug(std::string_view text) {
    const auto dot = text.find('.');
    bool ambiguous = false;
    if (dot != std::string_view::npos) {
        Node* node = findNode(text.substr(0, dot), &ambiguous);
        if (node) {
            if (Cell* c = tryPlug(*node, text.substr(dot + 1))) return *c;
        }
    }
    throw SceneError((ambiguous ? "More than one object matches name: " : "No object matches name: ") +
                     std::string(text));
}

namespace {

/// Throws unless the cell is open to be written: not locked, and none that matters here is fed by what `feeds` says.
template <class Feeds>
void requireOpen(const Cell& cell, const Feeds& feeds) {
    const auto fed = [&](const Cell& c) { return c.source && feeds(c); };
    bool held = cell.lockedHere();
    for (const Cell* c = &cell; c && !held; c = c->parent) held = fed(*c);
    if (held) throw SceneError("The attribute '" + cell.name() + "' is locked or connected and cannot be modified.");
    if (cell.attribute.type == AttributeType::Tuple)
        for (const auto& child : cell.children)
            if (child && (fed(*child) || child->locked))
                throw SceneError("The attribute '" + cell.name() +
                                 "' contains a locked or connected child and cannot be modified.");
    if (!cell.attribute.writable) throw SceneError("The attribute '" + cell.name() + "' cannot be written.");
}

} // namespace

void Scene::requireSettable(const Cell& cell) const {
    requireOpen(cell, [](const Cell& c) { return !curveOf(c); });
}

void Scene::requireFree(const Cell& cell) const {
    requireOpen(cell, [](const Cell&) { return true; });
}

void Scene::setNumber(Cell& cell, double value, LimitPolicy policy) {
    requireSettable(cell);
    bringKeyed(cell);
    if (!cell.source) noteChange(cell); // what is set beside keys passes, and no file has it
    int k = 0;
    Numeric* numbers = cell.numbers(&k);
    if (!numbers || cell.isArray() || cell.attribute.type == AttributeType::Tuple)
        throw SceneError("The attribute '" + cell.name() + "' is not a number.");
    value = limited(cell, cell.attribute.limits[0], value, policy);
    Numeric after = *numbers;
    after.set(k, value);
    Cell& owner = ownerOfNumbers(cell);
    if (cell.node.behavior && cell.attribute.internal && cell.node.behavior->setInternal(cell, after)) {
        dirtyDependents(cell);
        tellValue(cell);
        return;
    }
    const Numeric before = *numbers;
    const bool wasWritten = cell.written;
    owner.value = after;
    cell.written = true;
    cell.dirty = false;
    dirtyDependents(cell);
    if (undo.recording()) {
        const auto set = [k, &cell, &owner, keep = cell.node.shared_from_this()](const Numeric& to, bool written) {
            std::get<Numeric>(owner.value).set(k, to.get(k));
            cell.written = written;
            cell.dirty = false;
            if (!written) cell.noteFreed();
            dirtyDependents(cell);
            tellValue(cell);
        };
        record([set, after] { set(after, true); }, [set, before, wasWritten] { set(before, wasWritten); });
    } else {
        modified = true;
        ++generation_;
    }
    tellValue(cell);
}

void Scene::setInt64(Cell& cell, std::int64_t value) {
    if (cell.attribute.numeric != NumericType::Int64) {
        setNumber(cell, static_cast<double>(value));
        return;
    }
    Numeric n(NumericType::Int64, 1);
    n.setInt64(0, value);
    setValue(cell, n);
}

void Scene::setValue(Cell& cell, Value value, LimitPolicy policy) {
    requireSettable(cell);
    bringKeyed(cell);
    noteChange(cell);
    if (cell.isArray()) throw SceneError("The attribute '" + cell.name() + "' is an array; set its elements.");
    if (auto* n = std::get_if<Numeric>(&value)) {
        if (cell.isTupleChild()) {
            setNumber(cell, n->get(), policy);
            return;
        }
        const Numeric* held = std::get_if<Numeric>(&cell.value);
        if (!held || held->count != n->count)
            throw SceneError("The attribute '" + cell.name() + "' does not hold " + std::to_string(n->count) +
                             " numbers.");
        Numeric converted(held->type, held->count);
        for (int k = 0; k < n->count; ++k) {
            const bool tuple = cell.attribute.type == AttributeType::Tuple;
            const Limits& limits =
                tuple ? cell.attribute.children[static_cast<std::size_t>(k)]->limits[0] : cell.attribute.limits[0];
            if (n->type == NumericType::Int64)
                converted.setInt64(k, n->getInt64(k));
            else
                converted.set(k, limited(cell, limits, n->get(k), policy));
        }
        value = converted;
    } else if (cell.attribute.type != AttributeType::Generic) {
        const auto* data = std::get_if<DataPtr>(&value);
        const bool empties = std::holds_alternative<std::monostate>(value);
        const bool fits =
            cell.attribute.type == AttributeType::Data ? data || empties : cell.value.index() == value.index();
        if (!fits || (data && *data && (*data)->kind() != cell.attribute.dataKind))
            throw SceneError("The attribute '" + cell.name() + "' does not take a value of this type.");
    }
    if (cell.node.behavior && cell.attribute.internal && cell.node.behavior->setInternal(cell, value)) {
        dirtyDependents(cell);
        tellValue(cell);
        return;
    }
    const auto set = [&cell, keep = undo.recording() ? cell.node.shared_from_this() : nullptr](const Value& to,
                                                                                               bool written) {
        cell.value = to;
        cell.written = written;
        if (!written) cell.noteFreed();
        setClean(cell);
        dirtyDependents(cell);
        tellValue(cell);
    };
    if (undo.recording()) {
        Value before = cell.value;
        const bool wasWritten = cell.written;
        record([set, value] { set(value, true); },
               [set, before = std::move(before), wasWritten] { set(before, wasWritten); });
    } else {
        modified = true;
        ++generation_;
    }
    set(value, true);
}

void Scene::setLocked(Cell& cell, bool locked) {
    if (cell.locked == locked) return;
    noteChange(cell);
    const auto set = [&cell, keep = cell.node.shared_from_this()](bool to) {
        cell.locked = to;
        if (keep->scene.observer) keep->scene.observer->lockChanged(cell);
    };
    set(locked);
    record([set, locked] { set(locked); }, [set, locked] { set(!locked); });
}

void Scene::setKeyable(Cell& cell, bool keyable) {
    if (observer && !observer->mayChangeKeyable(cell, keyable)) return;
    noteChange(cell);
    const auto before = cell.keyable;
    const auto set = [&cell, keep = cell.node.shared_from_this()](std::optional<bool> to) {
        cell.keyable = to;
        if (keep->scene.observer) keep->scene.observer->keyableChanged(cell);
    };
    set(keyable);
    record([set, keyable] { set(keyable); }, [set, before] { set(before); });
}

void Scene::setChannelBox(Cell& cell, bool shown) {
    noteChange(cell);
    const auto before = cell.channelBox;
    const auto set = [&cell, keep = cell.node.shared_from_this()](std::optional<bool> to) { cell.channelBox = to; };
    set(shown);
    record([set, shown] { set(shown); }, [set, before] { set(before); });
}

void Scene::removeElement(Cell& element, bool breakConnections) {
    if (element.index < 0) throw SceneError("'" + element.name() + "' is not an element of an array.");
    if (element.attribute.internal && element.node.behavior &&
        element.node.behavior->hasElement(*element.parent, element.index))
        throw SceneError("'" + element.name() + "' cannot be removed alone.");
    const auto connected = [](const Cell& c) { return c.source || !c.destinations.empty(); };
    if (!breakConnections && anyCell(element, connected))
        throw SceneError("Cannot remove '" + element.name() + "' while it is connected.");
    cutConnections(element);
    Cell& array = *element.parent;
    const int index = element.index;
    // The cell itself is kept by the edit, so that pointers to it hold again after an undo.
    auto kept = std::make_shared<std::unique_ptr<Cell>>();
    const auto remove = [&array, index, kept, keep = array.node.shared_from_this()] {
        *kept = std::move(array.elements[index]);
        (*kept)->noteFreed();
        array.elements.erase(index);
        dirtyDependents(array);
        keep->scene.keepDeleted(kept);
        if (keep->scene.observer) keep->scene.observer->elementRemoved(array, index);
    };
    remove();
    record(remove, [&array, index, kept, keep = array.node.shared_from_this()] {
        array.elements[index] = std::move(*kept);
        dirtyDependents(array);
    });
}

void Scene::addAttribute(Node& node, AttributePtr attribute) {
    if (!node.addDynamic(attribute))
        throw SceneError("Node '" + displayName(node) + "' already has an attribute named '" + attribute->longName +
                         "'.");
    attribute->dynamic = true;
    if (node.referenced) References::of(*this).noteAttribute(*attribute);
    auto keep = node.shared_from_this();
    auto cell = std::make_shared<std::unique_ptr<Cell>>();
    record(
        [keep, attribute, cell] {
            keep->addDynamic(attribute);
            keep->putCell(std::move(*cell));
            tellAttribute(*keep, *attribute, Observer::AttributeEvent::Added);
        },
        [keep, attribute, cell] {
            *cell = keep->takeCell(*attribute);
            keep->removeDynamic(*attribute);
            tellAttribute(*keep, *attribute, Observer::AttributeEvent::Removed);
        });
    tellAttribute(node, *attribute, Observer::AttributeEvent::Added);
}

void Scene::deleteAttribute(Node& node, const Attribute& attribute) {
    if (!attribute.dynamic || attribute.parent)
        throw SceneError("The attribute '" + attribute.longName + "' cannot be deleted: it was not added to the node.");
    Cell& root = node.cell(attribute);
    cutConnections(root);
    auto keep = node.shared_from_this();
    auto cell = std::make_shared<std::unique_ptr<Cell>>(node.takeCell(attribute));
    AttributePtr kept = std::const_pointer_cast<Attribute>(attribute.shared_from_this());
    const auto& list = node.dynamicAttributes();
    const auto place = static_cast<std::size_t>(std::find(list.begin(), list.end(), kept) - list.begin());
    node.removeDynamic(attribute);
    keepDeleted(cell);
    record(
        [keep, kept, cell] {
            *cell = keep->takeCell(*kept);
            keep->removeDynamic(*kept);
            tellAttribute(*keep, *kept, Observer::AttributeEvent::Removed);
        },
        [keep, kept, cell, place] {
            keep->addDynamic(kept, place);
            keep->putCell(std::move(*cell));
            tellAttribute(*keep, *kept, Observer::AttributeEvent::Added);
        });
    tellAttribute(node, *kept, Observer::AttributeEvent::Removed);
}

void Scene::setAliases(Node& node, std::vector<std::pair<std::string, std::string>> aliases) {
    const auto set = [keep = node.shared_from_this()](const auto& to) { keep->aliases = to; };
    record([set, aliases] { set(aliases); }, [set, before = node.aliases] { set(before); });
    node.aliases = std::move(aliases);
}

void Scene::renameAttribute(Node& node, const Attribute& attribute, const std::string& name) {
    if (!attribute.root().dynamic)
        throw SceneError("The attribute '" + attribute.longName + "' cannot be renamed: it was not added to the node.");
    if (!isValidName(name) || name.find(':') != std::string::npos)
        throw SceneError("'" + name + "' is not a name for an attribute.");
    auto kept = std::const_pointer_cast<Attribute>(attribute.shared_from_this());
    const std::string longBefore = attribute.longName, shortBefore = attribute.shortName;
    auto keep = node.shared_from_this();
    if (!node.renameDynamic(*kept, name, name))
        throw SceneError("Node '" + displayName(node) + "' already has an attribute named '" + name + "'.");
    const auto set = [keep, kept](const std::string& longName, const std::string& shortName) {
        keep->renameDynamic(*kept, longName, shortName);
        tellAttribute(*keep, *kept, Observer::AttributeEvent::Renamed);
    };
    record([set, name] { set(name, name); }, [set, longBefore, shortBefore] { set(longBefore, shortBefore); });
    tellAttribute(node, *kept, Observer::AttributeEvent::Renamed);
}

void Scene::connect(Cell& source, Cell& destination, bool force) {
    const std::string pair = "'" + source.name() + "' to '" + destination.name() + "'";
    if (destination.source == &source)
        throw SceneError("'" + source.name() + "' is already connected to '" + destination.name() + "'.");
    if (!source.attribute.readable) throw SceneError("Cannot connect " + pair + ": the source is not readable.");
    if (!destination.attribute.writable)
        throw SceneError("Cannot connect " + pair + ": the destination is not writable.");
    if (!source.attribute.connectable || !destination.attribute.connectable)
        throw SceneError("Cannot connect " + pair + ": not connectable.");
    if (&source == &destination) throw SceneError("Cannot connect " + pair + ": an attribute to itself.");
    if (!compatible(source, destination))
        throw SceneError("Cannot connect " + pair + ": data types are not compatible.");
    if (destination.lockedHere()) throw SceneError("Cannot connect " + pair + ": the destination attribute is locked.");
    if (destination.source) {
        if (!force)
            throw SceneError("The attribute '" + destination.name() +
                             "' cannot be modified: it is already connected to '" + destination.source->name() + "'.");
        disconnect(*destination.source, destination);
    }
    for (auto* side : {&source, &destination}) {
        Cell& other = side == &source ? destination : source;
        if (!side->node.behavior) continue;
        const auto legal = side->node.behavior->legal(*side, other, side == &source, true);
        if (legal && !*legal) throw SceneError("Cannot connect " + pair + ": the node does not allow it.");
    }
    const NodePtr a = source.node.shared_from_this(), b = destination.node.shared_from_this();
    // What the destination held comes back with an undo.
    const Held before(destination);
    if (observer) {
        observer->connectionChanged(source, destination, true, true);
        if (!a->inScene || !b->inScene || destination.source) return; // somebody else saw to it meanwhile
    }
    join(source, destination);
    record([=, &source, &destination] { (void)a, (void)b, join(source, destination); },
           [=, &source, &destination] {
               (void)a, (void)b, part(source, destination);
               before.restore();
               dirtyDependents(destination);
           });
}

void Scene::cutConnections(Cell& cell) {
    // Listed first: whoever is told of a cut may look at other parts of the attribute, which makes cells.
    std::vector<Cell*> parts;
    forEachCell(cell, [&](Cell& c) { parts.push_back(&c); });
    for (Cell* c : parts) {
        if (c->source) disconnect(*c->source, *c);
        while (!c->destinations.empty()) disconnect(*c, *c->destinations.back());
    }
}

void Scene::disconnect(Cell& source, Cell& destination) {
    if (destination.source != &source)
        throw SceneError("There is no connection from '" + source.name() + "' to '" + destination.name() + "'.");
    if (source.node.referenced || destination.node.referenced) References::of(*this).noteBroken(source, destination);
    // What flowed last stays as the destination's own value.
    evaluate(destination);
    const NodePtr a = source.node.shared_from_this(), b = destination.node.shared_from_this();
    const Held before(destination);
    if (observer) {
        observer->connectionChanged(source, destination, false, true);
        if (destination.source != &source) return;
    }
    Cell* const next = destination.nextFed;
    part(source, destination);
    const Held after(destination);
    record(
        [=, &source, &destination] {
            (void)a, (void)b, part(source, destination);
            after.restore();
            dirtyDependents(destination);
        },
        [=, &source, &destination] {
            (void)a, (void)b, before.restore();
            // What has been changed without being recorded may have taken the next one away.
            join(source, destination, source.destinations.contains(next) ? next : nullptr);
        });
}

Cell& Scene::nextAvailable(Cell& array) {
    const auto used = [](const Cell& c) { return c.source || !c.destinations.empty() || c.written; };
    int& free = array.inUse;
    for (auto at = array.elements.lower_bound(free); at != array.elements.end() && at->first == free; ++at, ++free)
        if (!anyCell(static_cast<const Cell&>(*at->second), used)) break;
    return array.element(free);
}

} // namespace host::scene
