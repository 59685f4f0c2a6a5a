// The moment at which waiting for a descriptor ends.
#include "ov_sys/Interface/foundation/Deadline.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/time.h>

namespace Orvane {
namespace {

using namespace std::chrono_literals;

// An event that has happened `count` times.
FileDescriptor event(unsigned count) {
    return FileDescriptor(eventfd(count, EFD_CLOEXEC));
}

TEST(Deadline, LooksOnceAtAReadyDescriptorWhenItHasPassed) {
    EXPECT_TRUE(Deadline::after(-1s).waitFor(event(1).get(), POLLIN));
}

TEST(Deadline, EndsAWaitForADescriptorThatStaysSilent) {
    const Deadline deadline = Deadline::after(20ms);
    EXPECT_FALSE(deadline.waitFor(event(0).get(), POLLIN));
    EXPECT_TRUE(deadline.passed());
}

TEST(Deadline, IsKeptWhileSignalsInterruptTheWait) {
    struct sigaction before {};
    struct sigaction handle {};
    handle.sa_handler = [](int) {};
    sigaction(SIGALRM, &handle, &before);
    const itimerval often = {{0, 5000}, {0, 5000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    const Deadline deadline = Deadline::after(100ms);
    const bool ready = deadline.waitFor(event(0).get(), POLLIN);
    const bool passed = deadline.passed();
    const itimerval never = {};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_FALSE(ready);
    EXPECT_TRUE(passed);
}

} // namespace
} // namespace Orvane
