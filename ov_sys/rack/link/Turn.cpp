// A turn that its thread may take again, and that others wait for until their deadline.
#include "ov_sys/rack/link/Turn.h"

#include <algorithm>

namespace Orvane::RackLink {

bool Turn::takeFree(const std::thread::id& self) {
    if (depth_ != 0 && holder_ != self)
        return false;
    holder_ = self;
    ++depth_;
    return true;
}

bool Turn::tryTake() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return takeFree(std::this_thread::get_id());
}

Turn::Taken Turn::take(TimePoint deadline, const Cancellation* cancellation) {
    constexpr std::chrono::milliseconds kLook{20}; // between two looks at the cancellation
    const std::thread::id self = std::this_thread::get_id();
    std::unique_lock<std::mutex> lock(mutex_);
    if (takeFree(self))
        return Taken::Yes;
    ++waiting_;
    Taken outcome = Taken::Yes;
    while (!takeFree(self)) {
        const TimePoint now = std::chrono::steady_clock::now();
        if (cancellation != nullptr && cancellation->cancelled())
            outcome = Taken::Cancelled;
        else if (now >= deadline)
            outcome = Taken::TooLate;
        if (outcome != Taken::Yes)
            break;
        free_.wait_until(lock, cancellation != nullptr ? std::min(deadline, now + kLook) : deadline);
    }
    --waiting_;
    return outcome;
}

void Turn::leave() {
    bool wake = false;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        wake = --depth_ == 0 && waiting_ > 0;
    }
    if (wake)
        free_.notify_one();
}

bool Turn::wanted() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return waiting_ > 0;
}

bool Turn::blocks() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return waiting_ > 0 && depth_ == 1;
}

} // namespace Orvane::RackLink
