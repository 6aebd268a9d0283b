#include "mel/Services.h"

namespace host {

namespace {
// Filled by the initialisation of another source: it must not be initialised itself.
constinit Services::Source theSource = nullptr;
} // namespace

void Services::provide(Source source) { theSource = source; }

Services& Services::current() { return theSource(); }

} // namespace host
