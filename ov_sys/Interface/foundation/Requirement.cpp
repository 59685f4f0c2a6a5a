// The end of a process whose caller broke a contract.
#include "ov_sys/Interface/foundation/Requirement.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <cstdlib>

namespace Orvane {

void requirementFailed(const char* condition, const char* source) {
    Diagnostics::error(source, ": Assertion `", condition, "' failed.");
    std::abort();
}

} // namespace Orvane
