#include "files/SceneReading.h"

#include "files/NumberWords.h"
#include "scene/MeshFilter.h"
#include "scene/MeshNode.h"

#include <fmt/format.h>

#include <tuple>
#include <unordered_set>

namespace host::files {

using namespace scene;

void SceneReading::connectKnown(Cell& source, Cell& destination, bool force, bool lock) {
    if (destination.source == &source) return;
    // A lock protects what the file has set; it does not stand against the file's own connection.
    std::vector<Cell*> locked;
    for (Cell* c = &destination; c; c = c->parent)
        if (c->locked) locked.push_back(c);
    for (Cell* c : locked) c->locked = false;
    const auto restore = [&] {
        for (Cell* c : locked) c->locked = true;
    };
    try {
        scene_.connect(source, destination, force);
    } catch (...) {
        restore();
        throw;
    }
    restore();
    if (lock) scene_.setLocked(destination, true);
}

void SceneReading::connectAttr(const Statement& s) {
    const StatementWords words(s, {"-l", "-lock", "-rd", "-referenceDest"});
    if (words.objects.size() != 2) throw SceneError("connectAttr needs two attributes.");
    const std::string standsFor[2] = {meantBy(words.objects[0]), meantBy(words.objects[1])};
    struct Side {
        Node* node = nullptr;
        std::string_view attribute;
        Cell* cell = nullptr;
        Node* parent = nullptr; ///< of another place of the node
    } sides[2];
    for (int k = 0; k < 2; ++k) {
        const std::string_view plug = standsFor[k];
        const auto dot = plug.find('.');
        if (dot == plug.npos) throw SceneError(fmt::format("'{}' is not the name of an attribute.", plug));
        sides[k].attribute = plug.substr(dot + 1);
        sides[k].node = dot == 0 ? context_.target : placeholder(plug.substr(0, dot));
        if (sides[k].node && (sides[k].node->unknownType.empty() || sides[k].node->dag()))
            sides[k].cell = scene_.tryPlug(*sides[k].node, sides[k].attribute);
        if (!sides[k].node) {
            std::tie(sides[k].node, sides[k].parent) = instanceAt(plug.substr(0, dot));
        }
    }
    if (sides[0].cell && sides[1].cell) {
        Cell *source = sides[0].cell, *destination = sides[1].cell;
        if (destination->isArray() && words.has("-na", "-nextAvailable")) {
            // Elements arrive in order: the one behind the last is free.
            auto& elements = destination->elements;
            if (!elements.empty() && elements.rbegin()->second->source)
                destination = &destination->element(elements.rbegin()->first + 1);
            else
                destination = &scene_.nextAvailable(*destination);
        }
        // The first element of an array stands for a node's only instance and may be left unsaid.
        if (source->isArray() && !destination->isArray()) source = &source->element(0);
        const auto lock = parseBool(words.value("-l", "-lock"));
        connectKnown(*source, *destination, words.has("-f", "-force"), lock.value_or(false));
        return;
    }
    if (within_) { // its file keeps it
        for (int k = 0; k < 2; ++k)
            if (!sides[k].node && !standsFor[k].starts_with(':'))
                throw SceneError(fmt::format("No object matches name: {}", standsFor[k]));
        return;
    }
    KeptConnection kept;
    if (sides[0].node) kept.sourceNode = sides[0].node->weak_from_this();
    if (sides[1].node) kept.destinationNode = sides[1].node->weak_from_this();
    if (sides[0].parent) kept.sourceParent = sides[0].parent->weak_from_this();
    if (sides[1].parent) kept.destinationParent = sides[1].parent->weak_from_this();
    if (sides[0].node && sides[1].cell && sides[1].cell->attribute.dataKind == DataKind::Mesh)
        unknownMeshSources_[sides[1].cell] = sides[0].node;
    kept.sourceText = sides[0].node ? sides[0].attribute : words.objects[0];
    kept.destinationText = sides[1].node ? sides[1].attribute : words.objects[1];
    for (const Word& w : s.words) {
        if (!w.isFlag()) continue;
        kept.flags += (kept.flags.empty() ? "" : " ") + std::string(w.text);
        if (const auto value = words.value(w.text, w.text); !value.empty()) kept.flags += " " + value;
    }
    scene_.keptConnections.push_back(std::move(kept));
    if (!sides[0].node || !sides[1].node)
        throw SceneError(fmt::format("No object matches name: {}", words.objects[sides[0].node ? 1 : 0]));
}

void SceneReading::disconnectAttr(const Statement& s) {
    const StatementWords words(s, {});
    if (words.objects.size() != 2) throw SceneError("disconnectAttr needs two attributes.");
    Cell* cells[2];
    for (std::size_t k = 0; k < 2; ++k) {
        std::string_view attribute;
        Node& node = context_.plugNode(words.objects[k], attribute);
        cells[k] = scene_.tryPlug(node, attribute, false);
        if (!cells[k]) throw SceneError(fmt::format("No object matches name: {}", words.objects[k]));
    }
    if (cells[0]->isArray() && !cells[1]->isArray()) cells[0] = &cells[0]->element(0);
    scene_.disconnect(*cells[0], *cells[1]);
}

void SceneReading::warnOfEmptyMeshes() {
    constexpr int most = 20;
    int count = 0;
    for (const NodePtr& made : result_.created) {
        MeshBehavior* mesh = unknownMeshSources_.empty() ? nullptr : meshBehavior(*made);
        if (!mesh || mesh->own || (mesh->fileUsed && !mesh->file.isEmpty())) continue;
        const Cell* input = &made->cell("inMesh");
        std::unordered_set<const Cell*> seen;
        while (input && input->source && seen.insert(input).second) {
            Node& up = input->source->node;
            input = meshBehavior(up) ? &up.cell("inMesh") : meshInput(up);
        }
        const auto it = input ? unknownMeshSources_.find(input) : unknownMeshSources_.end();
        if (it == unknownMeshSources_.end() || ++count > most) continue;
        const std::string type = it->second->unknownType.empty() ? it->second->type.name : it->second->unknownType;
        complaints_.say(fmt::format("The mesh '{}' stays empty: it is made by '{}', a node of the unknown type '{}'.",
                                    scene_.displayName(*made), scene_.displayName(*it->second), type));
    }
    if (count > most) complaints_.say(fmt::format("{} more meshes stay empty for such a reason.", count - most));
}

} // namespace host::files
