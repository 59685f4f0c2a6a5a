// Stands before the system's calls of the same names.
#include "tests/support/discovery/Limits.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace OrvaneTest {

namespace {

constexpr int kFirstLargeDescriptor = 1024;

// The socket option that the thread is refused.
struct Refusal {
    int level = -1;
    int option = -1;
};
thread_local Refusal refused;

} // namespace

NoDescriptorsLeft::NoDescriptorsLeft() {
    EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before_), 0);
    rlimit none = before_;
    none.rlim_cur = 0;
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
}

NoDescriptorsLeft::~NoDescriptorsLeft() {
    setrlimit(RLIMIT_NOFILE, &before_);
}

LargeDescriptors::LargeDescriptors() {
    EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before_), 0);
    rlimit all = before_;
    all.rlim_cur = all.rlim_max;
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &all), 0);
    int latest = 0;
    while (latest >= 0 && latest < kFirstLargeDescriptor - 1) {
        latest = open("/dev/null", O_RDONLY | O_CLOEXEC);
        occupied_.emplace_back(latest);
    }
    EXPECT_EQ(latest, kFirstLargeDescriptor - 1);
}

LargeDescriptors::~LargeDescriptors() {
    setrlimit(RLIMIT_NOFILE, &before_);
}

void refuseSocketOption(int level, int option) {
    refused = {level, option};
}

} // namespace OrvaneTest

// Stands before the system library's, for this program and the libraries that it loads.
extern "C" __attribute__((visibility("default"))) int
setsockopt(int socket, int level, int option, const void* value, socklen_t length) noexcept {
    const OrvaneTest::Refusal& refused = OrvaneTest::refused;
    if (refused.level == level && refused.option == option) {
        errno = EPERM;
        return -1;
    }
    return static_cast<int>(syscall(SYS_setsockopt, socket, level, option, value, length));
}
