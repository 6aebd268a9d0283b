#pragma once

namespace host::mel {

class Interpreter;

/// Registers the commands of the user interface as a session without one has them: `about -batch` answers 1, and the
/// others refuse. A window registers its own in their place.
void registerInterfaceRefusals(Interpreter& interpreter);

/// What `about -batch` answers from now on.
void setBatch(Interpreter& interpreter, bool batch);

} // namespace host::mel
