// The limits of one operation, fixed when it begins, and what it has cost so far.
#pragma once

#include "ov_sys/rack/link/Call.h"

namespace Orvane::RackLink {

// Travels down from the public edge through all the calls that an operation takes. One thread.
class Limits {
public:
    explicit Limits(const Within& said) noexcept
        : within(said), begun(Clock::now()), now(begun), end(endOf(said, begun)) {}

    // Whether the caller has ended the operation.
    bool cancelled() const noexcept {
        return within.cancellation != nullptr && within.cancellation->cancelled();
    }

    const Within& within;
    const TimePoint begun;
    TimePoint now; // when the clock was read last
    const TimePoint end;
    unsigned attempts = 0; // requests sent

private:
    static TimePoint endOf(const Within& said, TimePoint begun) noexcept {
        if (said.time >= TimePoint::max() - begun)
            return TimePoint::max();
        return begun + std::chrono::duration_cast<Clock::duration>(said.time);
    }
};

} // namespace Orvane::RackLink
