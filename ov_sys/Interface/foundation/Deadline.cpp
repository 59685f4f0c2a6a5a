// The wait for a descriptor, which signals do not cut short.
#include "ov_sys/Interface/foundation/Deadline.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>

namespace Orvane {

bool Deadline::waitFor(int fd, short events) const noexcept {
    using Milliseconds = std::chrono::milliseconds;
    constexpr Milliseconds::rep kLongest = 3'600'000; // poll() takes an int; the loop takes the rest
    for (;;) {
        const auto left = std::chrono::ceil<Milliseconds>(end_ - Clock::now()).count();
        pollfd entry{fd, events, 0};
        const int ready = poll(&entry, 1, static_cast<int>(std::clamp<Milliseconds::rep>(left, 0, kLongest)));
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            return false;
        if (ready == 0 && passed())
            return false;
    }
}

} // namespace Orvane
