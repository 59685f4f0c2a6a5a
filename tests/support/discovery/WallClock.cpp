// Stands before the system's clock_gettime().
#include "tests/support/discovery/WallClock.h"

#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace OrvaneTest {

namespace {

constexpr time_t kHour = 3600;

std::atomic<time_t> lost{0}; // seconds

} // namespace

WallClockSetBack::WallClockSetBack() {
    lost = kHour;
}

WallClockSetBack::~WallClockSetBack() {
    lost = 0;
}

} // namespace OrvaneTest

// Stands before the system library's, for this program and the libraries that it loads.
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec* now) noexcept {
    const int result = static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    if (result == 0 && clock == CLOCK_REALTIME)
        now->tv_sec -= OrvaneTest::lost;
    return result;
}
