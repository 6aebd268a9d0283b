#include "base/Messages.h"
#include "base/Pattern.h"
#include "mel/Execution.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace host::mel {
namespace {

namespace fs = std::filesystem;

constexpr FlagSpec kMessageFlags[] = {{"sl", "showLineNumber", 1}, {"n", "noContext"}};

/// The arguments' texts in a row: error, warning and trace take one text, but scripts forget parentheses. A text may
/// begin with a dash: only their own flags are any.
std::string message(Arguments& a) {
    if (a.asksForFlags) throw flagList(kMessageFlags);
    std::string out;
    for (std::size_t i = 0; i < a.count(); ++i) {
        const auto* text = a[i].get<std::string>();
        const auto flag = std::ranges::find_if(kMessageFlags, [&](const FlagSpec& f) {
            return text && (*text == std::string("-") + f.shortName || *text == std::string("-") + f.longName);
        });
        if (flag == std::end(kMessageFlags))
            out += (out.empty() ? "" : " ") + a.text(i);
        else
            i += static_cast<std::size_t>(flag->values);
    }
    return out;
}

Value print(Arguments& a) {
    a.expect(1);
    if (a[0].isNone()) throw Error("Cannot print data of type void.");
    printText(a[0].printed());
    return {};
}

Value warning(Arguments& a) {
    showWarning(message(a));
    return {};
}

Value error(Arguments& a) { throw Error(message(a)); }

Value trace(Arguments& a) {
    showInfo(message(a));
    return {};
}

std::string joined(Arguments& a) {
    std::string text;
    for (std::size_t i = 0; i < a.count(); ++i) text += (i ? " " : "") + a.text(i);
    return text;
}

Value eval(Arguments& a) {
    a.expect(1, 1000);
    try {
        return a.interpreter.impl().runText(joined(a), {});
    } catch (const Error& e) {
        // A place within a composed text helps nobody: the call's own place is reported.
        if (!e.file().empty()) throw;
        Error bare(e.what());
        bare.silent = e.silent;
        throw bare;
    }
}

Value evalDeferred(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"lp", "lowestPriority"}, {"low", "lowPriority"}, {"ls", "list"}});
    auto& deferred = a.interpreter.impl().deferred;
    if (p.has("ls")) {
        StringArray texts;
        for (const auto& d : deferred) texts.push_back(d.text);
        return texts;
    }
    const StringArray texts = p.names();
    if (texts.size() != 1) throw Error("evalDeferred needs the text of a script.");
    const int delay = p.has("lp") ? 2 : p.has("low") ? 1 : 0;
    const auto behind = std::ranges::upper_bound(deferred, delay, {}, &Interpreter::Impl::Deferred::delay);
    deferred.insert(behind, {texts.front(), delay});
    return {};
}

Value quit(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"a", "abort"}, {"ec", "exitCode", 1}, {"f", "force"}});
    auto& impl = a.interpreter.impl();
    impl.exitCode = p.integer("ec", 0);
    impl.outOfSteps();
}

/// What would start another program.
Value noPrograms(Arguments& a) { throw Error(a.name + ": scripts cannot start other programs here."); }

Value help(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"l", "list"}, {"doc", "documentation"}, {"lng", "language", 1}});
    const StringArray names = p.names();
    auto& impl = a.interpreter.impl();
    if (p.has("l")) {
        StringArray found;
        for (const auto& [name, command] : impl.commands)
            if (names.empty() || matchesName(names.front(), name)) found.push_back(name);
        return found;
    }
    if (names.size() != 1) throw Error("help needs the name of one command.");
    const auto found = impl.commands.find(names.front());
    if (found == impl.commands.end()) {
        if (!a.interpreter.isCallable(names.front())) throw Error("No command is named '" + names.front() + "'.");
        return a.interpreter.whatIs(names.front());
    }
    const auto command = found->second;
    std::string text = "Synopsis: " + names.front();
    if (!command->tellsFlags) return text + "\n";
    try {
        Call call{a.interpreter, names.front(), {}, true};
        Arguments arguments{a.interpreter, call.name, {}, true};
        if (command->language)
            command->language(arguments);
        else
            command->function(call);
    } catch (const FlagList& list) {
        if (!list.flags.empty()) text += " [flags]\nFlags:\n";
        for (const auto& flag : list.flags) {
            text += "  -" + flag.shortName + " -" + flag.longName;
            for (int i = 0; i < flag.values; ++i) text += " VALUE";
            text += '\n';
        }
    }
    return text;
}

