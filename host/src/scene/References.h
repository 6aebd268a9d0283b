#pragma once

#include "scene/Node.h"

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace host::scene {

/// One change that a scene makes to what a reference brought, as a scene file has it.
struct ReferenceEdit {
    enum Kind { Parent = 0, AddAttr = 1, SetAttr = 2, Disconnect = 3, DeleteAttr = 4, Connect = 5 };
    std::string of;  ///< the reference node that it is filed under
    int kind = 0;    ///< a Kind, or a number that is not known here
    int variant = 0; ///< of a Connect: which sides are placeholders; of a Parent: 1 for a referenced child
    std::vector<std::string> words;
    bool applied = false;
};

/// A file that the scene, or another reference, refers to, and what it has brought.
struct Reference {
    std::string name;           ///< its node's, with all namespaces: "level:propRN"
    std::string file;           ///< as the scene names it, with the number of a copy: "/p/prop.ma{2}"
    std::string nameSpace;      ///< whole, without a colon at its end; empty where names have a prefix
    std::string prefix;         ///< what stands before the names of its nodes: "level:" or "level_"
    std::filesystem::path path; ///< what was read; empty when it was not
    int copy = 0;               ///< a number that no other reference to that file has: 0 for the first
    bool loaded = false;
    bool nested = false;                       ///< brought by another reference
    Reference* top = nullptr;                  ///< the one of the scene's own that brought it; itself
    std::vector<std::weak_ptr<Node>> contents; ///< without those of references within
    std::vector<ReferenceEdit> edits;          ///< those of the scene, for this and the references within
};

/// The references of a scene, and what has changed of their nodes since they were read; its namespaces.
class References {
public:
    static References& of(Scene& scene);

    /// In the order in which they were read.
    const std::vector<std::shared_ptr<Reference>>& all() const { return all_; }
    Reference* named(const std::string& referenceNode) const;
    /// The one whose nodes have the prefix before their names; null for none.
    Reference* prefixed(const std::string& prefix) const;
    /// The reference that brought the node; null for the scene's own.
    Reference* of(const Node& node) const;
    /// Whether a statement `file` that the scene keeps names the file of the reference, or of one within it.
    bool isFileOf(const std::string& statement, const Reference& top) const;
    Reference& enter(std::shared_ptr<Reference> reference);
    /// Notes what was read, and numbers it among the references to that file: as the scene does, when that is free.
    void setRead(Reference& reference, std::filesystem::path path);
    /// Marks nodes as brought by the reference, unless they are by one within it.
    void bring(Reference& reference, const std::vector<NodePtr>& nodes);
    /// Forgets the reference and what it brought; the nodes are the caller's to delete.
    void remove(Reference& reference);
    void clear();

    /// @name Changes to referenced nodes. What a reference itself brings, and edits that are applied, are none.
    /// @{
    class Quiet {
    public:
        explicit Quiet(References& r) : references_(r) { ++references_.quiet_; }
        ~Quiet() { --references_.quiet_; }
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

    private:
        References& references_;
    };
    bool isReading() const { return quiet_ > 0; }
    void noteValue(Cell& cell);
    void noteAttribute(const Attribute& added);
    void noteBroken(const Cell& source, const Cell& destination);
    void notePoint(const Node& shape, int vertex);
    /// Whether what the node stores is another file's: what changes is kept beside it, as for a mesh that others make.
    bool keepsStored(const Node& node) const { return node.referenced && quiet_ == 0; }
    /// The vertices of a referenced mesh that have been moved.
    const std::set<int>& movedPoints(const Node& shape) const;
    /// Throws SceneError for a referenced node, unless quiet: its name and place are the other file's.
    void requireOwn(const Node& node, const char* what) const;
    bool isChanged(const Cell& cell) const { return changed_.contains(&cell); }
    const std::unordered_set<const Cell*>& changed() const { return changed_; }
    bool isAdded(const Attribute& attribute) const { return added_.contains(&attribute); }
    /// Whether a reference itself made the connection that feeds the cell.
    bool isOwnConnection(const Cell& destination) const;
    /// @}

    /// @name Namespaces, without colons at their ends; "" is the root
    /// @{
    std::string current;
    /// Those that were made or that nodes are in, with all above them, in alphabetic order.
    std::vector<std::string> namespaces() const;
    bool exists(std::string_view name) const;
    /// Whether a node is in the namespace, or in one below it.
    bool occupied(std::string_view name) const;
    void declare(const std::string& name);
    void forget(const std::string& name);
    /// @}

private:
    explicit References(Scene& scene) : scene_(scene) {}
    Scene& scene_;
    int quiet_ = 0;
    std::vector<std::shared_ptr<Reference>> all_;
    std::unordered_map<std::string, Reference*> byName_, byPrefix_;
    std::unordered_map<std::string, std::set<int>> copies_; ///< of the files that were read
    std::unordered_map<const Node*, Reference*> byNode_;
    std::unordered_set<const Cell*> changed_;
    std::unordered_set<const Attribute*> added_;
    std::unordered_map<const Node*, std::set<int>> points_;
    std::unordered_map<const Cell*, const Cell*> connections_; ///< destinations and sources that references made
    std::set<std::string, std::less<>> declared_;
};

/// The name of a file without the number of a copy, and that number: 2 of "/p/prop.ma{2}", 0 of "/p/prop.ma".
std::pair<std::string, int> splitCopy(const std::string& file);

/// The namespace of a name, without the colon at its end: "a:b" for "a:b:c".
std::string_view namespaceOf(std::string_view name);

} // namespace host::scene
