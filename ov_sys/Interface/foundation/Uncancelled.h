// Puts the cancellation of a thread off.
#pragma once

#include <pthread.h>

namespace Orvane {

// While it lives, the calling thread is not cancelled; a request that came meanwhile takes effect at the
// thread's next cancellation point afterwards. May be nested.
class Uncancelled {
public:
    Uncancelled() noexcept { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &outer_); }
    ~Uncancelled() { pthread_setcancelstate(outer_, nullptr); }
    Uncancelled(const Uncancelled&) = delete;
    Uncancelled& operator=(const Uncancelled&) = delete;

private:
    int outer_ = PTHREAD_CANCEL_ENABLE;
};

} // namespace Orvane
