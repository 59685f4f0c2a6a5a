// The TCP probe of one address.
#include "ov_sys/Interface/discovery/TcpBoardResolver.h"

#include "tests/support/discovery/Limits.h"
#include "tests/support/discovery/LoopbackServer.h"
#include "tests/support/discovery/OwnNetwork.h"
#include "tests/support/discovery/WallClock.h"
#include "tests/support/FrequentSignals.h"
#include "tests/support/NoStandardInput.h"
#include "tests/support/WrittenText.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace Orvane {
namespace {

using namespace std::chrono_literals;
using OrvaneTest::LoopbackServer;
using OrvaneTest::receive;
using OrvaneTest::receiveToEnd;
using OrvaneTest::sendText;

constexpr char kAddress[] = "127.0.0.1";
const std::string kRequest = "ZRDISCOVER?evb";

// A server that takes the request in and answers with `reply` before it closes.
LoopbackServer::Script answering(const std::string& reply) {
    return [reply](int connection) {
        EXPECT_EQ(receive(connection, kRequest.size()), kRequest);
        sendText(connection, reply);
    };
}

// What a probe leaves and writes.
struct Outcome {
    std::string reply;
    std::string line;
    int socket;
};

Outcome probe(int port, const std::string& address = kAddress) {
    TcpBoardResolver resolver(address, port, "evb");
    const std::string line = OrvaneTest::textWritten([&] { resolver.Search(); }).error;
    return {resolver.reply, line, resolver.socket};
}

TEST(TcpBoardResolver, KeepsItsArgumentsAndBuildsTheRequest) {
    const TcpBoardResolver resolver("10.0.0.1", 12345, "Evb7");
    EXPECT_EQ(resolver.boardType, "Evb7");
    EXPECT_EQ(resolver.address, "10.0.0.1");
    EXPECT_EQ(resolver.port, 12345);
    EXPECT_EQ(resolver.request, "ZRDISCOVER?Evb7");
    EXPECT_EQ(resolver.reply, "");
    EXPECT_EQ(resolver.socket, -1);
}

TEST(TcpBoardResolver, ClosesItsSocketAtTheEnd) {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    {
        TcpBoardResolver resolver(kAddress, 1, "");
        resolver.socket = socket;
    }
    EXPECT_EQ(fcntl(socket, F_GETFD), -1);
}

TEST(EnableBlocking, SwitchesTheNonBlockingFlagAndNoOther) {
    TcpBoardResolver resolver(kAddress, 1, "");
    resolver.socket = ::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_EQ(fcntl(resolver.socket, F_SETFL, O_APPEND), 0);
    const int before = fcntl(resolver.socket, F_GETFL);
    EXPECT_TRUE(resolver.enableBlocking(false));
    EXPECT_EQ(fcntl(resolver.socket, F_GETFL), before | O_NONBLOCK);
    EXPECT_TRUE(resolver.enableBlocking(true));
    EXPECT_EQ(fcntl(resolver.socket, F_GETFL), before);
}

TEST(EnableBlocking, FailsWithoutASocket) {
    TcpBoardResolver resolver(kAddress, 1, "");
    EXPECT_FALSE(resolver.enableBlocking(true));
    EXPECT_FALSE(resolver.enableBlocking(false));
}

TEST(WaitSocketConnect, PausesAndIsTrueWithoutAnyConnection) {
    TcpBoardResolver resolver(kAddress, 1, "");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(resolver.waitSocketConnect(30));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 30ms);
}

TEST(WaitSocketConnect, PausesAsLongWhileSignalsArrive) {
    TcpBoardResolver resolver(kAddress, 1, "");
    const OrvaneTest::FrequentSignals signals;
    const auto start = std::chrono::steady_clock::now();
    resolver.waitSocketConnect(100);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 100ms);
}

TEST(WaitSocketConnect, IsTrueAtOnceForZeroAndNegativeTimes) {
    TcpBoardResolver resolver(kAddress, 1, "");
    EXPECT_TRUE(resolver.waitSocketConnect(0));
    EXPECT_TRUE(resolver.waitSocketConnect(-1));
}

TEST(Search, SendsTheRequestOnceWithoutTerminatorAndReadsUntilTheBoardCloses) {
    std::string received;
    LoopbackServer server([&received](int connection) {
        sendText(connection, "evb|Board-7");
        shutdown(connection, SHUT_WR);
        received = receiveToEnd(connection);
    });
    const Outcome outcome = probe(server.port());
    server.join();
    EXPECT_EQ(received, kRequest);
    EXPECT_EQ(outcome.reply, "evb|Board-7");
    EXPECT_EQ(outcome.line, "");
    EXPECT_EQ(outcome.socket, -1);
}

