#pragma once

namespace host::mel {

/// Throws Error("Stack overflow...") when little is left of the thread's stack, before a script's recursion or a
/// deeply nested text can crash the process.
void checkStack();

} // namespace host::mel
