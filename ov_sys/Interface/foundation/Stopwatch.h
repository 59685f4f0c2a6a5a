// Elapsed time in whole milliseconds, and the scaled comparison that several waits make with it.
#pragma once

#include <chrono>
#include <cstdint>

namespace Orvane {

// Starts at construction; steady clock. One thread.
class Stopwatch {
public:
    std::int64_t elapsedMs() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start_).count();
    }

    // The elapsed milliseconds times 100000 in unsigned 32-bit arithmetic, wrapping. The waits hold this
    // against their limit, so that a limit below 100000 is reached within a millisecond (docs/limits.md, "Odd
    // on purpose").
    std::uint32_t scaledElapsed() const { return static_cast<std::uint32_t>(elapsedMs()) * 100000U; }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};

} // namespace Orvane
