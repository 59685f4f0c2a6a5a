// Calls that wait for their turn on a handle while the session ends, recovers, or runs a long command.
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/connection/HandleTurn.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/SleepingThread.h"
#include "tests/support/WrittenText.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <optional>
#include <sys/socket.h>
#include <thread>
#include <vector>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using namespace std::chrono_literals;
using OrvaneSim::Fault;
using Clock = std::chrono::steady_clock;

class QueuedCall : public testing::Test, public SessionOnBoard {
protected:
    QueuedCall() { board.setRegister(OrvaneSim::Space::C45, kPort, kPhy, kRegister, kValue); }

    // Lets another thread do `call` and wait for its turn on the client's handle; `meanwhile` happens then,
    // and the turn comes. Returns what the call throws.
    std::string queue(BoardConnection::clientId id, const std::function<void()>& call,
                      const std::function<void()>& meanwhile) {
        std::optional<HandleTurn> first(*this->session.connection->getClient(id));
        std::promise<SleepingThread> names;
        auto named = names.get_future();
        auto end = std::async(std::launch::async, [&] {
            names.set_value(SleepingThread());
            try {
                call();
            } catch (const std::exception& problem) {
                return std::string(problem.what());
            }
            return std::string();
        });
        named.get().awaitLocked();
        meanwhile();
        first.reset();
        return end.get();
    }
    // From now on nothing goes through the client's present handle.
    static void shutDown(RPCClient& client) {
        int socket = -1;
        clnt_control(client.client.load(), CLGET_FD, reinterpret_cast<char*>(&socket));
        shutdown(socket, SHUT_RDWR);
    }
    std::function<void()> endingTheSession() {
        return [this] { session.setSessionState(PhySession::SESSION_INVALID); };
    }
};

TEST_F(QueuedCall, WhoseSessionEndedMeanwhileIsRefusedAndNotSent) {
    const auto read = [this] { MDIO::RPC::read(session, kRegister); };
    EXPECT_EQ(queue(BoardConnection::MDIO, read, endingTheSession()), Exceptions::InvalidSession().what());
    EXPECT_EQ(count("mdio_read"), 0U);
    EXPECT_EQ(session.callSequence, 101);
}

TEST_F(QueuedCall, OfAPingWhoseSessionEndedMeanwhileReturnsAndIsNotSent) {
    const auto ping = [this] { KeepAlive::RPC::ping(session); };
    EXPECT_EQ(queue(BoardConnection::KEEPALIVE, ping, endingTheSession()), "");
    EXPECT_EQ(count("pingkeepalive"), 0U);
    EXPECT_EQ(session.pingSequence, 0);
}

TEST_F(QueuedCall, OfACommandWhoseSessionEndedMeanwhileIsRefusedAndTheSessionStaysEnded) {
    int exitCode = 0;
    std::string output;
    std::string errors;
    const auto run = [&] { Setup::RPC::runCommand(session, "true", 1, exitCode, output, errors); };
    EXPECT_EQ(queue(BoardConnection::SETUP, run, endingTheSession()), Exceptions::InvalidSession().what());
    EXPECT_EQ(count("execute_command"), 0U);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
}

TEST_F(QueuedCall, WhoseSessionIsBeingRecoveredIsMade) {
    unsigned value = 0;
    const auto read = [&] { value = MDIO::RPC::read(session, kRegister); };
    const auto recovering = [this] { session.setSessionState(PhySession::SESSION_RETRAINED); };
    EXPECT_EQ(queue(BoardConnection::MDIO, read, recovering), "");
    EXPECT_EQ(value, kValue);
}

TEST_F(QueuedCall, WhoseHandleWasReplacedMeanwhileGoesOverTheNewOne) {
    unsigned value = 0;
    RPCClient& mdio = client(BoardConnection::MDIO);
    shutDown(mdio);
    const auto read = [&] { value = MDIO::RPC::read(session, kRegister); };
    EXPECT_EQ(queue(BoardConnection::MDIO, read, [&] { mdio.update(); }), "");
    EXPECT_EQ(value, kValue);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_VALID);
}

// A silent board ends the session once, and every thread with it.
TEST_F(QueuedCall, OfAnyOfSixtyFourThreadsOnASilentBoardEndsWithinTheBoundOfOne) {
    constexpr int kThreads = 64;
    constexpr auto kBound = 30s;
    board.inject({"", "", Fault::Kind::Silent, -1});
    inject(Fault::Kind::LoseReply, "discovery", "", -1);
    inject(Fault::Kind::Silent, "probe", "", -1);
    std::vector<std::future<Clock::duration>> calls;
    for (int i = 0; i < kThreads; ++i)
        calls.push_back(std::async(std::launch::async, [this] {
            const auto start = Clock::now();
            EXPECT_THROW(MDIO::RPC::read(session, kRegister), std::exception);
            return Clock::now() - start;
        }));
    Clock::duration slowest{};
    for (auto& call : calls)
        slowest = std::max(slowest, call.get());
    EXPECT_LT(slowest, kBound);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_INVALID);
    EXPECT_LT(count("mdio_read"), 20U);
}

class DuringACommand : public QueuedCall {
protected:
    static constexpr int kSeconds = 8;

    DuringACommand() {
        board.setCommand("slow", {0, "done", "", kSeconds});
        command = std::async(std::launch::async, [this] {
            int exitCode = -1;
            std::string output;
            std::string errors;
            Setup::RPC::runCommand(session, "slow", kSeconds + 10, exitCode, output, errors);
            return output;
        });
        board.waitFor(
            [](const OrvaneSim::Request& request) { return request.procedure == "execute_command"; });
    }

    std::future<std::string> command;
};

TEST_F(DuringACommand, AReadWhoseReplyIsLostIsRepeatedLongBeforeTheCommandEnds) {
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    const auto start = Clock::now();
    EXPECT_EQ(MDIO::RPC::read(session, kRegister), kValue);
    EXPECT_LT(Clock::now() - start, 6s);
    EXPECT_EQ(count("mdio_read"), 2U);
    EXPECT_EQ(command.get(), "done");
}

// A board that runs one thing at a time does not look at a second connection before the command has ended.
TEST_F(DuringACommand, ABoardThatAnswersNothingElseIsFoundAliveByTheTurnAfterIt) {
    inject(Fault::Kind::LoseReply, "setup", "ping"); // over the second connection
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    EXPECT_EQ(MDIO::RPC::read(session, kRegister), kValue);
    EXPECT_EQ(command.get(), "done");
    EXPECT_EQ(count("ping"), 2U);
}

class ClosedByTheBoard : public QueuedCall {
protected:
    ClosedByTheBoard() {
        inject(Fault::Kind::CloseConnection, "setup", "ping");
        EXPECT_THROW(session.connection->testServer(), Exceptions::DeviceConnection);
        board.forgetRequests();
    }
};

TEST_F(ClosedByTheBoard, AnIdleSetupConnectionDoesNotEndTheSessionWhenADatagramIsLost) {
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    EXPECT_EQ(MDIO::RPC::read(session, kRegister), kValue);
    EXPECT_EQ(session.getSessionState(), PhySession::SESSION_RETRAINED);
    EXPECT_EQ(count("ping"), 1U);
    KeepAlive::RPC::ping(session);
    EXPECT_TRUE(session.isValid());
}

} // namespace
} // namespace Orvane
