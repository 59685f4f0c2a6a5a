// The keep-alive thread of a session.
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/HookedClient.h"
#include "tests/support/NoMoreThreads.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <orvane/lab_json.h>
#include <sys/prctl.h>
#include <thread>
#include <vector>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;
using OrvaneSim::Request;
using std::chrono::seconds;
using std::chrono::steady_clock;
using Json = nlohmann::ordered_json;

// A ping with this identity word.
auto pingOf(unsigned identity) {
    return [identity](const Request& request) {
        return request.procedure == "pingkeepalive" && argumentsOf(request) == Json{{"handle", identity}};
    };
}

// Whether a thread of this process gets timers that may be this late, within ten seconds.
bool awaitThreadWithSlack(long nanoseconds) {
    const auto limit = steady_clock::now() + seconds(10);
    while (steady_clock::now() < limit)
        for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
            std::ifstream file("/proc" / thread.path().filename() / "timerslack_ns");
            long slack = 0;
            if (file >> slack && slack == nanoseconds)
                return true;
        }
    return false;
}

class KeepAliveThread : public testing::Test, public SessionOnBoard {
protected:
    ~KeepAliveThread() override { session.stopKeepAlive(); }

    // The thread's end; it keeps `keepAliveRunning` set.
    void joinThread() {
        pthread_join(session.keepAliveThread.handle, nullptr);
        session.keepAliveRunning = false;
    }

    // What the thread writes from its start to its own end.
    std::string textUntilItEnds() {
        return textWritten([&] {
                   session.startKeepAlive();
                   joinThread();
               })
            .error;
    }

    template <class Work>
    void letPing(Work work) {
        hookClient<ThreadSafeRPCClient>(*session.connection, BoardConnection::KEEPALIVE).onBusy =
            [this, work](bool busy) {
                if (busy)
                    work(++pings);
            };
    }

    int pings = 0; // of the hooked client; read it when the thread has ended
};

TEST_F(KeepAliveThread, PingsTheKeepAliveServiceEveryTwoSeconds) {
    const auto start = steady_clock::now();
    session.startKeepAlive();
    board.waitFor(pingOf(0x001));
    EXPECT_GE(steady_clock::now() - start, seconds(2));
    board.waitFor(pingOf(0x101));
    EXPECT_GE(steady_clock::now() - start, seconds(4));
    session.stopKeepAlive();
    EXPECT_EQ(count("pingclient"), 0U);
    EXPECT_TRUE(session.isValid());
}

TEST_F(KeepAliveThread, PingsTheSetupServiceWithoutAKeepAliveClient) {
    client(BoardConnection::KEEPALIVE).reset();
    session.startKeepAlive();
    const Request request =
        board.waitFor([](const Request& candidate) { return candidate.procedure == "pingclient"; });
    session.stopKeepAlive();
    EXPECT_EQ(argumentsOf(request), (Json{{"handle", 1}}));
    EXPECT_EQ(count("pingkeepalive"), 0U);
}

TEST_F(KeepAliveThread, ChoosesItsPingByTheKeepAliveClientsHandle) {
    constexpr PhySession::PingFunction kSetupPing = Setup::RPC::ping;
    EXPECT_EQ(PhySession::selectPingFunction(&session), &KeepAlive::RPC::ping);
    client(BoardConnection::KEEPALIVE).reset();
    EXPECT_EQ(PhySession::selectPingFunction(&session), kSetupPing);
}

TEST_F(KeepAliveThread, IsStartedOnce) {
    session.startKeepAlive();
    const pthread_t first = session.keepAliveThread.handle;
    session.startKeepAlive();
    EXPECT_NE(pthread_equal(session.keepAliveThread.handle, first), 0);
    EXPECT_TRUE(session.isKeepAliveRunning());
    board.waitFor(pingOf(0x001));
    session.stopKeepAlive();
    EXPECT_EQ(count("pingkeepalive"), 1U);
}

TEST_F(KeepAliveThread, LeavesItsWaitsToTheKernelToBatchAndPingsWithUsualTimers) {
    constexpr long kBatchedNs = 5'000'000;
    const long usual = prctl(PR_GET_TIMERSLACK);
    std::vector<long> slackOfPings;
    letPing([&](int) { slackOfPings.push_back(prctl(PR_GET_TIMERSLACK)); });
    session.startKeepAlive();
    EXPECT_TRUE(awaitThreadWithSlack(kBatchedNs));
    board.waitFor(pingOf(0x001));
    session.stopKeepAlive();
    EXPECT_EQ(slackOfPings, std::vector<long>{usual});
}

TEST_F(KeepAliveThread, StopsInTheMiddleOfItsWaitWithoutAPing) {
    session.startKeepAlive();
    const auto start = steady_clock::now();
    session.stopKeepAlive();
    EXPECT_LT(steady_clock::now() - start, std::chrono::milliseconds(1900));
    EXPECT_FALSE(session.isKeepAliveRunning());
    EXPECT_EQ(count("pingkeepalive"), 0U);
}

