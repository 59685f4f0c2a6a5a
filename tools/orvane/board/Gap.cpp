// What a gap is called, and what makes one.
#include "tools/orvane/board/Gap.h"

#include "tools/orvane/board/Failures.h"
#include "tools/orvane/output/Units.h"

#include <fmt/format.h>

namespace OrvaneTool {

std::string Gap::text() const {
    return fmt::format("gap {} to {}: {}", timeText(from), timeText(until), Orvane::toText(cause.kind()));
}

void Gap::addTo(Record& record) const {
    record.put("from", timeText(from)).put("until", timeText(until)).error(recordError(cause, textOf(cause)));
}

bool mayPass(const Orvane::Failure& failure) {
    using Kind = Orvane::FailureKind;
    switch (failure.kind()) {
    case Kind::Unreachable:
    case Kind::TimedOut:
    case Kind::Refused:
    case Kind::Busy:
    case Kind::LostSession:
    case Kind::BadReply:
        return true;
    default:
        return false;
    }
}

} // namespace OrvaneTool
