#include "scene/Evaluation.h"

#include "base/Messages.h"
#include "base/Units.h"
#include "scene/Scene.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace host::scene {
namespace {

/// Whether nothing is below the cell.
bool isLeaf(const Cell& cell) { return cell.attribute.children.empty() && !cell.isArray(); }

void setDirtyBelow(Cell& cell, bool dirty) {
    if (isLeaf(cell))
        cell.dirty = dirty;
    else
        forEachCell(cell, [dirty](Cell& c) { c.dirty = dirty; });
}

/// One wave of dirt: visits each cell once, whatever cycles the connections form.
class Wave {
public:
    Wave() : number_(++last_), nested_(running_ > 0) { ++running_; }
    ~Wave() { --running_; }
    Wave(const Wave&) = delete;
    Wave& operator=(const Wave&) = delete;

    void dependents(Cell& cell) {
        Observer* const observer = cell.node.scene.observer;
        telling_ = observer && observer->wantsDirt();
        pending_.push_back(&cell);
        while (!pending_.empty()) {
            Cell* c = pending_.back();
            pending_.pop_back();
            if (!isNew(*c)) continue;
            if (telling_) dirty_.push_back(c);
            spread(*c);
        }
        // Told of at the end: whoever is told may change the scene.
        if (telling_) observer->dirtied(dirty_);
        for (DagNode* node : moved_)
            if (observer == node->scene.observer) observer->worldMoved(*node);
    }

    void mark(Cell& cell) {
        setDirtyBelow(cell, true);
        for (Cell* up = cell.parent; up; up = up->parent) up->dirty = true;
        pending_.push_back(&cell);
    }

private:
    /// A wave that a node starts while another one comes by leaves that one's marks alone.
    bool isNew(Cell& cell) {
        if (nested_) return visited_.insert(&cell).second;
        if (cell.wave == number_) return false;
        cell.wave = number_;
        return true;
    }

    void spread(Cell& cell) {
        // A change of a part is a change of the whole, and of every part below.
        const auto feed = [this](Cell& part) {
            for (Cell* d : part.destinations) mark(*d);
        };
        if (isLeaf(cell))
            feed(cell);
        else
            forEachCell(cell, feed);
        for (Cell* up = cell.parent; up; up = up->parent)
            for (Cell* d : up->destinations) mark(*d);

        Node& node = cell.node;
        const AttributeFlow& flow = cell.flow();
        for (const Attribute* a : flow.affected) {
            // Only cells that somebody has looked at can have anything to forget.
            Cell* root = node.existingCell(a->root());
            if (root) markAttribute(*root, *a);
        }
        if (node.type.tellsDependents && node.behavior) {
            std::vector<Cell*> more;
            node.behavior->dependents(cell, more);
            for (Cell* c : more) mark(*c);
        }
        if (flow.movesWorld) {
            std::vector<Cell*> stale;
            DagNode* const dag = node.dag();
            dag->forgetWorld(stale);
            for (Cell* c : stale) mark(*c);
            if (dag->scene.observer) moved_.push_back(dag);
        }
    }

    void markAttribute(Cell& root, const Attribute& wanted) {
        if (&root.attribute == &wanted) return mark(root);
        forEachCell(root, [&](Cell& c) {
            if (&c.attribute == &wanted && c.index < 0) mark(c);
        });
    }

