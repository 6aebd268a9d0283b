#pragma once

#include <map>
#include <string>
#include <variant>

namespace host::scene {

/// The user's named preferences, for the life of the process: scripts and plug-ins share them.
class OptionVars {
public:
    using Value = std::variant<int, double, std::string>;
    const Value* find(const std::string& name) const {
        const auto it = values_.find(name);
        return it == values_.end() ? nullptr : &it->second;
    }
    void set(const std::string& name, Value value) { values_[name] = std::move(value); }
    void remove(const std::string& name) { values_.erase(name); }

private:
    std::map<std::string, Value> values_;
};

inline OptionVars& optionVars() {
    static OptionVars vars;
    return vars;
}

} // namespace host::scene
