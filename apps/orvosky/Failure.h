#pragma once

#include <stdexcept>

namespace orvosky {

/// A failure whose text is for the user.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace orvosky
