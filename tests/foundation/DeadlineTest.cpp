// The moment at which waiting for a descriptor ends.
#include "ov_sys/Interface/foundation/Deadline.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
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

TEST(Deadline, IsNotWaitedForWhenTheSystemRefusesToLook) {
    const FileDescriptor silent = event(0);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const Deadline deadline = Deadline::after(std::chrono::hours(1));
    EXPECT_FALSE(deadline.waitFor(silent.get(), POLLIN));
    EXPECT_FALSE(deadline.passed());
    setrlimit(RLIMIT_NOFILE, &before);
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