Value evalEcho(Arguments& a) {
    printText(joined(a) + "\n");
    return eval(a);
}

Value source(Arguments& a) {
    a.expect(1);
    std::string name = a.text(0);
    auto& impl = a.interpreter.impl();
    std::error_code status;
    for (int attempt = 0; attempt < 2; ++attempt) {
        for (const std::string& candidate : {name, name + ".mel"}) {
            if (!fs::path(candidate).is_absolute())
                if (auto found = impl.findScript(candidate)) return a.interpreter.sourceFile(*found);
            if (fs::is_regular_file(candidate, status)) return a.interpreter.sourceFile(candidate);
        }
        for (char& c : name)
            if (c == '\\') c = '/';
    }
    throw Error("Cannot find file \"" + a.text(0) + "\" for source statement.");
}

Value exists(Arguments& a) {
    a.expect(1);
    return a.interpreter.isCallable(a.text(0));
}

Value whatIs(Arguments& a) {
    a.expect(1);
    return a.interpreter.whatIs(a.text(0));
}

Value getenv(Arguments& a) {
    a.expect(1);
    const char* value = std::getenv(a.text(0).c_str());
    return value ? value : "";
}

Value putenv(Arguments& a) {
    a.expect(2);
    const std::string name = a.text(0), value = a.text(1);
    if (name.empty() || name.find('=') != std::string::npos) throw Error("Invalid variable name \"" + name + "\".");
#ifdef _WIN32
    return _putenv_s(name.c_str(), value.c_str());
#else
    return setenv(name.c_str(), value.c_str(), 1);
#endif
}

Value size(Arguments& a) {
    a.expect(1);
    return melSize(a[0]);
}

Value timerX(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"st", "startTime", 1}});
    const double now = std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    return now - p.number("st", 0.0);
}

Value date(Arguments& a) {
    const ParsedArguments p(
        a.asCall(), {{"d", "date"}, {"t", "time"}, {"sd", "shortDate"}, {"st", "shortTime"}, {"f", "format", 1}});
    std::string format = p.has("f")    ? p.text("f")
                         : p.has("d")  ? "YYYY/MM/DD"
                         : p.has("t")  ? "hh:mm:ss"
                         : p.has("sd") ? "MM/DD"
                         : p.has("st") ? "hh:mm"
                                       : "YYYY/MM/DD hh:mm:ss";
    const std::time_t now = std::time(nullptr);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &now);
#else
    localtime_r(&now, &local);
#endif
    auto put = [&](std::string_view key, int value, std::size_t digits) {
        std::string text = std::to_string(value);
        if (text.size() > digits) text.erase(0, text.size() - digits);
        text.insert(0, digits - text.size(), '0');
        for (std::size_t at; (at = format.find(key)) != std::string::npos;) format.replace(at, key.size(), text);
    };
    put("YYYY", local.tm_year + 1900, 4);
    put("YY", local.tm_year + 1900, 2);
    put("MM", local.tm_mon + 1, 2);
    put("DD", local.tm_mday, 2);
    put("hh", local.tm_hour, 2);
    put("mm", local.tm_min, 2);
    put("ss", local.tm_sec, 2);
    return format;
}

