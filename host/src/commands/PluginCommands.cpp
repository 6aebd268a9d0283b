#include "api/plugins/PluginManager.h"
#include "base/Messages.h"
#include "base/OptionVars.h"
#include "commands/Commands.h"
#include "commands/Host.h"
#include "mel/Interpreter.h"
#include "scene/Scene.h"

namespace host::mel {
namespace {

api::PluginManager& plugins() { return Host::instance().plugins(); }

/// Runs something that the rooms behind may refuse.
template <class F>
Value refusable(F&& f) {
    try {
        return f();
    } catch (const scene::SceneError& e) {
        throw Error(e.what());
    }
}

Value loadPlugin(Call& call) {
    const ParsedArguments args(call, {{"qt", "quiet"}, {"n", "name", 1}, {"a", "allPlugins"}});
    StringArray loaded;
    return refusable([&]() -> Value {
        if (args.names().empty()) throw Error("loadPlugin: a plug-in's name or path is needed.");
        for (const auto& name : args.names()) {
            if (plugins().find(name)) {
                if (!args.has("qt")) showWarning("Plug-in, \"" + name + "\", is already loaded.");
                continue;
            }
            loaded.push_back(plugins().load(name).name);
        }
        return loaded;
    });
}

Value unloadPlugin(Call& call) {
    const ParsedArguments args(call, {{"f", "force"}});
    return refusable([&]() -> Value {
        for (const auto& name : args.names()) plugins().unload(name);
        return {};
    });
}

Value pluginInfo(Call& call) {
    const ParsedArguments args(call,
                               {{"l", "loaded"},
                                {"v", "version"},
                                {"vd", "vendor"},
                                {"n", "name"},
                                {"p", "path"},
                                {"r", "registered"},
                                {"ls", "listPlugins"},
                                {"dn", "dependNode"},
                                {"c", "command"},
                                {"av", "apiVersion"},
                                {"a", "autoload"}},
                               true);
    if (!args.query()) throw Error("pluginInfo: only queries are supported.");
    if (args.has("ls")) {
        StringArray names;
        for (const auto& p : plugins().loaded()) names.push_back(p->name);
        return names;
    }
    const auto names = args.names();
    if (names.empty()) throw Error("pluginInfo: a plug-in's name is needed.");
    const api::Plugin* p = plugins().find(names.front());
    if (args.has("l") || args.has("r")) return p != nullptr;
    if (!p) throw Error("pluginInfo: the plug-in \"" + names.front() + "\" is not loaded.");
    if (args.has("v")) return p->version;
    if (args.has("vd")) return p->vendor;
    if (args.has("av")) return p->apiVersion;
    if (args.has("n")) return p->name;
    if (args.has("p")) return p->path.generic_string();
    if (args.has("dn")) return StringArray(p->nodeTypes);
    if (args.has("c")) return StringArray(p->commands);
    throw Error("pluginInfo: nothing was asked for.");
}

Value optionVar(Call& call) {
    const ParsedArguments args(call,
                               {{"iv", "intValue", 2},
                                {"fv", "floatValue", 2},
                                {"sv", "stringValue", 2},
                                {"ex", "exists", 1, true},
                                {"rm", "remove", 1}},
                               true);
    auto& vars = scene::optionVars();
    if (args.has("ex")) return vars.find(args.text("ex")) != nullptr;
    if (args.query()) {
        const auto names = args.names();
        const auto* v = names.empty() ? nullptr : vars.find(names.front());
        if (!v) return 0;
        return std::visit([](const auto& held) { return Value(held); }, *v);
    }
    if (args.has("iv")) vars.set(args.text("iv"), args.value("iv", 1).toInt());
    if (args.has("fv")) vars.set(args.text("fv"), args.value("fv", 1).toFloat());
    if (args.has("sv")) vars.set(args.text("sv"), args.value("sv", 1).toString());
    if (args.has("rm")) vars.remove(args.text("rm"));
    return {};
}

} // namespace

void registerPluginCommands(Interpreter& interpreter) {
    interpreter.registerCommand("loadPlugin", loadPlugin, true);
    interpreter.registerCommand("unloadPlugin", unloadPlugin, true);
    interpreter.registerCommand("pluginInfo", pluginInfo, true);
    interpreter.registerCommand("optionVar", optionVar, true);
}

} // namespace host::mel
