#pragma once

#include <functional>

namespace host {

/// Asked now and then by work that takes long, with the part of it that is done, 0 to 1: shows that to the user, and
/// answers whether the work is to be given up. Empty where nobody watches.
std::function<bool(double part)>& workWatch();

} // namespace host
