// What a session does about transport errors and the board's result codes.
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/HookedClient.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <future>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;
using State = PhySession::SessionState_t;

struct Verdict {
    std::string error;
    bool result = false;
    std::string thrown;
};

template <class Handler>
Verdict verdictOf(Handler handler) {
    Verdict verdict;
    verdict.error = textWritten([&] {
                        try {
                            verdict.result = handler();
                        } catch (const std::exception& problem) {
                            verdict.thrown = problem.what();
                        }
                    }).error;
    return verdict;
}

class ResultError : public testing::Test {
protected:
    Verdict handle(int code) {
        return verdictOf([&] { return session.onRPCResultError(code, "mdio"); });
    }
    PhySession session{"board7", simpleMode()};
};

TEST_F(ResultError, ZeroIsDoneInSilence) {
    const Verdict verdict = handle(0);
    EXPECT_FALSE(verdict.result);
    EXPECT_EQ(verdict.error, "");
}

TEST_F(ResultError, BusyIsRepeatedWhileTheSessionIsValid) {
    const Verdict verdict = handle(-16);
    EXPECT_TRUE(verdict.result);
    EXPECT_EQ(verdict.error, "mdio Board in busy. Retrying...-16\n");
}

TEST_F(ResultError, TimeoutIsRepeatedWhileTheSessionIsValid) {
    const Verdict verdict = handle(-110);
    EXPECT_TRUE(verdict.result);
    EXPECT_EQ(verdict.error, "mdio Operation timeout. Retrying...-110\n");
}

TEST_F(ResultError, BusyAndTimeoutAreDoneOnAnInvalidSession) {
    session.setSessionState(PhySession::SESSION_INVALID);
    EXPECT_FALSE(handle(-16).result);
    EXPECT_FALSE(handle(-110).result);
    EXPECT_EQ(handle(-16).error, "mdio Board in busy. Retrying...-16\n");
}

TEST_F(ResultError, RefusedAccessThrowsAccessDenied) {
    const Verdict verdict = handle(-13);
    EXPECT_EQ(verdict.thrown, "Device is in use or access denied.");
    EXPECT_EQ(verdict.error, "mdio Board in in use. AccessDenied exception...-13\n");
    EXPECT_TRUE(session.isValid());
}

TEST_F(ResultError, UnknownSessionMakesItInvalidAndThrows) {
    const Verdict verdict = handle(-56);
    EXPECT_EQ(verdict.thrown, "The board session is no longer valid.");
    EXPECT_EQ(verdict.error, "mdio EBADRQC result error\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(ResultError, AnyOtherCodeThrowsStandard) {
    for (const int code : {-22, -1, 1, 16, -28}) {
        const Verdict verdict = handle(code);
        EXPECT_EQ(verdict.thrown, "raiseRemoteError: Error");
        EXPECT_EQ(verdict.error, "mdio Result Error: " + std::to_string(code) + "\n");
        EXPECT_TRUE(session.isValid());
    }
}

TEST_F(ResultError, IsTheLastResultUntilTheNext) {
    for (const int code : {-16, -1, 7}) {
        handle(code);
        EXPECT_EQ(session.lastResult(), code);
    }
}

TEST_F(ResultError, OfZeroLeavesTheLastResult) {
    handle(-16);
    handle(0);
    EXPECT_EQ(session.lastResult(), -16);
}

TEST_F(ResultError, CodesThrowTheirOwnExceptionClasses) {
    EXPECT_THROW(session.onRPCResultError(-13, "mdio"), Exceptions::AccessDenied);
    EXPECT_THROW(session.onRPCResultError(-56, "mdio"), Exceptions::InvalidSession);
    EXPECT_THROW(session.onRPCResultError(-22, "mdio"), Exceptions::Standard);
}

class CallError : public testing::Test, public SessionOnBoard {
protected:
    Verdict handle(int status) {
        return verdictOf([&] { return session.onRPCCallError(status, "mdio"); });
    }
    // What the board's ping is to throw instead of going out.
    template <class Problem>
    void letPingThrow(Problem problem) {
        hookClient(*session.connection, BoardConnection::SETUP).onBusy = [problem](bool busy) {
            if (busy)
                throw problem;
        };
    }
};

constexpr const char* kStarted5 = "mdioRPC call error: 5. Session error handling started...\n";

TEST_F(CallError, OfAValidSessionRetrainsTheConnection) {
    const Verdict verdict = handle(5);
    EXPECT_TRUE(verdict.result);
    EXPECT_EQ(verdict.error, kStarted5);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_RETRAINED);
    EXPECT_EQ(count("ping"), 1U);
}

TEST_F(CallError, OfABusySessionRetrainsTheConnection) {
    session.setSessionBusy(1000);
    const Verdict verdict = handle(5);
    EXPECT_TRUE(verdict.result);
    EXPECT_EQ(verdict.error, kStarted5);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_RETRAINED);
}

