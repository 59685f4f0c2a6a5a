// What a caller may say about one call: how long, how often, and who may end it.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <atomic>
#include <chrono>

namespace Orvane {

// How often a request whose answer is missing is sent again. Reads that change nothing are repeated up to the
// deadline in any case, except by once().
struct Repeat {
    static constexpr unsigned kUpToTheDeadline = ~0U;

    unsigned reads = kUpToTheDeadline;
    unsigned writes = 16;

    // Writes are sent at most 1 + `times` times each.
    static constexpr Repeat writesAtMost(unsigned times) noexcept { return {kUpToTheDeadline, times}; }
    // For registers whose access has side effects: nothing is ever sent twice.
    static constexpr Repeat once() noexcept { return {0, 0}; }
};

// Ends waits of any number of calls, from any thread and from signal handlers. It must outlive the calls.
class ORVANE_API Cancellation {
public:
    // Throws std::system_error when there is no descriptor left.
    Cancellation();
    ~Cancellation();
    Cancellation(const Cancellation&) = delete;
    Cancellation& operator=(const Cancellation&) = delete;

    // The calls return with FailureKind::Cancelled within 50 ms, and so do later ones.
    void cancel() noexcept;
    // From now on calls are not cancelled.
    void reset() noexcept;
    bool cancelled() const noexcept { return cancelled_.load(std::memory_order_acquire); }
    // Readable while cancelled.
    int descriptor() const noexcept { return event_; }

private:
    std::atomic<bool> cancelled_{false};
    int event_;
};

// The limits of one call. `time` counts from the call's beginning.
struct Within {
    std::chrono::nanoseconds time = std::chrono::seconds(5); // from the beginning of the call
    Repeat repeat{};
    bool heal = true; // look a lost board up and open a lost session again
    const Cancellation* cancellation = nullptr;

    // The same limits with another policy.
    constexpr Within repeating(Repeat policy) const noexcept {
        Within copy = *this;
        copy.repeat = policy;
        return copy;
    }
    // The same limits, nothing sent twice.
    constexpr Within once() const noexcept { return repeating(Repeat::once()); }
    // The same limits; a lost session or board is a failure.
    Within withoutHealing() const noexcept {
        Within copy = *this;
        copy.heal = false;
        return copy;
    }
    // The same limits, ended by `who`, which must outlive the call.
    Within cancelledBy(const Cancellation& who) const noexcept {
        Within copy = *this;
        copy.cancellation = &who;
        return copy;
    }
};

// within(500ms), within(2s).once()
inline Within within(std::chrono::nanoseconds time) noexcept {
    Within limits;
    limits.time = time;
    return limits;
}

} // namespace Orvane
