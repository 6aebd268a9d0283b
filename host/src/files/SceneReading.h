#pragma once

#include "base/Messages.h"
#include "files/FileNames.h"
#include "files/SceneReader.h"
#include "files/SceneSurvey.h"

#include <deque>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace host::scene {
struct Reference;
struct ReferenceEdit;
} // namespace host::scene

namespace host::files {

class ReferenceFiles;

/// What is wrong with single statements of a file, each with its place; beyond a limit it is only counted. What failed
/// is not in the scene: those are errors.
class SceneComplaints {
public:
    explicit SceneComplaints(std::string file) : file_(std::move(file)) {}

    void failed(const Statement& s, const std::string& text) { say(Severity::Error, failed_, mostFailed, s, text); }
    void refused(const Statement& s, const std::string& text) {
        say(Severity::Warning, refused_, mostRefused, s, text);
    }
    void say(const std::string& text, Severity severity = Severity::Warning);
    /// Tells how many there were beyond the limits.
    void finish();
    int count() const { return failed_ + refused_; }

private:
    static constexpr int mostFailed = 50, mostRefused = 20;

    void say(Severity severity, int& count, int most, const Statement& s, const std::string& text);
    std::string file_;
    int failed_ = 0, refused_ = 0;
};

/// A statement's flags and objects taken apart, whichever flags a later release may have.
struct StatementWords {
    std::vector<std::string_view> objects;
    std::unordered_map<std::string_view, std::string_view> flags;

    /// `valued` lists the flags that have a value. Throws SceneError where one is missing.
    StatementWords(const Statement& s, std::initializer_list<std::string_view> valued);
    bool has(std::string_view brief, std::string_view full) const {
        return flags.contains(brief) || flags.contains(full);
    }
    std::string value(std::string_view brief, std::string_view full) const;
};

/// One reading of one file; the files that it refers to are readings of their own. A function stands in the file of
/// what it reads: ReadingNodes, ReadingConnections, ReadingReferences; the walk through the statements, and those about
/// the scene as a whole, in SceneReading.
class SceneReading {
public:
    /// `within` is the reference that the file is read for, null for the scene's own.
    SceneReading(scene::Scene& scene, const SceneReader::Options& options, const std::string& file, SceneSurvey survey,
                 ReferenceFiles& files, scene::Reference* within = nullptr)
        : scene_(scene), options_(options), complaints_(file), names_(scene), survey_(std::move(survey)), files_(files),
          within_(within), context_{
                               scene, {}, nullptr, [this](std::string_view n) { return names_.find(n); }, compounds_} {}

    /// Carries out the statements of a text whose syntax is whole.
    SceneReader::Result run(std::string_view text);
    const FileNames& names() const { return names_; }

private:
    using Handler = void (SceneReading::*)(const Statement&);
    static const std::unordered_map<std::string_view, Handler>& handlers();

    /// Whether the statement could be carried out; else it is told why.
    bool carryOut(const Statement& s);
    void requires_(const Statement& s);
    void fileInfo(const Statement& s);
    void currentUnit(const Statement& s);
    void currentTime(const Statement& s);
    void keepWithNode(const Statement& s);
    void keepWithScene(const Statement& s);
    void keep(scene::Node& node, const Statement& s);
    void summary();

    /// @name Nodes
    /// @{
    void createNode(const Statement& s);
    void setAttr(const Statement& s);
    void addAttr(const Statement& s);
    void rename(const Statement& s);
    void select(const Statement& s);
    void parent(const Statement& s);
    void lockNode(const Statement& s);
    std::string newName(const std::string& name) const;
    scene::NodeType::Kind unknownKind(const CreateRequest& request, const scene::DagNode* parent) const;
    /// The node; when there is none and the name is that of a node which the program that wrote the file has in every
    /// scene, one that stands for it and for what is said of it.
    scene::Node* placeholder(std::string_view name);
    /// The node whose other place a path names, and the parent there.
    std::pair<scene::Node*, scene::Node*> instanceAt(std::string_view path) const;
    /// @}

    /// @name Connections
    /// @{
    void connectAttr(const Statement& s);
    void disconnectAttr(const Statement& s);
    void connectKnown(scene::Cell& source, scene::Cell& destination, bool force, bool lock);
    /// Of meshes whose points come from a node that is not known here.
    void warnOfEmptyMeshes();
    /// @}

    /// @name References
    /// @{
    void reference(const Statement& s);
    /// Keeps the statement for saving, with the names that the nodes have here.
    void keepReference(const Statement& s, const StatementWords& words);
    /// Reads the file of a reference. False when that is not possible.
    bool open(const Statement& s, scene::Reference& reference, const std::string& file, const std::string& prefix);
    void applyEdits(const Statement& s);
    /// Whether the edit could be made.
    bool apply(const scene::ReferenceEdit& edit, int line);
    void placeholderFor(const std::string& placeholder, const std::string& plug);
    /// The plug that a placeholder stands for; other plugs as they are.
    std::string meantBy(std::string_view plug) const;
    /// What the writing program keeps in the file in place of a referenced parent is of no use once its children are
    /// there.
    void dropFosterParents();
    /// @}

    scene::Scene& scene_;
    const SceneReader::Options& options_;
    SceneComplaints complaints_;
    FileNames names_;
    SceneSurvey survey_;
    ReferenceFiles& files_;
    scene::Reference* within_ = nullptr;
    OpenCompounds compounds_;
    StatementContext context_;
    SceneReader::Result result_;
    std::vector<scene::NodePtr> toLock_;
    std::set<std::string> unknownTypes_, missingPlugins_;
    int unknownNodes_ = 0, unknownStatements_ = 0, instances_ = 0;
    std::size_t created_ = 0; ///< createNode statements so far
    /// By "serial of the parent/name".
    std::unordered_map<std::string, std::pair<scene::Node*, scene::Node*>> instanceByPlace_;
    std::unordered_map<const scene::Cell*, scene::Node*> unknownMeshSources_;
    std::set<std::string> unloaded_;                            ///< reference nodes whose files are not to be read
    std::unordered_map<std::string, std::string> placeholders_; ///< "levelRN.phl[1]" and what it stands for
    std::deque<std::string> texts_;                             ///< of statements that edits stand for
};

} // namespace host::files
