#include "Session.h"
#include "Usage.h"

#include "commands/Host.h"

namespace orvosky {

int commandsCommand(const CommonOptions& common, const std::string& name) {
    std::string text;
    const int status = reported([&] {
        Session session(common);
        host::mel::Interpreter& mel = host::Host::instance().interpreter();
        // `help` asks each command itself: what is shown is the table that it reads its arguments by.
        std::vector<host::mel::Value> list{"-list"};
        if (!name.empty()) list.emplace_back(name);
        const host::mel::StringArray names = mel.call("help", std::move(list)).toStringArray();
        if (names.empty())
            throw Failure("There is no command '" + name + "'" + [&] {
                const auto all = mel.call("help", {"-list"}).toStringArray();
                const std::string meant = nearest(name, all);
                return meant.empty() ? std::string(".") : "; is '" + meant + "' meant?";
            }());
        for (const std::string& command : names)
            text += (text.empty() ? "" : "\n") + mel.call("help", {command}).toString();
    });
    return status == kWorked ? showHelp(text) : status;
}

} // namespace orvosky
