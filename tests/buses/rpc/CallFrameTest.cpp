// The general call frame: attempts, thresholds, verdicts.
#include "ov_sys/Interface/buses/rpc/CallFrame.h"

#include "tests/support/buses/ScriptedFrame.h"
#include "tests/support/HookedClient.h"
#include "tests/support/RepeatedText.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace Orvane {
namespace {

using namespace OrvaneTest;

constexpr const char* kBusy = "mdio Board in busy. Retrying...-16\n";
constexpr const char* kHandling = "mdioRPC call error: 5. Session error handling started...\n";
constexpr const char* kWarning =
    "Warning level of attempts for RPC call was achieved. Resetting connection...\n"
    "Retrieve connection to RPC server\n";
constexpr const char* kFatal = "Error level of attempts for RPC call was achieved.\n"
                               "Remote Error:5\n  \"RPC: Success\n\"\n";

class CallFrame : public ScriptedFrame<Simple_Param> {
protected:
    CallFrame() { rpc_createerr.cf_stat = RPC_SUCCESS; }

    Outcome run(const Stub::Answer& answer) {
        return outcomeOf(answer, [this] {
            DO_RPC(Stub::call, Simple_Param{11, session.identityWord()}, &result, session,
                   BoardConnection::MDIO);
        });
    }

    // A transport error, after which the session is as if a ping had validated it.
    clnt_stat failAndValidate() {
        session.setSessionState(PhySession::SESSION_VALID);
        return RPC_TIMEDOUT;
    }

    // `busy` busy answers, then `failures` transport errors, then success.
    Outcome runBusyThenFailing(std::size_t busy, std::size_t failures) {
        return run([=](std::size_t number, Simple_Result& answered) {
            if (number <= busy)
                return answer(answered, -16);
            return number <= busy + failures ? failAndValidate() : answer(answered, 0);
        });
    }
};

TEST_F(CallFrame, SucceedsAtOnceAndCountsTheCall) {
    session.initSessionInfo(0x42, 100);
    const Outcome outcome = run([](std::size_t, Simple_Result& answered) {
        answered.value = 7;
        return answer(answered, 0);
    });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(params[0].value, 11U);
    EXPECT_EQ(params[0].handle, 0x6442U);
    EXPECT_EQ(result.value, 7);
    EXPECT_EQ(session.callSequence, 101);
    EXPECT_EQ(session.pingSequence, 0);
}

TEST_F(CallFrame, CallSequenceWrapsAtSixteenBits) {
    session.initSessionInfo(1, 0xFFFF);
    run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
    EXPECT_EQ(session.callSequence, 0);
}

TEST_F(CallFrame, MarksTheClientBusyAroundEachAttempt) {
    std::vector<std::pair<bool, std::size_t>> marks;
    std::size_t made = 0;
    hookClient(*session.connection, BoardConnection::MDIO).onBusy = [&](bool busy) {
        marks.emplace_back(busy, made);
    };
    run([&](std::size_t number, Simple_Result& answered) {
        made = number;
        return answer(answered, number == 1 ? -16 : 0);
    });
    EXPECT_EQ(marks,
              (std::vector<std::pair<bool, std::size_t>>{{true, 0}, {false, 1}, {true, 1}, {false, 2}}));
}

TEST_F(CallFrame, ConnectsAClientThatHasNoHandle) {
    client(BoardConnection::MDIO).reset();
    const Outcome outcome = run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(programsLookedUp(), std::vector<unsigned long>{0x2FFFFFF2});
}

TEST_F(CallFrame, RefusesAClientThatCannotBeConnected) {
    board.stop();
    client(BoardConnection::MDIO).reset();
    const Outcome outcome = run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
    EXPECT_EQ(outcome.thrown, "Invalid RPC client: mdio");
    EXPECT_EQ(calls, 0U);
    EXPECT_TRUE(session.isValid());
}

TEST_F(CallFrame, RefusesAnUnknownClient) {
    Simple_Result ignored{};
    EXPECT_EQ(thrownText<std::out_of_range>([&] {
                  DO_RPC(Stub::call, Simple_Param{}, &ignored, session,
                         static_cast<BoardConnection::clientId>(8));
              }),
              "map::at");
}

TEST_F(CallFrame, RefusesAnInvalidSession) {
    session.setSessionState(PhySession::SESSION_INVALID);
    const Outcome outcome = run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); });
    EXPECT_EQ(outcome.thrown, "The board session is no longer valid.");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(calls, 0U);
}

