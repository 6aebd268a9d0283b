#include "scene/Evaluation.h"

#include "base/Messages.h"
#include "base/Units.h"
#include "scene/Scene.h"

#include <algorithm>
#include <unordered_set>

namespace host::scene {
namespace {

void setDirtyBelow(Cell& cell, bool dirty) {
    cell.dirty = dirty;
    for (auto& c : cell.children)
        if (c) setDirtyBelow(*c, dirty);
    for (auto& [index, c] : cell.elements) setDirtyBelow(*c, dirty);
}

/// Whether a change of the attribute moves the node or what is below it.
bool affectsWorldMatrix(const DagNode& node, const Attribute& attribute) {
    const std::string& root = attribute.root().longName;
    if (root == "inheritsTransform" || root == "offsetParentMatrix") return true;
    if (!node.isTransform()) return false;
    const Attribute* matrix = node.type.find("matrix");
    std::vector<const Attribute*> affected;
    for (const Attribute* a = &attribute; a; a = a->parent) node.type.affected(*a, affected);
    return std::find(affected.begin(), affected.end(), matrix) != affected.end();
}

/// One wave of dirt: visits each cell once, whatever cycles the connections form.
class Wave {
public:
    void dependents(Cell& cell) {
        pending_.push_back(&cell);
        while (!pending_.empty()) {
            Cell* c = pending_.back();
            pending_.pop_back();
            if (visited_.insert(c).second) spread(*c);
        }
    }

    void mark(Cell& cell) {
        setDirtyBelow(cell, true);
        for (Cell* up = cell.parent; up; up = up->parent) up->dirty = true;
        pending_.push_back(&cell);
    }

private:
    void destinationsBelow(Cell& cell) {
        for (Cell* d : cell.destinations) mark(*d);
        for (auto& c : cell.children)
            if (c) destinationsBelow(*c);
        for (auto& [index, c] : cell.elements) destinationsBelow(*c);
    }

    void spread(Cell& cell) {
        // A change of a part is a change of the whole, and of every part below.
        destinationsBelow(cell);
        for (Cell* up = cell.parent; up; up = up->parent)
            for (Cell* d : up->destinations) mark(*d);

        Node& node = cell.node;
        std::vector<const Attribute*> affected;
        for (const Attribute* a = &cell.attribute; a; a = a->parent) node.type.affected(*a, affected);
        collectBelow(cell.attribute, node.type, affected);
        for (const Attribute* a : affected) {
            // Only cells that somebody has looked at can have anything to forget.
            Cell* root = node.existingCell(a->root());
            if (root) markAttribute(*root, *a);
        }
        if (node.behavior) {
            std::vector<Cell*> more;
            node.behavior->dependents(cell, more);
            for (Cell* c : more) mark(*c);
        }
        if (DagNode* dag = node.dag(); dag && affectsWorldMatrix(*dag, cell.attribute)) {
            std::vector<Cell*> stale;
            dag->forgetWorld(stale);
            for (Cell* c : stale) mark(*c);
        }
    }

    static void collectBelow(const Attribute& a, const NodeType& type, std::vector<const Attribute*>& out) {
        for (const auto& c : a.children) {
            type.affected(*c, out);
            collectBelow(*c, type, out);
        }
    }

    void markAttribute(Cell& cell, const Attribute& wanted) {
        if (&cell.attribute == &wanted && cell.index < 0) {
            mark(cell);
            return;
        }
        for (auto& c : cell.children)
            if (c) markAttribute(*c, wanted);
        for (auto& [index, c] : cell.elements) markAttribute(*c, wanted);
    }

