#pragma once

#include <iosfwd>

using std::istream;
using std::ostream;