TEST_F(CallFrame, AcceptsASessionInEveryOtherState) {
    for (const int state : {1, 2, 4}) {
        session.setSessionState(static_cast<PhySession::SessionState_t>(state));
        EXPECT_EQ(run([](std::size_t, Simple_Result& answered) { return answer(answered, 0); }).thrown, "");
        EXPECT_EQ(session.getSessionState(), state);
    }
}

TEST_F(CallFrame, GivesUpAfterEightTransportErrorsWithAResetBeforeTheSeventhCall) {
    std::vector<std::size_t> pingsBefore;
    const Outcome outcome = run([&](std::size_t, Simple_Result&) {
        pingsBefore.push_back(count("ping"));
        return failAndValidate();
    });
    EXPECT_EQ(outcome.thrown, "Remote error.");
    EXPECT_EQ(calls, 8U);
    EXPECT_EQ(outcome.error, times(5, kHandling) + kWarning + kHandling + kFatal);
    EXPECT_EQ(pingsBefore, (std::vector<std::size_t>{0, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(session.callSequence, 101);
}

TEST_F(CallFrame, SucceedsAtItsEighthCall) {
    const Outcome outcome = runBusyThenFailing(0, 7);
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(calls, 8U);
    EXPECT_EQ(session.callSequence, 102);
}

TEST_F(CallFrame, IsFatalAtOnceWhenTheErrorIsNotHandled) {
    const Outcome outcome = run([](std::size_t, Simple_Result&) { return RPC_PROGUNAVAIL; });
    EXPECT_EQ(outcome.thrown, "Remote error.");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(outcome.error, "mdioRPC call error: 8. Session error handling started...\n"
                             "Error level of attempts for RPC call was achieved.\n"
                             "Remote Error:8\n  \"RPC: Success\n\"\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_RETRAINED);
}

TEST_F(CallFrame, IsFatalAtTheSecondErrorOfASessionThatNobodyValidates) {
    const Outcome outcome = run([](std::size_t, Simple_Result&) { return RPC_TIMEDOUT; });
    EXPECT_EQ(outcome.thrown, "Remote error.");
    EXPECT_EQ(calls, 2U);
    EXPECT_EQ(outcome.error, std::string(kHandling) + kFatal);
}

TEST_F(CallFrame, IsFatalWhenRetrainingKillsTheSession) {
    client(BoardConnection::SETUP).reset();
    const Outcome outcome = run([](std::size_t, Simple_Result&) { return RPC_TIMEDOUT; });
    EXPECT_EQ(outcome.thrown, "Remote error.");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(CallFrame, EndsWithAnInvalidSessionWhenTheResetLeavesItInvalid) {
    bool armed = false;
    hookClient(*session.connection, BoardConnection::SETUP).onBusy = [&](bool) {
        if (armed)
            session.setSessionState(PhySession::SESSION_INVALID);
    };
    const Outcome outcome = run([&](std::size_t number, Simple_Result&) {
        armed = number == 6;
        return failAndValidate();
    });
    EXPECT_EQ(outcome.thrown, "The board session is no longer valid.");
    EXPECT_EQ(calls, 6U);
    EXPECT_EQ(outcome.error, times(5, kHandling) + kWarning);
}

TEST_F(CallFrame, LetsTheResetsNoDevicePass) {
    bool armed = false;
    hookClient(*session.connection, BoardConnection::SETUP).onBusy = [&](bool busy) {
        if (armed && busy)
            throw Exceptions::DeviceConnection();
    };
    const Outcome outcome = run([&](std::size_t number, Simple_Result&) {
        armed = number == 6;
        return failAndValidate();
    });
    EXPECT_EQ(outcome.thrown, "Device not found.");
    EXPECT_EQ(calls, 6U);
}

TEST_F(CallFrame, RepeatsBusyResultsWithoutALimitOfTheirOwn) {
    const Outcome outcome = runBusyThenFailing(30, 0);
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, times(30, kBusy));
    EXPECT_EQ(calls, 31U);
    EXPECT_EQ(session.callSequence, 102);
}

TEST_F(CallFrame, RepeatsTimedOutResults) {
    const Outcome outcome = run(
        [](std::size_t number, Simple_Result& answered) { return answer(answered, number == 1 ? -110 : 0); });
    EXPECT_EQ(outcome.error, "mdio Operation timeout. Retrying...-110\n");
    EXPECT_EQ(calls, 2U);
}

TEST_F(CallFrame, CountsBusyResultsTowardsTheWarning) {
    const Outcome outcome = runBusyThenFailing(5, 1);
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, times(5, kBusy) + kWarning);
    EXPECT_EQ(calls, 7U);
}

TEST_F(CallFrame, CountsBusyResultsTowardsTheEnd) {
    const Outcome outcome = runBusyThenFailing(7, 1);
    EXPECT_EQ(outcome.thrown, "Remote error.");
    EXPECT_EQ(outcome.error, times(7, kBusy) + kFatal);
    EXPECT_EQ(calls, 8U);
}

TEST_F(CallFrame, SkipsTheWarningWhenABusyResultMeetsItsAttempt) {
    const Outcome outcome = runBusyThenFailing(6, 2);
    EXPECT_EQ(outcome.thrown, "Remote error.");
    EXPECT_EQ(outcome.error, times(6, kBusy) + kHandling + kFatal);
    EXPECT_EQ(calls, 8U);
}

TEST_F(CallFrame, MeetsNoThresholdAfterEightBusyResults) {
    const Outcome outcome = runBusyThenFailing(8, 12);
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(outcome.error, times(8, kBusy) + times(12, kHandling));
    EXPECT_EQ(calls, 21U);
}

TEST_F(CallFrame, TakesABusyResultOfASessionThatDiedForDone) {
    const Outcome outcome = run([&](std::size_t, Simple_Result& answered) {
        session.setSessionState(PhySession::SESSION_INVALID);
        return answer(answered, -16);
    });
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(result.error, -16);
    EXPECT_EQ(session.callSequence, 102);
}

TEST_F(CallFrame, ThrowsForTheCodesThatEndACall) {
    for (const auto& [code, text] :
         {std::pair(-13, "Device is in use or access denied."), std::pair(-22, "raiseRemoteError: Error"),
          std::pair(-56, "The board session is no longer valid.")}) {
        const int verdict = code;
        EXPECT_EQ(run([=](std::size_t, Simple_Result& answered) { return answer(answered, verdict); }).thrown,
                  text);
        EXPECT_EQ(calls, 1U);
        EXPECT_EQ(session.callSequence, 101);
    }
}

TEST_F(CallFrame, TakesAHandleThatVanishedForARequestThatWasNotSent) {
    const Outcome outcome = run([&](std::size_t, Simple_Result& answered) {
        client(BoardConnection::MDIO).reset();
        return answer(answered, -16);
    });
    EXPECT_EQ(outcome.thrown, "Remote error.");
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(outcome.error, std::string(kBusy) + "mdioRPC call error: 3. Session error handling started...\n"
                                                  "Error level of attempts for RPC call was achieved.\n"
                                                  "Remote Error:3\n  \"RPC: Success\n\"\n");
}

} // namespace
} // namespace Orvane