    static inline unsigned long last_ = 0;
    static inline int running_ = 0;
    unsigned long number_;
    bool nested_;
    std::vector<Cell*> pending_;
    std::unordered_set<Cell*> visited_;
    std::vector<Cell*> dirty_;
    std::vector<DagNode*> moved_;
    bool telling_ = false;
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
    if (node.scene.observer && node.inScene) node.scene.observer->worldMoved(node);
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
    if (b.type == AttributeType::Generic && a.type != AttributeType::Generic) {
        const auto kind = a.type == AttributeType::Data ? ValueKind{ValueKind::Form::Data, a.dataKind}
                                                        : kindOf(a.defaultValue).value_or(ValueKind{});
        return b.accepts(kind);
    }
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

/// Whether a cell only passes on what flows into it, and has not done so yet.
bool passesOn(const Cell& cell) { return cell.source && cell.dirty && !cell.computing && !cell.attribute.internal; }

/// Takes over what its source has. Whoever computes that may have broken the connection.
void takeOver(Cell& cell) {
    if (cell.source) assign(cell, *cell.source);
    setClean(cell);
}

/// Brings a connected cell up to date. A chain of connections is walked down and back without recursion, so that its
/// length costs no stack.
void followSources(Cell& cell) {
    if (!passesOn(*cell.source)) {
        evaluate(*cell.source);
        takeOver(cell);
        return;
    }
    struct Chain {
        std::vector<Cell*> cells;
        ~Chain() {
            for (std::size_t i = 1; i < cells.size(); ++i) cells[i]->computing = false;
        }
    } chain{{&cell}};
    while (passesOn(*chain.cells.back()->source)) {
        chain.cells.push_back(chain.cells.back()->source);
        chain.cells.back()->computing = true;
    }
    evaluate(*chain.cells.back()->source);
    for (auto it = chain.cells.rbegin(); it != chain.cells.rend(); ++it) takeOver(**it);
}

void tellEvaluated(Cell& cell) {
    if (Observer* o = cell.node.scene.observer) o->evaluated(cell);
}

/// Evaluations within evaluations up to here ask for their sources as they need them; beyond, what a cell is computed
/// from is brought up to date before it, so that a chain of any length takes no more of the stack.
constexpr int aheadDepth = 32;
/// What is then computed finds its sources up to date, behind a few steps: the attribute, its elements, their parts.
constexpr int readyDepth = 5;
int aheadFrom = aheadDepth;

void evaluateHere(Cell& cell) {
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
        tellEvaluated(cell);
        return;
    }
    // A connection to the compound around feeds its parts, too.
    for (Cell* up = cell.parent; up; up = up->parent) {
        if (!up->source || up->computing) continue;
        evaluate(*up);
        cell.dirty = false;
        return;
    }
    if (cell.flow().computed) {
        if (cell.node.behavior) cell.node.behavior->compute(cell);
        cell.dirty = false;
        tellEvaluated(cell);
        return;
    }
    cell.dirty = false;
    if (cell.isArray()) {
        for (auto& [index, c] : cell.elements) evaluate(*c);
        return;
    }
    const bool partComputed = cell.flow().partComputed;
    for (std::size_t i = 0; i < (partComputed ? cell.attribute.children.size() : cell.children.size()); ++i) {
        const bool exists = i < cell.children.size() && cell.children[i];
        if (exists || (partComputed && cell.node.isComputed(*cell.attribute.children[i])))
            evaluate(cell.child(static_cast<int>(i)));
    }
}

/// Calls visit(c) for what flows into a cell that is not up to date, or into its parts, and is not up to date either:
/// what stands at the other ends of connections, and what is computed.
template <class Visit>
void eachFeeding(Cell& cell, const Visit& visit) {
    if (!cell.dirty) return;
    if (cell.source) {
        Cell* end = cell.source;
        while (passesOn(*end)) end = end->source;
        if (end->dirty) visit(*end);
    } else if (cell.flow().computed) {
        visit(cell);
    } else {
        // What kind of a cell it is is at hand; its parts and elements are further off.
        if (!cell.attribute.children.empty())
            for (auto& child : cell.children)
                if (child) eachFeeding(*child, visit);
        if (!cell.isArray()) return;
        for (auto& [index, element] : cell.elements) eachFeeding(*element, visit);
    }
}

/// The same for what the evaluation of a cell will read.
template <class Visit>
void eachUpstream(Cell& cell, const Visit& visit) {
    for (Cell* up = cell.source ? nullptr : cell.parent; up; up = up->parent)
        if (up->source) return eachFeeding(*up, visit);
    if (cell.source || !cell.flow().computed) return eachFeeding(cell, visit);
    for (const Attribute* input : cell.flow().inputs)
        if (Cell* c = cell.node.existingCell(input->root())) eachFeeding(*c, visit);
    if (!cell.node.behavior) return;
    std::vector<Cell*> more;
    cell.node.behavior->upstream(cell, more);
    for (Cell* c : more) eachFeeding(*c, visit);
}

/// The list of work of all evaluations that go on: its memory is taken once, and not anew at each of them.
std::vector<Cell*>& sharedWork() {
    static auto& cells = *new std::vector<Cell*>;
    return cells;
}

/// Evaluates a cell after everything that it is computed from, by a list of work in place of recursion.
void evaluateAhead(Cell& cell) {
    struct Work {
        std::vector<Cell*>& cells = sharedWork(); ///< a waiting one is ready when it is the last again
        std::size_t begin = cells.size();         ///< what stands before is of evaluations around this one
        int from = aheadFrom;
        ~Work() {
            for (std::size_t i = begin; i < cells.size(); ++i) cells[i]->waiting = false;
            cells.resize(begin);
            aheadFrom = from;
        }
    } work;
    work.cells.push_back(&cell);
    bool first = true; // whatever waits for the cell elsewhere
    while (work.cells.size() > work.begin) {
        Cell* c = work.cells.back();
        const bool ready = c->waiting && !std::exchange(first, false);
        if (!c->dirty || c->computing) {
            c->waiting = false;
            work.cells.pop_back();
        } else if (ready) {
            c->waiting = false;
            work.cells.pop_back();
            // What only passes a value on that is still being worked out is left for whoever needs it: a node asks for
            // some of what its type says that it might read.
            bool blocked = false;
            if (c != &cell && (c->source || !c->flow().computed)) eachUpstream(*c, [&](Cell&) { blocked = true; });
            aheadFrom = c->node.scene.evaluationDepth + readyDepth;
            if (!blocked) evaluateHere(*c);
            aheadFrom = work.from;
        } else {
            c->waiting = true;
            const auto end = static_cast<std::ptrdiff_t>(work.cells.size());
            eachUpstream(*c, [&](Cell& u) {
                if (!u.waiting && !u.computing) work.cells.push_back(&u);
            });
            std::reverse(work.cells.begin() + end, work.cells.end());
        }
    }
}

} // namespace

void evaluate(Cell& cell) {
    if (cell.attribute.internal && cell.node.behavior && cell.node.behavior->getInternal(cell)) return;
    if (!cell.dirty) return;
    if (cell.computing) {
        reportCycle(cell);
        return;
    }
    if (cell.source && !cell.source->dirty && !cell.source->attribute.internal &&
        cell.attribute.type != AttributeType::Compound) {
        // Its source needs nothing any more: the value alone is to be fetched.
        takeOver(cell);
        tellEvaluated(cell);
        return;
    }
    if (cell.node.scene.evaluationDepth >= Scene::maxEvaluationDepth) {
        // Nodes that depend on one another unknown to the graph would end on the stack's guard page; the value stays.
        if (cell.node.scene.noteCycle(cell))
            showWarning("Too many nodes depend on one another above '" + cell.name() + "': it is not evaluated.");
        return;
    }
    if (cell.node.scene.evaluationDepth < aheadFrom)
        evaluateHere(cell);
    else
        evaluateAhead(cell);
}

} // namespace host::scene
