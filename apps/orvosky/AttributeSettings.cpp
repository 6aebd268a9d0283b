#include "AttributeSettings.h"

#include "Failure.h"
#include "Usage.h"

#include "base/NumberText.h"
#include "commands/Host.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace orvosky {
namespace {

using host::mel::Value;

/// What is wrong with a value, to follow on what was given.
[[noreturn]] void refuse(const std::string& reason) { throw Failure(reason); }

std::vector<double> numbersOf(const std::string& text, std::size_t count) {
    std::vector<double> numbers(count);
    if (!readNumbers(text, ',', numbers))
        refuse(count == 1 ? "it takes a number"
                          : "it takes " + std::to_string(count) + " numbers, separated by commas");
    return numbers;
}

double switchOf(const std::string& text) {
    for (const char* on : {"1", "on", "yes", "true"})
        if (text == on) return 1;
    for (const char* off : {"0", "off", "no", "false"})
        if (text == off) return 0;
    refuse("it takes on or off");
}

double wholeNumberOf(const std::string& text) {
    const double number = numbersOf(text, 1)[0];
    if (number != std::floor(number)) refuse("it takes a whole number");
    return number;
}

/// The number of an enumeration's field; `fields` is as attributeQuery lists them: "Half:Third=2".
double fieldOf(const std::string& text, const std::string& fields) {
    std::istringstream list(fields);
    std::string names;
    int number = 0;
    for (std::string field; std::getline(list, field, ':'); ++number) {
        if (const auto at = field.rfind('='); at != std::string::npos) {
            number = host::readInt(std::string_view(field).substr(at + 1)).value_or(number);
            field.resize(at);
        }
        if (text == field || text == std::to_string(number)) return number;
        names += (names.empty() ? "" : ", ") + field + " (" + std::to_string(number) + ")";
    }
    refuse("it takes one of " + names);
}

void setPlug(const std::string& plug, const std::string& value) {
    auto& mel = host::Host::instance().interpreter();
    const std::size_t dot = plug.find('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == plug.size()) refuse("give it as NODE.ATTR=VALUE");
    const std::string node = plug.substr(0, dot), attribute = plug.substr(dot + 1);
    if (!mel.call("objExists", {node}).toBool()) refuse("there is no node " + node);
    if (!mel.call("objExists", {plug}).toBool()) refuse(node + " has no attribute " + attribute);
    const std::string type = mel.call("getAttr", {"-type", plug}).toString();
    std::vector<Value> words{plug};
    if (type == "string") {
        words.insert(words.end(), {"-type", "string", value});
    } else if (type == "bool") {
        words.emplace_back(switchOf(value));
    } else if (type == "enum") {
        const std::string own = attribute.substr(attribute.rfind('.') + 1);
        words.emplace_back(fieldOf(
            value, mel.call("attributeQuery", {"-node", node, "-listEnum", own.substr(0, own.find('['))}).toString()));
    } else if (type == "long" || type == "short" || type == "byte" || type == "char") {
        words.emplace_back(wholeNumberOf(value));
    } else if (type == "double" || type == "float" || type == "doubleAngle" || type == "doubleLinear" ||
               type == "time") {
        words.emplace_back(numbersOf(value, 1)[0]);
    } else if (const char size = type.empty() ? ' ' : type.back(); size >= '2' && size <= '4') {
        for (const double number : numbersOf(value, static_cast<std::size_t>(size - '0'))) words.emplace_back(number);
    } else {
        refuse("an attribute of type " + type + " cannot be set here");
    }
    mel.call("setAttr", std::move(words));
}

} // namespace

void applySettings(const std::vector<std::string>& settings) {
    for (const std::string& setting : settings) {
        try {
            const std::size_t equals = setting.find('=');
            if (equals == std::string::npos) refuse("give it as NODE.ATTR=VALUE");
            setPlug(setting.substr(0, equals), setting.substr(equals + 1));
        } catch (const std::exception& e) {
            const std::string reason = e.what();
            throw Failure(fmt::format("--set {}: {}{}", setting, reason, reason.ends_with('.') ? "" : "."));
        }
    }
}

} // namespace orvosky