Value about(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"v", "version"},
                                         {"p", "product"},
                                         {"a", "application"},
                                         {"api", "apiVersion"},
                                         {"b", "batch"},
                                         {"f", "file"},
                                         {"os", "operatingSystem"},
                                         {"osv", "operatingSystemVersion"},
                                         {"nt", "ntOS"},
                                         {"win", "windows"},
                                         {"mac", "macOS"},
                                         {"mx", "macOSX"},
                                         {"li", "linux"},
                                         {"x64", "is64"},
                                         {"cd", "currentDate"},
                                         {"ct", "currentTime"},
                                         {"ui", "uiLanguage"},
                                         {"cv", "cutIdentifier"}});
#if defined(_WIN32)
    constexpr const char* os = "win64";
#elif defined(__APPLE__)
    constexpr const char* os = "mac";
#else
    constexpr const char* os = "linux64";
#endif
    const std::string_view system(os);
    if (p.has("v") || p.has("f")) return "2010";
    if (p.has("api")) return 201000;
    if (p.has("b")) return static_cast<int>(a.interpreter.impl().batch);
    if (p.has("os") || p.has("osv")) return os;
    if (p.has("nt") || p.has("win")) return system == "win64";
    if (p.has("mac") || p.has("mx")) return system == "mac";
    if (p.has("li")) return system == "linux64";
    if (p.has("x64")) return static_cast<int>(sizeof(void*) == 8);
    if (p.has("ui")) return "en_US";
    if (p.has("cv")) return "";
    if (p.has("cd") || p.has("ct")) {
        Value flag(p.has("cd") ? "-date" : "-time");
        Arguments inner{a.interpreter, a.name, {&flag}};
        return date(inner);
    }
    if (p.has("p") || p.has("a")) return "Stand-alone host 2010";
    throw Error("about needs a flag that says what is asked for.");
}

/// catch and catchQuiet called by name from outside: the argument is evaluated already, so it did not fail.
Value caught(Arguments& a) {
    a.expect(1);
    return 0;
}

} // namespace

void Arguments::expect(std::size_t least, std::size_t most) const {
    if (count() < least || count() > most) throw Error("Wrong number of arguments on call to " + name + '.');
}

Call Arguments::asCall() const {
    Call call{interpreter, name, {}, asksForFlags};
    call.arguments.reserve(values.size());
    for (const Value* v : values) call.arguments.push_back(*v);
    return call;
}

int melSize(const Value& v) {
    if (auto text = v.get<std::string>()) return static_cast<int>(text->size());
    return static_cast<int>(v.size());
}

void addLanguageBasics(Interpreter::Impl& impl) {
    static constexpr std::pair<const char*, LanguageFunction> functions[] = {
        {"print", print},       {"eval", eval},         {"source", source},   {"exists", exists},   {"whatIs", whatIs},
        {"evalEcho", evalEcho}, {"getenv", getenv},     {"putenv", putenv},   {"size", size},       {"catch", caught},
        {"catchQuiet", caught}, {"system", noPrograms}, {"exec", noPrograms}, {"popen", noPrograms}};
    static constexpr std::pair<const char*, LanguageFunction> withFlags[] = {{"warning", warning},
                                                                             {"error", error},
                                                                             {"trace", trace},
                                                                             {"timerX", timerX},
                                                                             {"date", date},
                                                                             {"about", about},
                                                                             {"evalDeferred", evalDeferred},
                                                                             {"quit", quit},
                                                                             {"help", help}};
    for (const auto& [name, function] : functions) impl.addLanguageFunction(name, function);
    for (const auto& [name, function] : withFlags) impl.addLanguageFunction(name, function, true);
}

void registerLanguageCommands(Interpreter& interpreter) {
    auto& impl = interpreter.impl();
    addLanguageBasics(impl);
    addMathFunctions(impl);
    addStringFunctions(impl);
    addArrayFunctions(impl);
    addFileFunctions(impl);
}

} // namespace host::mel
