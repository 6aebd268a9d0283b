#pragma once

#include <maya/MPxCommand.h>
#include <maya/MPxNode.h>
#include <maya/MStatus.h>
#include <maya/MTypeId.h>
#include <span>
#include <type_traits>

namespace orvo {

enum class RegistrationKind { Locator, Dependency, Command };

/// One node type or command that the plug-in brings.
struct RegistrationRow {
    const char* name;
    RegistrationKind kind;
    const MTypeId* typeId; ///< null for commands
    void* (*creator)();
    MStatus (*initialize)();          ///< null for commands
    const char* unloadName = nullptr; ///< the name in the unload message where that differs
};

/// Takes the rows, one at a time.
class Registrar {
public:
    virtual ~Registrar() = default;
    virtual MStatus add(const RegistrationRow& row) = 0;
    virtual MStatus remove(const RegistrationRow& row) = 0;
};

/// Registers the rows in order. The first failure is printed to the error output as "initializePlugin: NAME" with the
/// host's text, and returned; what was registered before stays so.
MStatus registerRows(std::span<const RegistrationRow> rows, Registrar& registrar);

/// Deregisters the rows, in the same order; the first failure is printed as "uninitializePlugin: NAME" and returned.
MStatus deregisterRows(std::span<const RegistrationRow> rows, Registrar& registrar);

/// All that the plug-in brings, in registration order.
std::span<const RegistrationRow> registrationTable();

/// A creator as the host wants it; null when the construction failed, since no exception may reach the host.
template <class Product>
void* createInstance() noexcept {
    using Base = std::conditional_t<std::is_base_of_v<MPxCommand, Product>, MPxCommand, MPxNode>;
    try {
        return static_cast<Base*>(new Product);
    } catch (...) {
        return nullptr;
    }
}

template <class Node>
RegistrationRow locatorRow(const char* name) {
    return {name, RegistrationKind::Locator, &Node::id, &createInstance<Node>, &Node::initialize};
}
template <class Node>
RegistrationRow dependencyRow(const char* name) {
    return {name, RegistrationKind::Dependency, &Node::id, &createInstance<Node>, &Node::initialize};
}
template <class Command>
RegistrationRow commandRow(const char* name) {
    return {name, RegistrationKind::Command, nullptr, &createInstance<Command>, nullptr};
}

} // namespace orvo
