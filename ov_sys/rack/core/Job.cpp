// What a job says that ran out of memory.
#include "ov_sys/rack/core/Job.h"

#include <utility>

namespace Orvane::RackCore {

const Failure& memoryRanOut() {
    static const Failure failure = [] {
        FailureDetails details;
        details.kind = FailureKind::Cancelled;
        details.advice = "Memory ran out. What was already sent may have been executed.";
        return Failure(std::move(details));
    }();
    return failure;
}

} // namespace Orvane::RackCore