TEST_F(KeepAliveThread, StopsTwiceWithoutHarm) {
    session.startKeepAlive();
    session.stopKeepAlive();
    session.stopKeepAlive();
    EXPECT_FALSE(session.isKeepAliveRunning());
}

TEST_F(KeepAliveThread, StartsAgainAfterAStop) {
    session.startKeepAlive();
    session.stopKeepAlive();
    session.startKeepAlive();
    EXPECT_TRUE(session.isKeepAliveRunning());
    EXPECT_EQ(board.waitFor(pingOf(0x001)).program, "keepAlive");
}

TEST_F(KeepAliveThread, IsStoppedByTheSessionsClose) {
    session.startKeepAlive();
    session.close();
    EXPECT_FALSE(session.isKeepAliveRunning());
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(KeepAliveThread, MakesARetrainedSessionValid) {
    session.setSessionState(PhySession::SESSION_RETRAINED);
    session.startKeepAlive();
    board.waitFor(pingOf(0x001));
    board.waitFor(pingOf(0x101)); // the first ping's answer has been taken
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
}

TEST_F(KeepAliveThread, LeavesASessionInErrorHandlingAlone) {
    session.setSessionState(PhySession::SESSION_ERROR_HANDLING);
    session.startKeepAlive();
    board.waitFor(pingOf(0x001));
    board.waitFor(pingOf(0x101));
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_ERROR_HANDLING);
}

TEST_F(KeepAliveThread, EndsOnAnInvalidSession) {
    session.setSessionState(PhySession::SESSION_INVALID);
    EXPECT_EQ(textUntilItEnds(), "Keep alive: session was marked as INVALID.\n");
    EXPECT_EQ(count("pingkeepalive"), 0U);
}

TEST_F(KeepAliveThread, OfASessionThatTheBoardForgotEndsAtTheNextCycle) {
    board.forgetSessions();
    EXPECT_EQ(textUntilItEnds(), "keepAlive EBADRQC result error\n"
                                 "Session validation failed. Next attempt...\n"
                                 "Keep alive: session was marked as INVALID.\n");
    EXPECT_EQ(count("pingkeepalive"), 1U);
}

TEST_F(KeepAliveThread, EndsTheSessionAtTheSixthFailureInARow) {
    letPing([](int) { throw Exceptions::InvalidSession(); });
    std::string expected;
    for (int i = 0; i < 5; ++i)
        expected += "Session validation failed. Next attempt...\n";
    const auto start = steady_clock::now();
    EXPECT_EQ(textUntilItEnds(), expected + "Exceed the number of attempts to recover session.\n");
    EXPECT_GE(steady_clock::now() - start, seconds(12));
    EXPECT_EQ(pings, 6);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(KeepAliveThread, StartsCountingFailuresAnewAfterAGoodPing) {
    letPing([](int number) {
        if (number != 2)
            throw Exceptions::InvalidSession();
    });
    std::string expected;
    for (int i = 0; i < 6; ++i)
        expected += "Session validation failed. Next attempt...\n";
    EXPECT_EQ(textUntilItEnds(), expected + "Exceed the number of attempts to recover session.\n");
    EXPECT_EQ(pings, 8);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(KeepAliveThread, EndsTheSessionAtAStandardException) {
    inject(Fault::Kind::ResultCode, "keepAlive", "pingkeepalive", 1, -22);
    EXPECT_EQ(textUntilItEnds(), "keepAlive Result Error: -22\n"
                                 "Session ping exception: raiseRemoteError: Error\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(KeepAliveThread, EndsTheSessionWhenAccessIsDenied) {
    inject(Fault::Kind::ResultCode, "keepAlive", "pingkeepalive", 1, -13);
    EXPECT_EQ(textUntilItEnds(), "keepAlive Board in in use. AccessDenied exception...-13\n"
                                 "Unknown pinging session error.\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(KeepAliveThread, EndsTheSessionAtAnUnknownException) {
    letPing([](int) { throw 42; });
    EXPECT_EQ(textUntilItEnds(), "Unknown pinging session error.\n");
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(KeepAliveThread, WaitsForTheEndOfARemoteCommand) {
    session.setSessionBusy(60000);
    session.startKeepAlive();
    std::this_thread::sleep_for(std::chrono::milliseconds(2500)); // the first ping is due after 2 s
    EXPECT_EQ(count("pingkeepalive"), 0U);
    session.resetSessionBusy();
    EXPECT_EQ(board.waitFor(pingOf(0x001)).procedure, "pingkeepalive");
}

TEST_F(KeepAliveThread, ThatCannotBeMadeIsReportedAndCountsAsRunning) {
    const WrittenText written = textWritten([&] {
        const NoMoreThreads full;
        session.startKeepAlive();
    });
    EXPECT_NE(session.keepAliveThread.status, 0);
    EXPECT_EQ(written.error.find("Thread is not valid: "), 0U) << written.error;
    EXPECT_NE(written.error.find("\nKeep alive cannot be started\n"), std::string::npos) << written.error;
    EXPECT_TRUE(session.isKeepAliveRunning());
    session.stopKeepAlive();
    EXPECT_FALSE(session.isKeepAliveRunning());
}

} // namespace
} // namespace Orvane
