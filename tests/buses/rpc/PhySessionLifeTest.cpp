// The end of a session, whatever its board answers meanwhile.
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/HookedClient.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using namespace std::chrono_literals;
using OrvaneSim::Fault;
using std::chrono::steady_clock;

// A ping that is under way takes 2 s, the close request as long; the rest is for a busy machine.
constexpr auto kLongestClose = 6s;

template <class Work>
steady_clock::duration timeOf(Work work) {
    const auto start = steady_clock::now();
    work();
    return steady_clock::now() - start;
}

std::ptrdiff_t threads() {
    using std::filesystem::directory_iterator;
    return std::distance(directory_iterator("/proc/self/task"), directory_iterator());
}

// A session that can be ended before its board is.
class EndOfSession : public testing::Test, protected OneBoard {
protected:
    void startKeepAlive() {
        Setup::RPC::openConnection(*session);
        session->startKeepAlive();
    }
    void awaitCall(const char* procedure) {
        board.waitFor([&](const OrvaneSim::Request& request) { return request.procedure == procedure; });
    }

    std::unique_ptr<PhySession> session = std::make_unique<PhySession>(record(), simpleMode());
};

class EndlessPing : public EndOfSession, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Answers, EndlessPing, testing::Values(-16, -110), [](const auto& test) {
    return test.param == -16 ? std::string("Busy") : std::string("TimedOut");
});

TEST_P(EndlessPing, EndsWithItsKeepAliveThread) {
    inject(Fault::Kind::ResultCode, "keepAlive", "pingkeepalive", -1, GetParam());
    const WrittenText written = textWritten([&] {
        startKeepAlive();
        awaitCall("pingkeepalive");
        EXPECT_LT(timeOf([&] { session->stopKeepAlive(); }), kLongestClose);
    });
    EXPECT_NE(written.error.find("Retrying..." + std::to_string(GetParam())), std::string::npos);
    EXPECT_FALSE(session->isKeepAliveRunning());
    EXPECT_TRUE(session->isValid());
}

TEST_P(EndlessPing, OnTheSetupClientEndsWithTheSession) {
    session->connection->getClient(BoardConnection::KEEPALIVE)->reset();
    inject(Fault::Kind::ResultCode, "setup", "pingclient", -1, GetParam());
    textWritten([&] {
        startKeepAlive();
        awaitCall("pingclient");
        EXPECT_LT(timeOf([&] { session.reset(); }), kLongestClose);
    });
    EXPECT_EQ(count("close_connection"), 1U);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(EndOfSession, DoesNotWaitForTheNextPing) {
    startKeepAlive();
    EXPECT_LT(timeOf([&] { session.reset(); }), 1900ms);
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(EndOfSession, WhosePingGetsNoAnswerLeavesTheBoardAlone) {
    inject(Fault::Kind::LoseReply, "keepAlive", "pingkeepalive", -1);
    startKeepAlive();
    awaitCall("pingkeepalive");
    session.reset();
    EXPECT_EQ(count("ping"), 0U); // the recovery's
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(EndOfSession, AskedForInAdvanceStopsTheThreadAndLeavesTheBoardToTheClose) {
    startKeepAlive();
    const auto with = threads();
    session->askToClose();
    while (threads() == with)
        std::this_thread::yield();
    EXPECT_EQ(count("close_connection"), 0U);
    session->close();
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(EndOfSession, AskedForEndsASearchForTheBoard) {
    inject(Fault::Kind::LoseReply, "discovery", "", -1);
    std::thread closing([&] {
        while (board.discoveryCount() == 0)
            std::this_thread::yield();
        session->askToClose();
    });
    textWritten([&] { EXPECT_THROW(session->connection->retrieveConnection(), Exceptions::NoDevice); });
    closing.join();
    EXPECT_EQ(count("ping"), 0U);
}

TEST_F(EndOfSession, LetsItsBoardBeFoundAgain) {
    session->close();
    EXPECT_NO_THROW(session->connection->updateAddress());
}

TEST_F(EndOfSession, ThatWasClosedCanBeginAgain) {
    startKeepAlive();
    session->close();
    startKeepAlive();
    awaitCall("pingkeepalive");
    EXPECT_TRUE(session->isValid());
}

TEST_F(EndOfSession, ThatWasAbandonedStopsItsKeepAliveThread) {
    const auto without = threads();
    startKeepAlive();
    session->abandon();
    session.reset();
    EXPECT_EQ(threads(), without);
    EXPECT_EQ(count("close_connection"), 0U);
}

TEST_F(EndOfSession, InAForkedChildIsNoneForTheParent) {
    startKeepAlive();
    const pid_t child = fork();
    if (child == 0) {
        session->stopKeepAlive();
        session->close();
        session.reset();
        _exit(7);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << status;
    EXPECT_EQ(count("close_connection"), 0U);
    EXPECT_EQ(board.sessionCount(), 1U);
    awaitCall("pingkeepalive");
}

TEST_F(EndOfSession, TakesOneOwner) {
    EXPECT_TRUE(session->adopt());
    EXPECT_FALSE(session->adopt());
}

} // namespace
} // namespace Orvane
