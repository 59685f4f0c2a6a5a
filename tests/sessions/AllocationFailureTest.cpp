// Memory that runs out while a session handles an error.
#include "tests/support/allocations/AllocationFailure.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/HookedClient.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace Orvane {
namespace {

using namespace OrvaneTest;

class FailedAllocation : public testing::Test, public SessionOnBoard {
protected:
    // Fails each allocation of the handling of a transport error in turn: whatever comes of it, it is over.
    void expectTheHandlingToEnd() {
        std::size_t failed = 0;
        std::size_t stuck = 0;
        const auto handle = [&] { session.onRPCCallError(RPC_TIMEDOUT, "mdio"); };
        const auto look = [&] {
            stuck += session.getSessionState() == PhySession::SESSION_ERROR_HANDLING ? 1U : 0U;
            session.setSessionState(PhySession::SESSION_VALID);
        };
        textWritten([&] { failed = failEachAllocation(handle, look); });
        EXPECT_GT(failed, 0U);
        EXPECT_EQ(stuck, 0U);
    }
    // What the board's ping is to throw instead of going out.
    template <class Problem>
    void letPingThrow() {
        hookClient(*session.connection, BoardConnection::SETUP).onBusy = [](bool busy) {
            if (busy)
                throw Problem();
        };
    }
};

struct LongReason : std::runtime_error {
    LongReason() : runtime_error("a reason that does not fit the room which a short text has") {}
};

TEST_F(FailedAllocation, WhileABoardIsGivenUpDoesNotKeepTheSessionInItsErrorHandling) {
    letPingThrow<Exceptions::NoDevice>();
    expectTheHandlingToEnd();
}

TEST_F(FailedAllocation, WhileTheReasonIsToldDoesNotKeepTheSessionInItsErrorHandling) {
    letPingThrow<LongReason>();
    expectTheHandlingToEnd();
}

TEST_F(FailedAllocation, AfterSomethingElseWasThrownDoesNotKeepTheSessionInItsErrorHandling) {
    letPingThrow<int>();
    expectTheHandlingToEnd();
}

} // namespace
} // namespace Orvane
