// The moment at which waiting for a socket ends.
#pragma once

#include <chrono>

namespace Orvane {

// A point on the steady clock. Throws nothing.
class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(Clock::time_point end) noexcept : end_(end) {}
    static Deadline after(Clock::duration wait) noexcept { return Deadline(Clock::now() + wait); }

    Clock::time_point end() const noexcept { return end_; }
    bool passed() const noexcept { return Clock::now() >= end_; }

    // Blocks until `fd` is ready for `events` (POLLIN, POLLOUT) or has failed; false when the deadline passed
    // first. A deadline in the past still looks once.
    bool waitFor(int fd, short events) const noexcept;

private:
    Clock::time_point end_;
};

} // namespace Orvane
