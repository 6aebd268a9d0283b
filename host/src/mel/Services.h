#pragma once

namespace host {

namespace mel {
class Interpreter;
}

/// What the rooms below ask of the running host. The top floor implements it.
class Services {
public:
    using Source = Services& (*)();
    /// Says who answers current(): the top floor, before main begins.
    static void provide(Source source);
    static Services& current();

    /// Where the commands are that scripts and plug-ins run.
    virtual mel::Interpreter& interpreter() = 0;

protected:
    ~Services() = default;
};

} // namespace host
