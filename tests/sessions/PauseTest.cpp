// Pauses that last, that end early, and that forget an end.
#include "ov_sys/Interface/sessions/Pause.h"

#include "tests/support/FrequentSignals.h"

#include <cerrno>
#include <chrono>
#include <gtest/gtest.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

class ThreadsPause : public testing::Test {
protected:
    Pause pause;

    steady_clock::duration slept(long ms) {
        const auto start = steady_clock::now();
        pause.sleep(ms);
        return steady_clock::now() - start;
    }
};

TEST_F(ThreadsPause, LastsAsLongAsItIsTold) {
    EXPECT_GE(slept(200), milliseconds(200));
}

TEST_F(ThreadsPause, LastsAsLongWhateverSignalsArrive) {
    const FrequentSignals signals;
    EXPECT_GE(slept(200), milliseconds(200));
}

// Across the end of a second of the clock, too.
TEST_F(ThreadsPause, OfNearlyASecondLastsAsLong) {
    EXPECT_GE(slept(999), milliseconds(999));
}

TEST_F(ThreadsPause, ThatEndedBeforehandDoesNotTimeOut) {
    pause.end();
    errno = EINTR; // of an earlier call
    pause.sleep(999);
    EXPECT_EQ(errno, EINTR);
}

TEST_F(ThreadsPause, LastsAfterItsEndsWereForgotten) {
    pause.end();
    pause.end();
    pause.reset();
    EXPECT_GE(slept(100), milliseconds(100));
}

} // namespace
} // namespace Orvane
