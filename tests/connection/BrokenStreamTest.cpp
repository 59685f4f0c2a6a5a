// Calls on a stream that the board has closed: no signal reaches the application.
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;

// SIGPIPE as the application set it up, put back afterwards.
class SigpipeSetting {
public:
    explicit SigpipeSetting(void (*wantedHandler)(int), bool block = false) {
        struct sigaction wanted {};
        wanted.sa_handler = wantedHandler;
        sigaction(SIGPIPE, &wanted, &formerAction_);
        pthread_sigmask(block ? SIG_BLOCK : SIG_UNBLOCK, &only(), &formerMask_);
    }
    ~SigpipeSetting() {
        const timespec atOnce{};
        while (pending())
            sigtimedwait(&only(), nullptr, &atOnce);
        pthread_sigmask(SIG_SETMASK, &formerMask_, nullptr);
        sigaction(SIGPIPE, &formerAction_, nullptr);
    }
    SigpipeSetting(const SigpipeSetting&) = delete;
    SigpipeSetting& operator=(const SigpipeSetting&) = delete;

    static bool blocked() {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        return sigismember(&mask, SIGPIPE) == 1;
    }
    static bool pending() {
        sigset_t set;
        sigpending(&set);
        return sigismember(&set, SIGPIPE) == 1;
    }
    static void (*handler())(int) {
        struct sigaction current {};
        sigaction(SIGPIPE, nullptr, &current);
        return current.sa_handler;
    }

private:
    static const sigset_t& only() {
        static const sigset_t set = [] {
            sigset_t fresh;
            sigemptyset(&fresh);
            sigaddset(&fresh, SIGPIPE);
            return fresh;
        }();
        return set;
    }

    struct sigaction formerAction_ {};
    sigset_t formerMask_{};
};

volatile std::sig_atomic_t signalsSeen = 0;

void countSignal(int) {
    signalsSeen = signalsSeen + 1;
}

class BrokenStream : public testing::Test {
protected:
    // The board closes its end, and its setup program is no longer there: every one of five pings fails.
    void pingAfterTheBoardHungUp() {
        lab.inject(Fault::Kind::CloseConnection, "setup", "ping");
        expectFailingPing();
        lab.board.stop();
        for (int i = 0; i < 4; ++i)
            expectFailingPing();
    }

    void expectFailingPing() {
        EXPECT_EQ(thrownText<Exceptions::DeviceConnection>([&] { connection.testServer(); }),
                  "Problem with connection to rpc server on device.");
    }

    OneBoard lab;
    BoardConnection connection{lab.record()};
};

TEST_F(BrokenStream, DoesNotEndTheProcess) {
    const SigpipeSetting setting(SIG_DFL);
    pingAfterTheBoardHungUp();
    EXPECT_FALSE(SigpipeSetting::blocked());
    EXPECT_FALSE(SigpipeSetting::pending());
    EXPECT_EQ(SigpipeSetting::handler(), SIG_DFL);
    EXPECT_EQ(lab.count("ping"), 1U);
}

TEST_F(BrokenStream, DoesNotReachTheApplicationsHandler) {
    const SigpipeSetting setting(countSignal);
    signalsSeen = 0;
    pingAfterTheBoardHungUp();
    EXPECT_EQ(signalsSeen, 0);
    EXPECT_EQ(SigpipeSetting::handler(), &countSignal);
    EXPECT_FALSE(SigpipeSetting::blocked());
}

TEST_F(BrokenStream, LeavesABlockedSignalBlocked) {
    const SigpipeSetting setting(SIG_DFL, true);
    pingAfterTheBoardHungUp();
    EXPECT_TRUE(SigpipeSetting::blocked());
    EXPECT_FALSE(SigpipeSetting::pending());
}

TEST_F(BrokenStream, LeavesTheApplicationsPendingSignalPending) {
    const SigpipeSetting setting(SIG_DFL, true);
    raise(SIGPIPE);
    pingAfterTheBoardHungUp();
    EXPECT_TRUE(SigpipeSetting::blocked());
    EXPECT_TRUE(SigpipeSetting::pending());
}

TEST_F(BrokenStream, OfWhichAPingFindsThatItBrokeBeforeIsConnectedAgainToTheSamePort) {
    lab.inject(Fault::Kind::CloseConnection, "setup", "ping");
    expectFailingPing();
    CLIENT* const handle = connection.getClient(BoardConnection::SETUP)->client;
    const std::size_t lookedUp = lab.count("portmap_getport");
    EXPECT_GE(connection.testServer(), 0);
    EXPECT_EQ(lab.count("ping"), 2U);
    EXPECT_EQ(lab.count("portmap_getport"), lookedUp);
    EXPECT_EQ(connection.getClient(BoardConnection::SETUP)->client, handle);
    int socket = -1;
    ASSERT_TRUE(clnt_control(handle, CLGET_FD, reinterpret_cast<char*>(&socket)));
    EXPECT_EQ(fcntl(socket, F_GETFD), FD_CLOEXEC); // programs that the process starts do not get it
}

TEST_F(BrokenStream, ThatCannotBeConnectedAgainLeavesTheLastCreationErrorAlone) {
    lab.inject(Fault::Kind::CloseConnection, "setup", "ping");
    expectFailingPing();
    lab.board.stop();
    rpc_createerr.cf_stat = RPC_SUCCESS;
    const WrittenText written = textWritten([this] { expectFailingPing(); });
    EXPECT_EQ(written.error, "Ping returned: 3\n");
    EXPECT_EQ(rpc_createerr.cf_stat, RPC_SUCCESS);
}

TEST_F(BrokenStream, IsConnectedAgainByAnUpdate) {
    lab.inject(Fault::Kind::CloseConnection, "setup", "ping");
    expectFailingPing();
    connection.getClient(BoardConnection::SETUP)->update();
    EXPECT_GE(connection.testServer(), 0);
    EXPECT_EQ(lab.count("ping"), 2U);
}

} // namespace
} // namespace Orvane
