// Waiting for the end of error handling.
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/SleepingThread.h"

#include <gtest/gtest.h>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using State = PhySession::SessionState_t;

constexpr unsigned kFortySeconds = 4000000000U; // in hundred-thousandths of a millisecond

struct Wait {
    int (PhySession::*wait)(unsigned);
    int state;
    int result;
};

class SessionWait : public testing::TestWithParam<Wait> {
protected:
    PhySession session{"board7", simpleMode()};

    int waitFor(unsigned timeout) {
        session.setSessionState(static_cast<State>(GetParam().state));
        return (session.*GetParam().wait)(timeout);
    }
};

class DecidedWait : public SessionWait {};

TEST_P(DecidedWait, ReturnsItsResultHoweverLongTheLimit) {
    EXPECT_EQ(waitFor(kFortySeconds), GetParam().result);
}

TEST_P(DecidedWait, OfZeroIsTwoWhateverTheState) {
    EXPECT_EQ(waitFor(0), 2);
}

INSTANTIATE_TEST_SUITE_P(States, DecidedWait,
                         testing::Values(Wait{&PhySession::waitForErrorHandling, 0, 0},
                                         Wait{&PhySession::waitForErrorHandling, 2, 0},
                                         Wait{&PhySession::waitForErrorHandling, 3, 1},
                                         Wait{&PhySession::waitForSessionValidation, 0, 0},
                                         Wait{&PhySession::waitForSessionValidation, 3, 1}));

class StuckWait : public SessionWait {};

TEST_P(StuckWait, IsTwoAfterOnePauseWithTheUsualLimit) {
    const auto start = steady_clock::now();
    EXPECT_EQ(waitFor(65000), 2);
    EXPECT_GE(steady_clock::now() - start, milliseconds(50));
    EXPECT_LT(steady_clock::now() - start, milliseconds(20000));
}

TEST_P(StuckWait, OfZeroIsTwo) {
    EXPECT_EQ(waitFor(0), 2);
}

TEST_P(StuckWait, EndsWithOneWhenTheSessionDies) {
    const SleepingThread waiting;
    std::thread other([&] {
        waiting.await();
        session.setSessionState(PhySession::SESSION_INVALID);
    });
    EXPECT_EQ(waitFor(kFortySeconds), 1);
    other.join();
}

TEST_P(StuckWait, EndsWithZeroWhenTheSessionIsValidAgain) {
    const SleepingThread waiting;
    std::thread other([&] {
        waiting.await();
        session.setSessionState(PhySession::SESSION_VALID);
    });
    EXPECT_EQ(waitFor(kFortySeconds), 0);
    other.join();
}

INSTANTIATE_TEST_SUITE_P(States, StuckWait,
                         testing::Values(Wait{&PhySession::waitForErrorHandling, 1, 2},
                                         Wait{&PhySession::waitForErrorHandling, 4, 2},
                                         Wait{&PhySession::waitForSessionValidation, 1, 2},
                                         Wait{&PhySession::waitForSessionValidation, 2, 2},
                                         Wait{&PhySession::waitForSessionValidation, 4, 2}));

} // namespace
} // namespace Orvane
