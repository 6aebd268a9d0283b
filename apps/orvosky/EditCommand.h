#pragma once

#include "Session.h"

#include "../window/WindowModule.h"

#include <optional>

namespace orvosky {

/// What the program lends to the window; the session comes into `session` when the window is ready for it. All of them
/// outlive the window.
window::WindowStart windowStart(const CommonOptions& common, const EditOptions& options,
                                std::optional<Session>& session);

} // namespace orvosky