TEST(ResolveBoardPorts, Searches) {
    LoopbackServer server(answering("evb|b"));
    TcpBoardResolver resolver(kAddress, server.port(), "evb");
    resolver.resolveBoardPorts();
    EXPECT_EQ(resolver.reply, "evb|b");
}

TEST(Search, EndsTheReplyAtANul) {
    LoopbackServer server(answering(std::string("evb|b\0tail", 10)));
    EXPECT_EQ(probe(server.port()).reply, "evb|b");
}

TEST(Search, LeavesTheReplyEmptyWhenTheBoardClosesWithoutAnswer) {
    LoopbackServer server(answering(""));
    const Outcome outcome = probe(server.port());
    EXPECT_EQ(outcome.reply, "");
    EXPECT_EQ(outcome.line, "");
    EXPECT_EQ(outcome.socket, -1);
}

// The second receive must come within 80 ms of the first, so a machine that was held up gets another chance.
TEST(Search, OverwritesTheReplyFromItsStartAtEveryReceive) {
    const std::string expected = std::string(45, 'b') + std::string(210, 'a');
    std::string reply;
    for (int attempt = 0; attempt < 20 && reply != expected; ++attempt) {
        LoopbackServer server(answering(std::string(255, 'a') + std::string(45, 'b')));
        reply = probe(server.port()).reply;
    }
    EXPECT_EQ(reply, expected);
}

TEST(Search, TakesALateReplyAndThenDoesNotWaitForTheClose) {
    std::string afterReply = "not closed";
    LoopbackServer server([&afterReply](int connection) {
        receive(connection, kRequest.size());
        std::this_thread::sleep_for(500ms); // far beyond the 80 ms
        sendText(connection, "evb|late");
        afterReply = receiveToEnd(connection);
    });
    const Outcome outcome = probe(server.port());
    server.join();
    EXPECT_EQ(outcome.reply, "evb|late");
    EXPECT_EQ(outcome.line, "");
    EXPECT_EQ(afterReply, "");
}

TEST(Search, KeepsTheSocketWhenTheConnectionIsRefused) {
    const int freePort = OrvaneTest::boundPort(OrvaneTest::listenOnLoopback(1, 0, 1).get());
    TcpBoardResolver resolver(kAddress, freePort, "evb");
    const std::string line = OrvaneTest::textWritten([&] { resolver.Search(); }).error;
    EXPECT_EQ(line, "send failed with error: Connection refused\n");
    EXPECT_EQ(resolver.reply, "");
    const int flags = fcntl(resolver.socket, F_GETFL);
    ASSERT_NE(flags, -1);
    EXPECT_EQ(flags & O_NONBLOCK, 0);
}

TEST(Search, SurvivesASendOnASocketThatNeverGotAConnection) {
    OrvaneTest::inOwnNetwork([] { // no route to anywhere
        const Outcome outcome = probe(12345, "10.0.0.1");
        EXPECT_EQ(outcome.line, "send failed with error: Broken pipe\n");
        EXPECT_EQ(outcome.reply, "");
    });
}

TEST(Search, TellsWhenTheBoardResetsTheConnection) {
    LoopbackServer server([](int connection) {
        receive(connection, kRequest.size());
        const linger now = {1, 0};
        setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    });
    const Outcome outcome = probe(server.port());
    EXPECT_EQ(outcome.line, "recv failed with error: Connection reset by peer\n");
    EXPECT_EQ(outcome.reply, "");
    EXPECT_EQ(outcome.socket, -1);
}

TEST(Search, TellsWhenThereIsNoSocketLeft) {
    TcpBoardResolver resolver(kAddress, 1, "evb");
    const std::string line = OrvaneTest::textWritten([&] {
                                 const OrvaneTest::NoDescriptorsLeft limit;
                                 resolver.Search();
                             }).error;
    EXPECT_EQ(line, "socket failed with error: Too many open files\n");
    EXPECT_EQ(resolver.reply, "");
    EXPECT_EQ(resolver.socket, -1);
}

TEST(Search, WorksWithASocketOf1024OrMore) {
    LoopbackServer server(answering("evb|b"));
    const OrvaneTest::LargeDescriptors large;
    EXPECT_EQ(probe(server.port()).reply, "evb|b");
}

