#include "files/SceneReading.h"

#include "files/NumberWords.h"
#include "files/ReferenceFiles.h"
#include "scene/References.h"

#include <fmt/format.h>

#include <algorithm>

namespace host::files {

using namespace scene;

void SceneComplaints::say(const std::string& text, Severity severity) {
    Messages::instance().send(severity, file_ + ": " + text);
}

void SceneComplaints::say(Severity severity, int& count, int most, const Statement& s, const std::string& text) {
    if (++count <= most) Messages::instance().send(severity, fmt::format("{} line {}: {}", file_, s.line, text));
}

void SceneComplaints::finish() {
    if (failed_ > mostFailed) say(fmt::format("{} more statements failed.", failed_ - mostFailed), Severity::Error);
    if (refused_ > mostRefused) say(fmt::format("{} more statements were refused.", refused_ - mostRefused));
}

StatementWords::StatementWords(const Statement& s, std::initializer_list<std::string_view> valued) {
    for (std::size_t i = 0; i < s.words.size(); ++i) {
        const Word& w = s.words[i];
        if (!w.isFlag()) {
            objects.push_back(w.text);
            continue;
        }
        const bool takes = std::find(valued.begin(), valued.end(), w.text) != valued.end();
        if (takes && i + 1 == s.words.size())
            throw SceneError(fmt::format("{}: flag '{}' needs a value.", s.name, w.text));
        flags[w.text] = takes ? s.words[++i].text : std::string_view();
    }
}

std::string StatementWords::value(std::string_view brief, std::string_view full) const {
    auto it = flags.find(brief);
    if (it == flags.end()) it = flags.find(full);
    return it == flags.end() ? std::string() : std::string(it->second);
}

const std::unordered_map<std::string_view, SceneReading::Handler>& SceneReading::handlers() {
    static const std::unordered_map<std::string_view, Handler> table{
        {"createNode", &SceneReading::createNode},
        {"setAttr", &SceneReading::setAttr},
        {"addAttr", &SceneReading::addAttr},
        {"connectAttr", &SceneReading::connectAttr},
        {"disconnectAttr", &SceneReading::disconnectAttr},
        {"parent", &SceneReading::parent},
        {"rename", &SceneReading::rename},
        {"select", &SceneReading::select},
        {"requires", &SceneReading::requires_},
        {"fileInfo", &SceneReading::fileInfo},
        {"currentUnit", &SceneReading::currentUnit},
        {"currentTime", &SceneReading::currentTime},
        {"lockNode", &SceneReading::lockNode},
        {"file", &SceneReading::reference},
        {"aliasAttr", &SceneReading::keepWithNode},
        {"setKeyframe", &SceneReading::keepWithNode},
        {"relationship", &SceneReading::keepWithScene},
        {"playbackOptions", &SceneReading::keepWithScene},
        {"sets", &SceneReading::keepWithScene},
        {"dataStructure", &SceneReading::keepWithScene},
        {"applyMetadata", &SceneReading::keepWithScene},
    };
    return table;
}

SceneReader::Result SceneReading::run(std::string_view text) {
    if (!options_.import) context_.units.makeCurrent();
    StatementScanner scanner(text, survey_.lists);
    Statement s;
    while (scanner.next(s)) carryOut(s);
    for (const std::string& failure : compounds_.close(scene_)) complaints_.say(failure);
    for (const NodePtr& node : toLock_) node->locked = true;
    complaints_.finish();
    dropFosterParents();
    // Of a file that is referred to often it is told once.
    if (!within_ || files_.told.insert(files_.find(within_->file)).second) {
        warnOfEmptyMeshes();
        summary();
    }
    result_.warnings = complaints_.count();
    return std::move(result_);
}

bool SceneReading::carryOut(const Statement& s) {
    if (s.name == "else") return true; // the rest of what was refused before
    const auto handler = handlers().find(s.name);
    const std::string name(s.name.substr(0, 60));
    if (handler == handlers().end() ||
        (s.kind == Statement::Kind::Braced && s.name != "setAttr" && s.name != "aliasAttr")) {
        complaints_.refused(s, "'" + name + "' is refused: a scene file may not run it.");
        return false;
    }
    if (s.kind == Statement::Kind::Script) {
        complaints_.refused(s, "'" + name +
                                   "' is refused: a scene file may not run commands, variables or expressions "
                                   "within a statement.");
        return false;
    }
    try {
        (this->*handler->second)(s);
    } catch (const SceneError& e) {
        complaints_.failed(s, e.what());
        return false;
    }
    return true;
}

void SceneReading::requires_(const Statement& s) {
    const StatementWords words(s, {"-nodeType", "-dataType", "-nt", "-dt"});
    if (words.objects.empty()) throw SceneError("requires: the name of the plug-in is missing.");
    const std::string name(words.objects[0]);
    if (name == "maya") {
        if (options_.import) return;
        std::erase_if(scene_.requiredPlugins, [](const std::string& r) { return r.starts_with("requires maya "); });
        if (words.objects.size() > 1)
            scene_.requiredPlugins.insert(fmt::format("requires maya \"{}\";", words.objects[1]));
        return;
    }
    if (missingPlugins_.contains(name)) return;
    std::string missing, failure;
    try {
        // A file names plug-ins; where they lie is for the user to say.
        if (name.empty() || name.find_first_of("/\\") != name.npos || name.find("..") != name.npos)
            missing = "only a bare name is loaded.";
        else if (!options_.loadPlugin)
            missing = "it cannot be loaded here.";
        else if (!options_.loadPlugin(name))
            missing = "it was not found on the plug-in search path.";
        else
            return;
    } catch (const SceneError& e) {
        failure = e.what();
    }
    missingPlugins_.insert(name);
    if (!within_) scene_.requiredPlugins.insert(s.kept());
    const std::string text = "The plug-in '" + name + "' is required: ";
    if (!failure.empty()) throw SceneError(text + failure);
    // Scenes require plug-ins of all kinds that have nothing to do with what they are opened for.
    complaints_.refused(s, text + missing);
}

void SceneReading::fileInfo(const Statement& s) {
    const StatementWords words(s, {});
    if (words.objects.size() != 2) throw SceneError("fileInfo needs a key and a value.");
    if (!options_.import) scene_.fileInfo[std::string(words.objects[0])] = words.objects[1];
}

void SceneReading::currentUnit(const Statement& s) {
    const StatementWords words(s, {"-l", "-linear", "-a", "-angle", "-t", "-time"});
    std::string unknown;
    const auto set = [&](auto& unit, std::string_view brief, std::string_view full, auto named) {
        const std::string name = words.value(brief, full);
        if (name.empty()) return;
        const auto known = named(name);
        if (known)
            unit = *known;
        else
            unknown += " '" + name + "'";
    };
    set(context_.units.linear, "-l", "-linear", linearUnitNamed);
    set(context_.units.angular, "-a", "-angle", angularUnitNamed);
    set(context_.units.time, "-t", "-time", timeUnitNamed);
    if (!options_.import) context_.units.makeCurrent();
    if (!unknown.empty()) throw SceneError("Units that are not known here:" + unknown + ".");
}

void SceneReading::currentTime(const Statement& s) {
    const StatementWords words(s, {});
    const auto time = words.objects.size() == 1 ? parseNumber(words.objects[0]) : std::nullopt;
    if (!time) throw SceneError("currentTime needs one number.");
    if (!options_.import) scene_.setTime(*time * context_.units.factor(AttributeType::Time));
}

void SceneReading::keep(Node& node, const Statement& s) {
    if (within_) return; // its file keeps it
    auto& kept = node.keptStatements;
    std::string text = s.kept();
    // Imported into a node that was there before, the same statement need not be there twice.
    if (options_.import && node.isDefault && std::find(kept.begin(), kept.end(), text) != kept.end()) return;
    kept.push_back(std::move(text));
}

void SceneReading::keepWithNode(const Statement& s) {
    if (!context_.target) throw SceneError(fmt::format("{}: there is no node that it belongs to.", s.name));
    keep(*context_.target, s);
}

void SceneReading::keepWithScene(const Statement& s) {
    if (within_) return; // its file keeps it
    const std::string text = s.kept();
    auto& kept = scene_.keptStatements;
    if (options_.import && std::find(kept.begin(), kept.end(), text) != kept.end()) return;
    kept.push_back(text);
}

void SceneReading::summary() {
    if (instances_ > 0)
        complaints_.say(fmt::format("{} {} of a node {} kept; it is shown in its first place only.", instances_,
                                    instances_ == 1 ? "instance" : "instances", instances_ == 1 ? "is" : "are"));
    const int n = unknownNodes_, attributes = unknownStatements_;
    if (n == 0 && attributes == 0) return;
    std::string text;
    if (n > 0) {
        std::string list;
        for (const auto& type : unknownTypes_) list += (list.empty() ? "" : ", ") + type;
        text = fmt::format("{} {} of {} unknown {} {} kept as {}: {}.", n, n == 1 ? "node" : "nodes",
                           unknownTypes_.size(), unknownTypes_.size() == 1 ? "type" : "types", n == 1 ? "is" : "are",
                           n == 1 ? "it is" : "they are", list);
    }
    if (attributes > 0)
        text += fmt::format("{}{} {} about attributes that are not known here {} kept.", text.empty() ? "" : " ",
                            attributes, attributes == 1 ? "statement" : "statements", attributes == 1 ? "is" : "are");
    complaints_.say(text);
}

} // namespace host::files
