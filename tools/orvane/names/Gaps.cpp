// Words for gaps.
#include "tools/orvane/names/Gaps.h"

#include <fmt/format.h>

namespace OrvaneTool {

using Clock = std::chrono::system_clock;

bool isAway(const Orvane::Failure& failure) {
    using Kind = Orvane::FailureKind;
    return mayPass(failure) && failure.kind() != Kind::Refused && failure.kind() != Kind::BadReply;
}

void Gaps::note(const Orvane::Failure& failure) {
    if (isOpen())
        return;
    // The failure took its time before it was told.
    begun_ = Clock::now() - std::chrono::duration_cast<Clock::duration>(failure.spent());
    cause_ = failure;
}

std::optional<Gap> Gaps::close() {
    if (!isOpen())
        return std::nullopt;
    const Gap gap{begun_, Clock::now(), *cause_};
    cause_.reset();
    seconds_ += std::chrono::duration<double>(gap.until - gap.from).count();
    ++count_;
    return gap;
}

std::string Gaps::summary() const {
    return count_ == 0 ? "" : fmt::format(", {} gap{} of {:.1f} s", count_, count_ == 1 ? "" : "s", seconds_);
}

} // namespace OrvaneTool
