// What faults do to the bytes of a reply and to its way.
#include "tests/support/simulator/RawBoard.h"

#include <map>
#include <netinet/in.h>

namespace OrvaneSim {
namespace {

using Kind = Fault::Kind;

class FaultyReply : public RawBoard {
protected:
    RawSocket socket = RawSocket::datagram(0);
    std::uint16_t udp = port(IPPROTO_UDP);

    void sendPing(std::uint32_t value) { socket.sendTo(ping(value), board.address(), udp); }
    std::string pinged(std::uint32_t value) {
        sendPing(value);
        return socket.receive();
    }
};

TEST_F(FaultyReply, IsCutToItsFirstBytes) {
    inject(Kind::TruncateReply, 25);
    EXPECT_EQ(pinged(7), pingReply(7).substr(0, 25));
    EXPECT_EQ(pinged(8), pingReply(8));
}

TEST_F(FaultyReply, CutToMoreThanItHasIsWhole) {
    inject(Kind::TruncateReply, 1000);
    EXPECT_EQ(pinged(7), pingReply(7));
}

TEST_F(FaultyReply, IsMadeLongerByBytesBehindIt) {
    inject(Kind::LengthenReply, 9);
    const std::string reply = pinged(7);
    EXPECT_EQ(reply.size(), pingReply(7).size() + 9);
    EXPECT_EQ(reply.substr(0, pingReply(7).size()), pingReply(7));
}

TEST_F(FaultyReply, HasAsManyBytesChangedAsAsked) {
    inject(Kind::CorruptReply, 3);
    const std::string reply = pinged(7);
    const std::string whole = pingReply(7);
    ASSERT_EQ(reply.size(), whole.size());
    int changed = 0;
    for (std::size_t i = 0; i < whole.size(); ++i)
        changed += reply[i] != whole[i] ? 1 : 0;
    EXPECT_EQ(changed, 3);
}

TEST_F(FaultyReply, IsReplacedByGarbage) {
    inject(Kind::GarbageReply, 11);
    const std::string reply = pinged(7);
    EXPECT_EQ(reply.size(), 11U);
    EXPECT_NE(reply, pingReply(7).substr(0, 11));
}

TEST_F(FaultyReply, CarriesTheResultThatATestMadeUp) {
    board.inject({"setup", "ping", Kind::ReplyBody, 1, 0, 1, words({1, 2, 3})});
    EXPECT_EQ(pinged(7), words({7, REPLY, MSG_ACCEPTED, 0, 0, SUCCESS, 1, 2, 3}));
    EXPECT_EQ(board.executions("ping"), 1U);
}

TEST_F(FaultyReply, ComesUnderAnotherTransactionId) {
    inject(Kind::WrongTransaction);
    EXPECT_EQ(pinged(7), words({0x80000007}) + pingReply(7).substr(4));
}

TEST_F(FaultyReply, ComesFromAnotherPort) {
    sendPing(1);
    socket.receive();
    inject(Kind::WrongPort);
    sendPing(7);
    ASSERT_TRUE(socket.readable(10000));
    std::array<char, 100> room;
    sockaddr_in from{};
    socklen_t size = sizeof from;
    const ssize_t count =
        ::recvfrom(socket.get(), room.data(), room.size(), 0, reinterpret_cast<sockaddr*>(&from), &size);
    EXPECT_EQ(std::string(room.data(), static_cast<std::size_t>(count)), pingReply(7));
    EXPECT_EQ(addressText(from), board.address());
    EXPECT_NE(ntohs(from.sin_port), udp);
}

TEST_F(FaultyReply, IsRefusedAsIfTheProgramWereNotThere) {
    inject(Kind::RefuseProgram);
    EXPECT_EQ(pinged(7), words({7, REPLY, MSG_ACCEPTED, 0, 0, PROG_UNAVAIL}));
    EXPECT_EQ(board.executions("ping"), 0U);
}

TEST_F(FaultyReply, ThatIsReorderedFollowsTheClientsNextOne) {
    inject(Kind::ReorderReply, 60000);
    sendPing(1);
    sendPing(2);
    EXPECT_EQ(socket.receive(), pingReply(2));
    EXPECT_EQ(socket.receive(), pingReply(1));
}

TEST_F(FaultyReply, ThatIsReorderedWaitsForNoOtherClientsReply) {
    inject(Kind::ReorderReply, 60000);
    sendPing(1);
    RawSocket other = RawSocket::datagram(0);
    other.sendTo(ping(2), board.address(), udp);
    EXPECT_EQ(other.receive(), pingReply(2));
    EXPECT_FALSE(socket.readable(0));
}

TEST_F(FaultyReply, ThatIsReorderedIsHeldForItsTimeAtMost) {
    inject(Kind::ReorderReply, 20);
    EXPECT_EQ(pinged(1), pingReply(1));
}

TEST_F(FaultyReply, ThatIsReorderedFollowsTheNextOneOverTcpToo) {
    inject(Kind::ReorderReply, 60000);
    RawSocket connection = stream();
    connection.send(record(ping(1)) + record(ping(2)));
    std::string answers;
    while (answers.size() < 64)
        answers += connection.receive();
    EXPECT_EQ(answers, record(pingReply(2)) + record(pingReply(1)));
}

TEST_F(FaultyReply, EndsWithTheConnectionInTheMiddle) {
    inject(Kind::CloseMidReply, 10);
    RawSocket connection = stream();
    connection.send(record(ping(7)));
    EXPECT_EQ(connection.receiveAll(), record(pingReply(7)).substr(0, 14));
}

TEST_F(FaultyReply, StopsInTheMiddleOfAConnectionThatStays) {
    inject(Kind::HalfOpen, 10);
    RawSocket connection = stream();
    connection.send(record(ping(7)) + record(ping(8)));
    std::string answer;
    while (answer.size() < 14)
        answer += connection.receive();
    EXPECT_EQ(answer, record(pingReply(7)).substr(0, 14));
    RawSocket another = stream();
    another.send(record(ping(9)));
    EXPECT_EQ(another.receive(), record(pingReply(9)));
    EXPECT_FALSE(connection.readable(0)) << "neither the rest, nor another reply, nor an end";
    EXPECT_EQ(board.executions("ping"), 2U);
}

TEST_F(FaultyReply, TricklesByteByByte) {
    inject(Kind::TrickleReply, 1);
    RawSocket connection = stream();
    connection.send(record(ping(7)));
    std::string answer;
    std::size_t pieces = 0;
    for (; answer.size() < 32; ++pieces)
        answer += connection.receive();
    EXPECT_EQ(answer, record(pingReply(7)));
    EXPECT_GT(pieces, 1U);
    connection.send(record(ping(8)));
    EXPECT_EQ(connection.receive(), record(pingReply(8)));
}

TEST_F(FaultyReply, MeantForTcpIsLostOverUdp) {
    inject(Kind::CloseMidReply, 10);
    inject(Kind::HalfOpen, 10);
    for (std::uint32_t value = 1; value <= 3; ++value)
        sendPing(value);
    EXPECT_EQ(socket.receive(), pingReply(3));
}

// Which of a hundred pings meet a fault of half probability, on a board of its own.
std::string halfOfTheCalls(std::uint64_t seed) {
    Lab lab;
    Board& board = lab.add({"", "half", {}, "host", seed, false});
    board.inject({"setup", "ping", Kind::ResultCode, -1, -5, 0.5});
    Client client(board, SIM_SETUP, "udp");
    std::string met;
    for (int i = 0; i < 100; ++i) {
        int value = 0;
        EXPECT_EQ(client.call(sim_ping_1, 1, value), RPC_SUCCESS);
        met += value == -5 ? 'x' : '.';
    }
    return met;
}

TEST(FaultOfHalfProbability, FallsOnTheSameCallsWithTheSameSeed) {
    const std::string met = halfOfTheCalls(3);
    EXPECT_EQ(met, halfOfTheCalls(3));
    EXPECT_NE(met, halfOfTheCalls(4));
    const auto faults = std::count(met.begin(), met.end(), 'x');
    EXPECT_GT(faults, 25);
    EXPECT_LT(faults, 75);
}

TEST_F(FaultyReply, LeavesACallThatChanceSparesToTheNextFault) {
    board.inject({"setup", "ping", Kind::ResultCode, 1, -5, 0.0});
    board.inject({"setup", "ping", Kind::ResultCode, 1, -6});
    EXPECT_EQ(wordsOf(pinged(7)).back(), 0xFFFFFFFAU);
}

} // namespace
} // namespace OrvaneSim
