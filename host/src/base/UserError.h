#pragma once

#include <stdexcept>

namespace host {

/// A request that is refused. Its text is for the user.
class UserError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace host
