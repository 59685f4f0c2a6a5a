// Limits of calls and their cancellation, for C.
#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"

#include <chrono>

using namespace Orvane::RackC;

extern "C" {

orvane_limits orvane_default_limits(void) {
    const Orvane::Within usual;
    return {std::chrono::duration<double>(usual.time).count(), usual.repeat.reads, usual.repeat.writes, 1,
            nullptr};
}

orvane_limits orvane_within(double seconds) {
    orvane_limits limits = orvane_default_limits();
    limits.seconds = seconds;
    return limits;
}

orvane_limits orvane_once(orvane_limits limits) {
    limits.read_repeats = limits.write_repeats = 0;
    return limits;
}

int orvane_cancellation_new(orvane_cancellation** cancellation, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({cancellation});
        *cancellation = new orvane_cancellation;
    });
}

void orvane_cancellation_cancel(orvane_cancellation* cancellation) {
    cancellation->cancellation.cancel();
}

void orvane_cancellation_reset(orvane_cancellation* cancellation) {
    cancellation->cancellation.reset();
}

void orvane_cancellation_free(orvane_cancellation* cancellation) {
    delete cancellation;
}

} // extern "C"