TEST_F(CallError, ThatTheConnectionDoesNotHandleIsRetrainedAllTheSame) {
    const Verdict verdict = handle(1);
    EXPECT_FALSE(verdict.result);
    EXPECT_EQ(verdict.error, "mdioRPC call error: 1. Session error handling started...\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_RETRAINED);
    EXPECT_EQ(count("ping"), 0U);
}

TEST_F(CallError, OfAnInvalidSessionIsRefused) {
    session.setSessionState(PhySession::SESSION_INVALID);
    const Verdict verdict = handle(5);
    EXPECT_FALSE(verdict.result);
    EXPECT_EQ(verdict.error, "mdioError. Session is invalid cannot start retraining\n");
    EXPECT_EQ(count("ping"), 0U);
}

TEST_F(CallError, WhileAnotherThreadHandlesOneWaitsInSilenceAndGivesUp) {
    for (const int state : {1, 2}) {
        session.setSessionState(static_cast<State>(state));
        const Verdict verdict = handle(5);
        EXPECT_FALSE(verdict.result);
        EXPECT_EQ(verdict.error, "");
        EXPECT_EQ(session.getSessionState(), state);
    }
    EXPECT_EQ(count("ping"), 0U);
}

TEST_F(CallError, WhileAnotherThreadHandlesOneWaitsForOnePause) {
    session.setSessionState(PhySession::SESSION_ERROR_HANDLING);
    const auto start = std::chrono::steady_clock::now();
    handle(5);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
}

TEST_F(CallError, WithoutDeviceEndsTheSession) {
    letPingThrow(Exceptions::NoDevice());
    const Verdict verdict = handle(5);
    EXPECT_FALSE(verdict.result);
    EXPECT_EQ(verdict.error,
              std::string(kStarted5) + "mdioError. RPC connection retrain failed. No device found.\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(CallError, WithAStandardExceptionEndsTheSessionWithItsText) {
    letPingThrow(std::runtime_error("out of paper"));
    const Verdict verdict = handle(5);
    EXPECT_FALSE(verdict.result);
    EXPECT_EQ(verdict.error,
              std::string(kStarted5) + "mdioError. RPC connection retrain failed.out of paper\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(CallError, WithoutASetupHandleEndsTheSession) {
    client(BoardConnection::SETUP).reset();
    const Verdict verdict = handle(5);
    EXPECT_FALSE(verdict.result);
    EXPECT_EQ(verdict.error, std::string(kStarted5) +
                                 "Pinging board terminated. Invalid Setup RPC client\n"
                                 "mdioError. RPC connection retrain failed.Invalid RPC client: setup\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(CallError, WithAnUnknownExceptionEndsTheSession) {
    letPingThrow(42);
    const Verdict verdict = handle(5);
    EXPECT_FALSE(verdict.result);
    EXPECT_EQ(verdict.error, std::string(kStarted5) +
                                 "mdioError. RPC connection retrain failed. Unexpected exception. "
                                 "Mark session as invalid.\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(CallError, OfASecondThreadIsLeftToTheFirst) {
    std::promise<void> handling;
    std::promise<void> leave;
    hookClient(*session.connection, BoardConnection::SETUP).onBusy = [&](bool busy) {
        if (busy) {
            handling.set_value();
            leave.get_future().wait();
        }
    };
    bool first = false;
    bool second = true;
    const WrittenText written = textWritten([&] {
        std::thread handler([&] { first = session.onRPCCallError(5, "mdio"); });
        handling.get_future().wait();
        second = session.onRPCCallError(4, "setup");
        leave.set_value();
        handler.join();
    });
    EXPECT_EQ(written.error, kStarted5);
    EXPECT_TRUE(first);
    EXPECT_FALSE(second);
    EXPECT_EQ(count("ping"), 1U);
}

TEST_F(CallError, OfManyThreadsAtOnceIsHandledByOne) {
    std::vector<std::thread> threads;
    std::atomic<int> repeats{0};
    const WrittenText written = textWritten([&] {
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&] { repeats += session.onRPCCallError(5, "mdio") ? 1 : 0; });
        for (std::thread& thread : threads)
            thread.join();
    });
    EXPECT_EQ(written.error, kStarted5);
    EXPECT_EQ(repeats, 1);
    EXPECT_EQ(count("ping"), 1U);
}

TEST_F(CallError, WarningRetrievesTheConnection) {
    bool result = false;
    const WrittenText written = textWritten([&] { result = session.onRPRetryWarning(); });
    EXPECT_TRUE(result);
    EXPECT_EQ(written.error, "Warning level of attempts for RPC call was achieved. Resetting connection...\n"
                             "Retrieve connection to RPC server\n");
    EXPECT_EQ(written.output, "Sending ping to RPC\n");
    EXPECT_EQ(count("ping"), 1U);
}

TEST_F(CallError, WarningLetsNoDevicePass) {
    inject(Fault::Kind::LoseReply, "setup", "ping");
    EXPECT_THROW(session.onRPRetryWarning(), Exceptions::NoDevice);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
}

TEST_F(CallError, FatalErrorPrintsItsLineThenTheConnectionsAndThrows) {
    rpc_createerr.cf_stat = RPC_SUCCESS;
    const Verdict verdict = verdictOf([&]() -> bool { session.onRPCCallFatalError(4); });
    EXPECT_EQ(verdict.thrown, "Remote error.");
    EXPECT_EQ(verdict.error, "Error level of attempts for RPC call was achieved.\n"
                             "Remote Error:4\n  \"RPC: Success\n\"\n");
}

TEST_F(CallError, SessionFatalErrorThrowsInvalidSession) {
    EXPECT_EQ(thrownText<Exceptions::InvalidSession>([&] { session.onSessionFatalError(); }),
              "The board session is no longer valid.");
}

} // namespace
} // namespace Orvane
