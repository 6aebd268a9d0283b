#pragma once

#include "base/Messages.h"

#include <utility>

namespace orvo::test {

/// Takes what the host tells its user for as long as it lives; then whoever took it before takes it again.
class MessageSink {
public:
    explicit MessageSink(host::Messages::Sink sink) : previous_(host::Messages::instance().setSink(std::move(sink))) {}
    ~MessageSink() { host::Messages::instance().setSink(std::move(previous_)); }
    MessageSink(const MessageSink&) = delete;
    MessageSink& operator=(const MessageSink&) = delete;

private:
    host::Messages::Sink previous_;
};

} // namespace orvo::test