    std::vector<Cell*> pending_;
    std::unordered_set<Cell*> visited_;
};

/// Between kinds of attributes a number flows in the user's units, as if through a unit conversion.
double converted(const Attribute& from, const Attribute& to, double v) {
    return from.type == to.type ? v : fromUi(to, toUi(from, v));
}

void reportCycle(Cell& cell) {
    if (cell.node.scene.noteCycle(cell)) showWarning("Cycle on '" + cell.name() + "' may not evaluate as expected.");
}

} // namespace

void setClean(Cell& cell) { setDirtyBelow(cell, false); }

void dirtyDependents(Cell& cell) { Wave().dependents(cell); }

void dirtyWorld(DagNode& node) {
    std::vector<Cell*> stale;
    node.forgetWorld(stale);
    for (Cell* c : stale) dirtyWithDependents(*c);
}

void dirtyWithDependents(Cell& cell) {
    setDirtyBelow(cell, true);
    for (Cell* up = cell.parent; up; up = up->parent) up->dirty = true;
    Wave().dependents(cell);
}

double toUi(const Attribute& attribute, double v) {
    switch (attribute.type) {
    case AttributeType::Angle: return v / radiansPer(angularUnit());
    case AttributeType::Distance: return v / centimetresPer(linearUnit());
    case AttributeType::Time: return v / timeUnit().ticks;
    default: return v;
    }
}

double fromUi(const Attribute& attribute, double v) {
    switch (attribute.type) {
    case AttributeType::Angle: return v * radiansPer(angularUnit());
    case AttributeType::Distance: return v * centimetresPer(linearUnit());
    case AttributeType::Time: return v * timeUnit().ticks;
    default: return v;
    }
}

bool compatible(const Cell& source, const Cell& destination) {
    const Attribute &a = source.attribute, &b = destination.attribute;
    if (source.isArray() != destination.isArray()) return false;
    if (b.type == AttributeType::Message || a.type == AttributeType::Message) return b.type == AttributeType::Message;
    if (b.type == AttributeType::Generic || a.type == AttributeType::Generic) return true;
    if (a.isNumber() && b.isNumber()) return true;
    if (a.type == AttributeType::Tuple && b.type == AttributeType::Tuple) return a.children.size() == b.children.size();
    if (a.type != b.type) return false;
    if (a.type == AttributeType::Data) return a.dataKind == b.dataKind;
    if (a.type == AttributeType::Compound) return a.children.size() == b.children.size();
    return true;
}

void assign(Cell& destination, Cell& source) {
    const Attribute &from = source.attribute, &to = destination.attribute;
    int j = 0, k = 0;
    if (to.type == AttributeType::Generic || from.type == AttributeType::Generic) {
        // Numbers go in and out as they are held, in internal units.
        const Numeric* s = source.numbers(&j);
        Numeric* d = to.type == AttributeType::Generic ? nullptr : destination.numbers(&k);
        if (!s || (!d && !source.isTupleChild()))
            destination.value = to.type == AttributeType::Generic ? source.value : destination.value;
        else if (!d)
            destination.value = Numeric(s->type, 1, s->get(j));
        else
            for (int i = 0; k + i < d->count && j + i < s->count; ++i) d->set(k + i, s->get(j + i));
    } else if (to.type == AttributeType::Tuple && from.type == AttributeType::Tuple) {
        Numeric* d = destination.numbers();
        const Numeric* s = source.numbers();
        for (int i = 0; d && s && i < d->count && i < s->count; ++i) {
            const auto& fromChild = *from.children[static_cast<std::size_t>(i)];
            const auto& toChild = *to.children[static_cast<std::size_t>(i)];
            d->set(i, converted(fromChild, toChild, s->get(i)));
        }
    } else if (to.isNumber() && from.isNumber()) {
        Numeric* d = destination.numbers(&k);
        const Numeric* s = source.numbers(&j);
        if (!d || !s) return;
        if (d->type == NumericType::Int64 && s->type == NumericType::Int64)
            d->setInt64(k, s->getInt64(j));
        else
            d->set(k, converted(from, to, s->get(j)));
    } else if (to.type == AttributeType::Compound) {
        for (std::size_t i = 0; i < to.children.size() && i < from.children.size(); ++i) {
            Cell& s = source.child(static_cast<int>(i));
            evaluate(s);
            assign(destination.child(static_cast<int>(i)), s);
        }
    } else if (to.type == from.type) {
        destination.value = source.value;
    }
}

namespace {

/// Brings a connected cell up to date. A chain of connections is walked down and back without recursion, so that its
/// length costs no stack.
void followSources(Cell& cell) {
    struct Chain {
        std::vector<Cell*> cells;
        ~Chain() {
            for (std::size_t i = 1; i < cells.size(); ++i) cells[i]->computing = false;
        }
    } chain{{&cell}};
    while (true) {
        Cell* next = chain.cells.back()->source;
        if (!next->source || !next->dirty || next->computing || next->attribute.internal) break;
        next->computing = true;
        chain.cells.push_back(next);
    }
    evaluate(*chain.cells.back()->source);
    for (auto it = chain.cells.rbegin(); it != chain.cells.rend(); ++it) {
        assign(**it, *(*it)->source);
        setDirtyBelow(**it, false);
    }
}

} // namespace

void evaluate(Cell& cell) {
    if (cell.node.behavior && cell.attribute.internal && cell.node.behavior->getInternal(cell)) return;
    if (!cell.dirty) return;
    if (cell.computing) {
        reportCycle(cell);
        return;
    }
    if (cell.node.scene.evaluationDepth >= Scene::maxEvaluationDepth) {
        // A chain this long would end on the stack's guard page; the value stays as it was.
        if (cell.node.scene.noteCycle(cell))
            showWarning("Too many nodes depend on one another above '" + cell.name() + "': it is not evaluated.");
        return;
    }
    struct Guard {
        Cell& cell;
        explicit Guard(Cell& c) : cell(c) {
            cell.computing = true;
            ++cell.node.scene.evaluationDepth;
        }
        ~Guard() {
            cell.computing = false;
            --cell.node.scene.evaluationDepth;
        }
    } guard(cell);

    if (cell.source) {
        followSources(cell);
        return;
    }
    // A connection to the compound around feeds its parts, too.
    for (Cell* up = cell.parent; up; up = up->parent) {
        if (!up->source || up->computing) continue;
        evaluate(*up);
        cell.dirty = false;
        return;
    }
    if (cell.node.isComputed(cell.attribute)) {
        if (cell.node.behavior) cell.node.behavior->compute(cell);
        cell.dirty = false;
        return;
    }
    cell.dirty = false;
    if (cell.isArray()) {
        for (auto& [index, c] : cell.elements) evaluate(*c);
        return;
    }
    for (std::size_t i = 0; i < cell.attribute.children.size(); ++i) {
        const Attribute& part = *cell.attribute.children[i];
        const bool exists = i < cell.children.size() && cell.children[i];
        if (exists || cell.node.isComputed(part)) evaluate(cell.child(static_cast<int>(i)));
    }
}

} // namespace host::scene
