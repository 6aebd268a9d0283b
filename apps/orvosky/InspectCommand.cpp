#include "Session.h"
#include "inspect/InspectionText.h"
#include "inspect/NamedFiles.h"

#include "base/Messages.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdio>

namespace orvosky {
namespace {

std::string listed(const inspect::Inspection& found) {
    const inspect::Problems& problems = found.problems;
    std::string text = fmt::format("{} does not fit in {} {}:", inspect::printable(found.file), problems.count(),
                                   problems.count() == 1 ? "place" : "places");
    std::size_t number = 0;
    for (const std::string& problem : problems.texts()) text += fmt::format("\n{:>4}. {}", ++number, problem);
    if (number < problems.count()) text += fmt::format("\n      and {} more", problems.count() - number);
    return text;
}

void show(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw Failure("Cannot write to the standard output.");
}

/// The files that a scene names, as lines; tells whether all are there.
bool listSceneFiles(const CommonOptions& common, const std::string& file, bool json) {
    Session session(common, file);
    session.openScene(file);
    auto& host = host::Host::instance();
    const std::filesystem::path root = host.interpreter().call("workspace", {"-q", "-rootDirectory"}).toString();
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    std::string text;
    bool all = true;
    for (const auto& [serial, node] : host.scene().nodes())
        for (const host::scene::Attribute* attribute : node->type.attributes()) {
            if (!attribute->usedAsFilename) continue;
            const std::string path =
                host.interpreter().call("getAttr", {node->name + "." + attribute->longName}).toString();
            if (path.empty()) continue;
            std::error_code none;
            const bool there =
                !inspect::fileMeant(root, path).empty() || std::filesystem::is_directory(root / path, none);
            all = all && there;
            list.push_back(
                {{"path", path}, {"there", there}, {"node", node->name}, {"attribute", attribute->longName}});
            text += fmt::format("{}  {}  ({}.{})\n", there ? "there  " : "missing", inspect::printable(path),
                                node->name, attribute->longName);
        }
    show(json ? list.dump(2) + "\n" : text);
    return all;
}

nlohmann::ordered_json asJson(const inspect::Inspection& found, const std::vector<inspect::NamedFile>& files) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    if (found.data) list.push_back({{"path", found.data->file}, {"there", true}});
    for (const auto& file : files)
        list.push_back({{"path", file.path},
                        {"there", !file.file.empty()},
                        {"element", file.element->described()},
                        {"attribute", file.attribute}});
    return list;
}

} // namespace

int inspectCommand(const CommonOptions& common, const InspectOptions& options) {
    return reported([&] {
        std::signal(SIGPIPE, SIG_DFL); // a reader that has seen enough is no failure to speak of
        if (options.listFiles && (options.file.ends_with(".ma") || options.file.ends_with(".mel"))) {
            if (!listSceneFiles(common, options.file, options.json)) throw Failure("Files are missing (see above).");
            return;
        }
        inspect::Inspection found = inspect::inspectFile(options.file);
        if (options.diff) {
            const std::string differences = inspect::asDifference(found, inspect::inspectFile(options.other));
            show(differences);
            if (!differences.empty())
                throw Failure(inspect::printable(options.file) + " and " + inspect::printable(options.other) +
                              " differ.");
            return;
        }
        const auto files = inspect::namedFiles(found, options.project);
        if (options.listFiles) {
            show(options.json ? asJson(found, files).dump(2) + "\n" : inspect::asList(found, files));
            if (std::ranges::any_of(files, [](const auto& file) { return file.file.empty(); }))
                throw Failure("Files are missing (see above).");
            return;
        }
        inspect::checkNamedFiles(found, options.project);
        show(options.summary ? inspect::asSummary(found, files)
             : options.json  ? inspect::asJson(found)
                             : inspect::asText(found));
        for (const std::string& warning : found.warnings) host::showWarning(warning);
        if (found.problems.count() > 0) throw Failure(listed(found));
        if (options.strict && !found.warnings.empty())
            throw Failure(inspect::printable(options.file) + ": " + inspect::counted(found.warnings.size(), "warning") +
                          " (see above).");
    });
}

} // namespace orvosky
