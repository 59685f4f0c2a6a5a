// The frame of pings.
#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "tests/support/buses/ScriptedFrame.h"
#include "tests/support/HookedClient.h"
#include "tests/support/SleepingThread.h"
#include "tests/support/WrittenText.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace Orvane {
namespace {

using namespace OrvaneTest;

constexpr const char* kPingHandling = "keepAliveRPC call error: 5. Session error handling started...\n";

class ValidationFrame : public ScriptedFrame<ID_Param> {
protected:
    Outcome run(const Stub::Answer& answer) {
        return outcomeOf(answer, [this] {
            DO_RPC_VALIDATION(Stub::call, ID_Param{77}, &result, session, BoardConnection::KEEPALIVE);
        });
    }
};

TEST_F(ValidationFrame, SucceedsAndCountsThePing) {
    const Outcome outcome = run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(params[0].handle, 77U);
    EXPECT_EQ(session.pingSequence, 1);
    EXPECT_EQ(session.callSequence, 101);
}

TEST_F(ValidationFrame, PingSequenceWrapsAtSixteenBits) {
    session.pingSequence = 0xFFFF;
    run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
    EXPECT_EQ(session.pingSequence, 0);
}

TEST_F(ValidationFrame, DoesNotChangeTheStateOfTheSession) {
    for (const int state : {0, 1, 2, 3}) {
        session.setSessionState(static_cast<PhySession::SessionState_t>(state));
        run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
        EXPECT_EQ(session.getSessionState(), state);
    }
}

TEST_F(ValidationFrame, MarksTheClientBusyForTheCall) {
    std::vector<bool> marks;
    auto& hooked = hookClient<ThreadSafeRPCClient>(*session.connection, BoardConnection::KEEPALIVE);
    hooked.onBusy = [&](bool busy) { marks.push_back(busy); };
    bool during = false;
    run([&](std::size_t, Simple_Result& answered) {
        during = hooked.isBusy();
        return answer(answered, 0);
    });
    EXPECT_TRUE(during);
    EXPECT_EQ(marks, (std::vector<bool>{true, false}));
}

TEST_F(ValidationFrame, RepeatsBusyResultsWithoutLimit) {
    const Outcome outcome = run(
        [](std::size_t number, Simple_Result& answered) { return answer(answered, number <= 30 ? -16 : 0); });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(calls, 31U);
    EXPECT_EQ(session.pingSequence, 1);
}

TEST_F(ValidationFrame, ThrowsForTheCodesThatEndACall) {
    for (const auto& [code, text] :
         {std::pair(-13, "Device is in use or access denied."), std::pair(-22, "raiseRemoteError: Error"),
          std::pair(-56, "The board session is no longer valid.")}) {
        const int verdict = code;
        EXPECT_EQ(run([=](std::size_t, Simple_Result& answered) { return answer(answered, verdict); }).thrown,
                  text);
        EXPECT_EQ(session.pingSequence, 0);
    }
}

TEST_F(ValidationFrame, TakesABusyResultOfADeadSessionForDone) {
    session.setSessionState(PhySession::SESSION_INVALID);
    const Outcome outcome = run([](std::size_t, Simple_Result& answered) { return answer(answered, -16); });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(session.pingSequence, 1);
}

TEST_F(ValidationFrame, PingsAgainOnceTheConnectionIsRetrained) {
    const Outcome outcome = run([](std::size_t number, Simple_Result& answered) {
        return number == 1 ? RPC_TIMEDOUT : answer(answered, 0);
    });
    EXPECT_EQ(outcome.error, kPingHandling);
    EXPECT_EQ(calls, 2U);
    EXPECT_EQ(session.pingSequence, 1);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_RETRAINED);
}

TEST_F(ValidationFrame, NeverGivesUpWhileRetrainingSucceeds) {
    const Outcome outcome = run([&](std::size_t number, Simple_Result& answered) {
        session.setSessionState(PhySession::SESSION_VALID);
        return number <= 20 ? RPC_TIMEDOUT : answer(answered, 0);
    });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(calls, 21U);
    EXPECT_EQ(count("ping"), 20U);
}

TEST_F(ValidationFrame, ReturnsInSilenceWhenTheErrorIsNotHandled) {
    const Outcome outcome = run([](std::size_t, Simple_Result&) { return RPC_PROGUNAVAIL; });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, "keepAliveRPC call error: 8. Session error handling started...\n");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(session.pingSequence, 0);
}

TEST_F(ValidationFrame, ReturnsWhenAnotherThreadIsStillRetraining) {
    session.setSessionState(PhySession::SESSION_ERROR_HANDLING);
    const Outcome outcome = run([](std::size_t, Simple_Result&) { return RPC_TIMEDOUT; });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(session.pingSequence, 0);
}

TEST_F(ValidationFrame, ReturnsWhenRetrainingKillsTheSession) {
    client(BoardConnection::SETUP).reset();
    const Outcome outcome = run([](std::size_t, Simple_Result&) { return RPC_TIMEDOUT; });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(ValidationFrame, TakesAnUnconnectedClientForARequestThatWasNotSent) {
    client(BoardConnection::KEEPALIVE).reset();
    const Outcome outcome = run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, "keepAliveRPC call error: 3. Session error handling started...\n");
    EXPECT_EQ(calls, 0U);
    EXPECT_EQ(session.pingSequence, 0);
    EXPECT_TRUE(board.requests("portmap").empty());
}

TEST_F(ValidationFrame, WaitsWhileTheSessionIsBusy) {
    session.setSessionBusy(60000);
    const SleepingThread pinging;
    std::atomic<bool> ended{false};
    bool calledWhileBusy = false;
    std::thread command([&] {
        pinging.await();
        ended = true;
        session.resetSessionBusy();
    });
    run([&](std::size_t, Simple_Result& answered) {
        calledWhileBusy = !ended;
        return answer(answered, 0);
    });
    command.join();
    EXPECT_FALSE(calledWhileBusy);
    EXPECT_EQ(calls, 1U);
}

TEST_F(ValidationFrame, PingsAfterABusyTimeThatHasRunOut) {
    session.setSessionBusy(-1);
    const Outcome outcome = run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(session.pingSequence, 1);
}

TEST_F(ValidationFrame, DropsAnAnswerOfTheBusyTimeAndPingsAgain) {
    const SleepingThread pinging;
    std::thread command;
    const Outcome outcome = run([&](std::size_t number, Simple_Result& answered) {
        if (number > 1)
            return answer(answered, 0);
        session.setSessionBusy(60000);
        command = std::thread([&] {
            pinging.await();
            session.resetSessionBusy();
        });
        return answer(answered, -56);
    });
    command.join();
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(calls, 2U);
    EXPECT_EQ(session.pingSequence, 1);
    EXPECT_TRUE(session.isValid());
}

TEST_F(ValidationFrame, JudgesAnAnswerOfABusyTimeThatHasRunOut) {
    const Outcome outcome = run([&](std::size_t, Simple_Result& answered) {
        session.setSessionBusy(-1);
        return answer(answered, -22);
    });
    EXPECT_EQ(outcome.thrown, "raiseRemoteError: Error");
    EXPECT_EQ(calls, 1U);
}

} // namespace
} // namespace Orvane
