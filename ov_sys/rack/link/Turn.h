// Whose turn it is to talk to a board.
#pragma once

#include "ov_sys/rack/values/Within.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace Orvane::RackLink {

// One thread at a time, which may take it again; others wait no longer than they want to. Guards a link and
// its sessions. Held across the board's answers, so nobody waits for it without a deadline.
class Turn {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    enum class Taken { Yes, TooLate, Cancelled };

    Taken take(TimePoint deadline, const Cancellation* cancellation);
    bool tryTake();
    void leave();
    // Whether somebody waits: a holder in no hurry should leave.
    bool wanted() const;
    // Whether somebody waits and leave() would let him in.
    bool blocks() const;

private:
    bool takeFree(const std::thread::id& self); // under mutex_

    mutable std::mutex mutex_; // guards everything below
    std::condition_variable free_;
    std::thread::id holder_;
    unsigned depth_ = 0;
    unsigned waiting_ = 0;
};

// Leaves a turn that was taken.
class TurnGuard {
public:
    explicit TurnGuard(Turn& turn) noexcept : turn_(&turn) {}
    ~TurnGuard() { leave(); }
    TurnGuard(const TurnGuard&) = delete;
    TurnGuard& operator=(const TurnGuard&) = delete;

    void leave() {
        if (Turn* const left = std::exchange(turn_, nullptr))
            left->leave();
    }
    // Leaves at the end again what was taken again.
    void guard(Turn& turn) noexcept { turn_ = &turn; }

private:
    Turn* turn_;
};

} // namespace Orvane::RackLink
