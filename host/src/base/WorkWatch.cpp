#include "base/WorkWatch.h"

namespace host {

std::function<bool(double part)>& workWatch() {
    static std::function<bool(double)> watch;
    return watch;
}

} // namespace host
