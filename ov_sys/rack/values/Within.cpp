// The descriptor by which a cancellation wakes those who wait.
#include "ov_sys/rack/values/Within.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace Orvane {

Cancellation::Cancellation() : event_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (event_ < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

Cancellation::~Cancellation() {
    close(event_);
}

void Cancellation::cancel() noexcept {
    const int former = errno; // signal handlers come here
    cancelled_.store(true, std::memory_order_release);
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(event_, &one, sizeof one); // full means readable, too
    errno = former;
}

void Cancellation::reset() noexcept {
    cancelled_.store(false, std::memory_order_release);
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t got = read(event_, &count, sizeof count);
}

} // namespace Orvane
