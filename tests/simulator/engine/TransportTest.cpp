// Datagrams, records and headers that no well-behaved client sends.
#include "ov_sys/Interface/foundation/DatagramTrain.h"
#include "simulator/engine/Sockets.h"
#include "tests/support/simulator/RawBoard.h"

#include <array>

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kLast = 0x80000000;
using RpcTransport = RawBoard;

TEST_F(RpcTransport, JoinsARecordOutOfFragmentsThatComeByteByByte) {
    RawSocket socket = stream();
    const std::string ping = request(SIM_SETUP, SIM_PING, words({55}));
    const std::string record = words({10}) + ping.substr(0, 10) + words({0}) +
                               words({kLast | static_cast<std::uint32_t>(ping.size() - 10)}) +
                               ping.substr(10);
    for (const char byte : record)
        socket.send(std::string(1, byte));
    EXPECT_EQ(wordsOf(socket.receive()),
              (std::vector<std::uint32_t>{kLast | 28, kTransaction, REPLY, MSG_ACCEPTED, 0, 0, SUCCESS, 55}));
}

TEST_F(RpcTransport, AnswersEveryRecordOfOneSegmentInOrder) {
    RawSocket socket = stream();
    std::string segment;
    for (std::uint32_t value = 0; value < 3; ++value) {
        const std::string ping = request(SIM_SETUP, SIM_PING, words({value}));
        segment += words({kLast | static_cast<std::uint32_t>(ping.size())}) + ping;
    }
    socket.send(segment);
    std::string answers;
    while (answers.size() < 3U * 32)
        answers += socket.receive();
    const auto values = wordsOf(answers);
    EXPECT_EQ(values[7], 0U);
    EXPECT_EQ(values[15], 1U);
    EXPECT_EQ(values[23], 2U);
}

TEST_F(RpcTransport, ClosesAConnectionWhoseRecordIsTooLong) {
    RawSocket socket = stream();
    socket.send(words({kLast | 0x7FFFFFFF}));
    EXPECT_EQ(socket.receiveAll(), "");
}

TEST_F(RpcTransport, ClosesAConnectionThatCarriesNoRequest) {
    RawSocket socket = stream();
    socket.send(words({kLast | 8, kTransaction, REPLY}));
    EXPECT_EQ(socket.receiveAll(), "");
}

TEST_F(RpcTransport, RefusesAnotherRpcVersion) {
    EXPECT_EQ(exchange(request(SIM_SETUP, SIM_PING, words({1}), 1, 3)),
              (std::vector<std::uint32_t>{kTransaction, REPLY, MSG_DENIED, RPC_MISMATCH, 2, 2}));
}

TEST_F(RpcTransport, RefusesUnknownProgramsVersionsAndProcedures) {
    const std::vector<std::uint32_t> accepted{kTransaction, REPLY, MSG_ACCEPTED, 0, 0};
    const auto with = [&](std::vector<std::uint32_t> tail) {
        auto all = accepted;
        all.insert(all.end(), tail.begin(), tail.end());
        return all;
    };
    EXPECT_EQ(exchange(request(0x2FFFFFF8, 1, "")), with({PROG_UNAVAIL}));
    EXPECT_EQ(exchange(request(SIM_MDIO, 1, "", 2)), with({PROG_MISMATCH, 1, 1}));
    EXPECT_EQ(exchange(request(SIM_MDIO, 21, "")), with({PROC_UNAVAIL}));
    EXPECT_EQ(exchange(request(SIM_JTAG, 2, "")), with({PROC_UNAVAIL}));
}

TEST_F(RpcTransport, AnswersTheNullProcedureOfEveryProgramAndRecordsNone) {
    board.forgetRequests();
    for (const std::uint32_t program : std::array<std::uint32_t, 3>{SIM_SETUP, SIM_MDIO, SIM_JTAG})
        EXPECT_EQ(exchange(request(program, NULLPROC, "")),
                  (std::vector<std::uint32_t>{kTransaction, REPLY, MSG_ACCEPTED, 0, 0, SUCCESS}));
    EXPECT_TRUE(board.requests().empty());
}

