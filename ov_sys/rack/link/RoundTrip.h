// How long a board takes to answer, and so when a missing answer counts as lost.
#pragma once

#include <algorithm>
#include <chrono>

namespace Orvane::RackLink {

// Smoothed round-trip time and its variation, by the usual rule of TCP. One thread at a time.
class RoundTrip {
public:
    using Duration = std::chrono::steady_clock::duration;

    // An answer to a request that was sent only once.
    void measured(Duration time) noexcept {
        if (!known_) {
            known_ = true;
            mean_ = time;
            deviation_ = time / 2;
        } else {
            deviation_ += part((mean_ < time ? time - mean_ : mean_ - time) - deviation_, 2);
            mean_ += part(time - mean_, 3);
        }
        first_ = std::clamp<Duration>(mean_ + 4 * deviation_, kShortest, kLongest);
    }

    // The wait before a request goes out again, `losses` of it having remained without answer.
    Duration patience(unsigned losses) const noexcept {
        if (losses == 0)
            return first_;
        return std::min<Duration>(first_ * (1U << std::min(losses, kDoublings)), kLongest);
    }

private:
    static constexpr std::chrono::milliseconds kShortest{50};
    static constexpr std::chrono::milliseconds kLongest{1000};
    static constexpr unsigned kDoublings = 5;

    // So many times the half of it, rounded down.
    static constexpr Duration part(Duration time, unsigned halves) noexcept {
        return Duration(time.count() >> halves);
    }

    bool known_ = false;
    Duration mean_{};
    Duration deviation_{};
    Duration first_ = std::chrono::milliseconds(100); // the wait for the first answer
};

} // namespace Orvane::RackLink