TEST(Search, PausesBetweenConnectionAndRequest) {
    LoopbackServer server(answering("evb|b"));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(probe(server.port()).reply, "evb|b");
    EXPECT_GE(std::chrono::steady_clock::now() - start, 10ms);
}

TEST(Search, WorksWithDescriptor0) {
    LoopbackServer server(answering("evb|b"));
    TcpBoardResolver resolver(kAddress, server.port(), "evb");
    const OrvaneTest::NoStandardInput closed;
    resolver.Search();
    EXPECT_EQ(resolver.reply, "evb|b");
}

// The rest must come within 80 ms of the first byte; a machine that was held up gets another chance.
TEST(Search, ReadsOnAfterASingleByte) {
    std::string reply;
    for (int attempt = 0; attempt < 20 && reply != "evb|b"; ++attempt) {
        LoopbackServer server([](int connection) {
            receive(connection, kRequest.size());
            sendText(connection, "x");
            std::this_thread::sleep_for(20ms);
            sendText(connection, "evb|b");
        });
        reply = probe(server.port()).reply;
    }
    EXPECT_EQ(reply, "evb|b");
}

TEST(Search, GoesOnAfterASignal) {
    struct sigaction before {};
    struct sigaction handle {};
    handle.sa_handler = [](int) {};
    sigaction(SIGUSR1, &handle, &before);
    LoopbackServer server([prober = pthread_self()](int connection) {
        receive(connection, kRequest.size());
        for (int i = 0; i < 50; ++i) {
            pthread_kill(prober, SIGUSR1);
            std::this_thread::sleep_for(1ms);
        }
        sendText(connection, "evb|b");
    });
    const Outcome outcome = probe(server.port());
    EXPECT_EQ(outcome.reply, "evb|b");
    EXPECT_EQ(outcome.line, "");
    server.join();
    sigaction(SIGUSR1, &before, nullptr);
}

TEST(Search, GivesUpABoardThatStaysSilent) {
    LoopbackServer server([](int connection) { EXPECT_EQ(receiveToEnd(connection), kRequest); });
    const Outcome outcome = probe(server.port());
    EXPECT_EQ(outcome.line, "recv failed with error: Connection timed out\n");
    EXPECT_EQ(outcome.reply, "");
}

TEST(Search, GivesUpABoardThatStaysSilentWhileSignalsArrive) {
    LoopbackServer server([](int connection) {
        receive(connection, kRequest.size());
        const timeval patience = {30, 0};
        setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        receive(connection, 1);
    });
    const OrvaneTest::FrequentSignals signals;
    const Outcome outcome = probe(server.port());
    EXPECT_EQ(outcome.line, "recv failed with error: Connection timed out\n");
    EXPECT_EQ(outcome.reply, "");
}

// Ten seconds are far more than the 80 ms after which a probe leaves a board that goes on sending.
TEST(Search, EndsInTimeWhenTheClockIsSetBackMeanwhile) {
    bool probeLeft = false;
    LoopbackServer server([&probeLeft](int connection) {
        receive(connection, kRequest.size());
        std::this_thread::sleep_for(20ms);
        const OrvaneTest::WallClockSetBack anHour;
        const auto end = std::chrono::steady_clock::now() + 10s;
        while (!probeLeft && std::chrono::steady_clock::now() < end) {
            probeLeft = send(connection, "x", 1, MSG_NOSIGNAL) < 0;
            std::this_thread::sleep_for(1ms);
        }
    });
    const Outcome outcome = probe(server.port());
    server.join();
    EXPECT_TRUE(probeLeft);
    EXPECT_EQ(outcome.reply.substr(0, 1), "x");
}

TEST(Search, GivesUpAnAddressThatStaysSilent) {
    // A listener whose queue is full leaves further connections unanswered.
    const Orvane::FileDescriptor listener = OrvaneTest::listenOnLoopback(1, 0, 0);
    const int port = OrvaneTest::boundPort(listener.get());
    sockaddr_in there{};
    there.sin_family = AF_INET;
    there.sin_port = htons(static_cast<std::uint16_t>(port));
    there.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const Orvane::FileDescriptor queued(::socket(AF_INET, SOCK_STREAM, 0));
    ASSERT_EQ(connect(queued.get(), reinterpret_cast<const sockaddr*>(&there), sizeof there), 0);
    const Outcome outcome = probe(port);
    EXPECT_EQ(outcome.line, "send failed with error: Connection timed out\n");
    EXPECT_EQ(outcome.reply, "");
}

} // namespace
} // namespace Orvane
