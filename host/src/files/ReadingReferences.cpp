#include "files/SceneReading.h"

#include "base/QuotedText.h"
#include "files/NumberWords.h"
#include "files/ReferenceEdits.h"
#include "files/ReferenceFiles.h"
#include "scene/References.h"

#include <fmt/format.h>

namespace host::files {

using namespace scene;

namespace {

/// "levelRN.placeHolderList[1]" as "levelRN.phl[1]"; empty for what is no placeholder.
std::string placeholderName(std::string_view plug) {
    for (const std::string_view list : {".phl[", ".placeHolderList["})
        if (const auto at = plug.find(list); at != plug.npos)
            return std::string(plug.substr(0, at)).append(".phl[").append(plug.substr(at + list.size()));
    return {};
}

} // namespace

void SceneReading::reference(const Statement& s) {
    const StatementWords words(s, {"-rdi", "-referenceDepthInfo", "-ns", "-namespace", "-rpr", "-renamingPrefix",
                                   "-rfn", "-referenceNode", "-dr", "-deferReference", "-op", "-options", "-typ",
                                   "-type", "-lrd", "-loadReferenceDepth", "-shd", "-sharedNodes"});
    const bool opens = words.has("-r", "-reference");
    if (!opens && !words.has("-rdi", "-referenceDepthInfo")) {
        complaints_.refused(s, "'file': a scene file may not open, import or save files.");
        return;
    }
    const std::string node = words.value("-rfn", "-referenceNode");
    if (!within_) keepReference(s, words);
    if (!opens) {
        if (parseBool(words.value("-dr", "-deferReference")).value_or(false)) unloaded_.insert(node);
        return;
    }
    if (words.objects.empty() || node.empty()) {
        complaints_.refused(s, "'file': a reference needs its file and its node; the statement is kept.");
        return;
    }
    const std::string space = words.value("-ns", "-namespace"), rename = words.value("-rpr", "-renamingPrefix");
    const std::string prefix = !space.empty() && space != ":" ? space + ":" : rename.empty() ? "" : rename + "_";
    References& references = References::of(scene_);
    auto made = std::make_shared<Reference>();
    made->name = options_.prefix + node;
    made->file = words.objects.back();
    made->prefix = options_.prefix + prefix;
    made->nested = within_ != nullptr;
    made->top = within_ ? within_->top : made.get();
    if (!space.empty()) made->nameSpace = made->prefix.substr(0, made->prefix.size() - 1);
    const Reference* sameNode = references.named(made->name);
    const Reference* same = sameNode || made->prefix.empty() ? sameNode : references.prefixed(made->prefix);
    if (same)
        throw SceneError(fmt::format("file: the {} '{}' is taken by the reference to {}; '{}' is kept and not read.",
                                     sameNode ? "reference node" : "namespace", sameNode ? made->name : made->nameSpace,
                                     same->file, made->file));
    Reference& entered = references.enter(std::move(made));
    if (!unloaded_.contains(node)) open(s, entered, entered.file, prefix);
}

void SceneReading::keepReference(const Statement& s, const StatementWords& words) {
    if (options_.prefix.empty()) {
        scene_.keptStatements.push_back(s.kept());
        return;
    }
    std::string text = "file";
    for (const Word& w : s.words) {
        if (!w.isFlag()) continue;
        text += " " + std::string(w.text);
        const std::string value = words.value(w.text, w.text);
        const bool named = w.text == "-ns" || w.text == "-rfn" || w.text == "-namespace" || w.text == "-referenceNode";
        if (!value.empty()) text += " " + quotedText(named ? options_.prefix + value : value);
    }
    for (const std::string_view object : words.objects) text += " " + quotedText(object);
    scene_.keptStatements.push_back(text + ";");
}

bool SceneReading::open(const Statement& s, Reference& reference, const std::string& file, const std::string& prefix) {
    std::filesystem::path path;
    try {
        path = files_.find(file);
    } catch (const FileError& e) {
        complaints_.refused(s, std::string("The reference is kept and not read: ") + e.what());
        return false;
    }
    References& references = References::of(scene_);
    try {
        const ReferenceFiles::Open opened(files_, path);
        const auto contents = files_.read(path);
        const References::Quiet quiet(references);
        SceneReader::Options options = options_;
        options.import = true;
        options.prefix = options_.prefix + prefix;
        SceneReading inner(scene_, options, path.generic_string(), contents->survey, files_, &reference);
        SceneReader::Result result = inner.run(contents->text);
        // This file sees the names of that one behind the prefix.
        inner.names().each([&](Node& node, const std::string& name) { names_.add(node, prefix + name); });
        references.bring(reference, result.created);
        result_.created.insert(result_.created.end(), result.created.begin(), result.created.end());
        result_.warnings += result.warnings;
        references.setRead(reference, path);
        return true;
    } catch (const FileError& e) {
        complaints_.failed(s, std::string("The reference is kept and not read: ") + e.what());
        return false;
    }
}

void SceneReading::applyEdits(const Statement& s) {
    Node& node = *context_.target;
    References& references = References::of(scene_);
    Reference* reference = references.named(node.name);
    if (!reference || !reference->loaded) {
        if (!within_) keep(node, s);
        return;
    }
    std::vector<ReferenceEdit> edits;
    try {
        edits = readReferenceEdits(s);
    } catch (const SceneError&) {
        if (!within_) keep(node, s);
        throw;
    }
    const References::Quiet quiet(references);
    int unknown = 0;
    for (ReferenceEdit& edit : edits) {
        // Where a reference within is not there, its edits wait with it.
        const Reference* of = references.named(options_.prefix + edit.of);
        if (of && !of->loaded) continue;
        if (edit.kind == ReferenceEdit::Parent) {
            const Node* child = context_.findNode(edit.words[0]);
            edit.variant = child && child->referenced;
        }
        edit.applied = apply(edit, s.line);
        unknown += editStatement(edit).empty();
    }
    if (unknown > 0)
        complaints_.refused(s,
                            fmt::format("{} of the edits of '{}' are of a kind that is not known here; they are kept.",
                                        unknown, node.name));
    if (!within_) reference->edits = std::move(edits);
    context_.target = &node;
}

bool SceneReading::apply(const ReferenceEdit& edit, int line) {
    const auto word = [&](std::size_t i) { return i < edit.words.size() ? edit.words[i] : std::string(); };
    if (edit.kind == ReferenceEdit::Connect) {
        // The statements that connect follow in the file.
        if (edit.variant == 0) placeholderFor(word(3), word(1));
        placeholderFor(edit.variant == 0 ? word(4) : word(2), edit.variant == 0 ? word(2) : word(1));
        return true;
    }
    const std::string& text = texts_.emplace_back(editStatement(edit));
    if (text.empty()) return false;
    if (edit.kind == ReferenceEdit::AddAttr) {
        context_.target = context_.findNode(word(0));
        if (!context_.target) return false;
        if (context_.target->findAttribute(word(1))) return true;
    }
    try {
        StatementScanner scanner(text);
        Statement s, more;
        if (!scanner.next(s) || scanner.next(more)) throw SyntaxError("more than one statement", line);
        s.line = line;
        return carryOut(s);
    } catch (const SyntaxError&) {
        Statement at;
        at.line = line;
        complaints_.refused(at, "An edit of a reference is refused: " + text.substr(0, 200));
        return false;
    }
}

void SceneReading::placeholderFor(const std::string& placeholder, const std::string& plug) {
    if (const std::string name = placeholderName(placeholder); !name.empty()) placeholders_[name] = plug;
}

std::string SceneReading::meantBy(std::string_view plug) const {
    if (placeholders_.empty()) return std::string(plug);
    const auto at = placeholders_.find(placeholderName(plug));
    return at == placeholders_.end() ? std::string(plug) : at->second;
}

void SceneReading::dropFosterParents() {
    for (const NodePtr& node : result_.created)
        if (node->unknownType == "fosterParent" && node->inScene && node->dag() && node->dag()->children.empty() &&
            !node->referenced)
            scene_.deleteNodes({node.get()});
}

} // namespace host::files