TEST_F(RpcTransport, RefusesArgumentsThatDoNotDecodeAndRecordsNone) {
    board.forgetRequests();
    EXPECT_EQ(exchange(request(SIM_MDIO, SIM_MDIO_READ, words({1, 5, 0}))).back(),
              static_cast<std::uint32_t>(GARBAGE_ARGS));
    EXPECT_TRUE(board.requests().empty());
}

TEST_F(RpcTransport, RefusesAListThatClaimsMoreThanItsLimitWithoutMakingRoomForIt) {
    EXPECT_EQ(exchange(request(SIM_MDIO, SIM_MDIO_READ, words({1, 0xFFFFFFFF}))).back(),
              static_cast<std::uint32_t>(GARBAGE_ARGS));
}

// Sends pings of these values to a board in one go.
void pingTogether(const RawSocket& socket, const sockaddr_in& board, std::uint32_t count) {
    Orvane::DatagramTrain train;
    for (std::uint32_t value = 0; value < count; ++value) {
        const std::string bytes = ping(value);
        train.add(socket.get(), board, bytes.data(), bytes.size());
    }
    train.leave();
}

TEST_F(RpcTransport, AnswersRequestsThatComeTogetherInOrder) {
    RawSocket socket = RawSocket::datagram(0);
    pingTogether(socket, endPoint(board.address(), port(IPPROTO_UDP)), 40);
    for (std::uint32_t value = 0; value < 40; ++value)
        ASSERT_EQ(socket.receive(), pingReply(value));
}

TEST_F(RpcTransport, HearsNothingBehindARequestThatStopsTheBoard) {
    RawSocket socket = RawSocket::datagram(0);
    const sockaddr_in place = endPoint(board.address(), port(IPPROTO_UDP));
    board.forgetRequests();
    board.onRequest([&](const Request& one) {
        if (one.arguments().find("1") != std::string::npos)
            board.stop();
    });
    pingTogether(socket, place, 5);
    EXPECT_EQ(socket.receive(), pingReply(0));
    EXPECT_EQ(socket.receive(), pingReply(1));
    board.start();
    EXPECT_EQ(board.requestsOf("ping").size(), 2U);
}

TEST_F(RpcTransport, DoesWhatARequestBringsAboutBeforeTheRequestBehindIt) {
    RawSocket socket = RawSocket::datagram(0);
    const sockaddr_in place = endPoint(board.address(), port(IPPROTO_UDP));
    board.onRequest([&](const Request&) { board.closePortMapper(); });
    pingTogether(socket, place, 5);
    for (std::uint32_t value = 0; value < 5; ++value)
        ASSERT_EQ(socket.receive(), pingReply(value)); // those that were put off too, in order
}

TEST_F(RpcTransport, LeavesDatagramsThatAreNoRequestsUnanswered) {
    RawSocket socket = RawSocket::datagram(0);
    const std::uint16_t udp = port(IPPROTO_UDP);
    socket.sendTo("x", board.address(), udp);
    socket.sendTo(words({kTransaction, REPLY, 2}), board.address(), udp);
    socket.sendTo(request(SIM_SETUP, SIM_PING, words({9})), board.address(), udp);
    EXPECT_EQ(wordsOf(socket.receive()).back(), 9U) << "the first answer is that of the last datagram";
}

TEST_F(RpcTransport, AcceptsCredentialsOfAnyFlavour) {
    const std::string call = words({kTransaction, CALL, 2, SIM_SETUP, 1, SIM_PING, 77, 8, 1, 2, 0, 0, 42});
    EXPECT_EQ(exchange(call).back(), 42U);
}

} // namespace
} // namespace OrvaneSim
