// What can be done to a board while it serves: hang, restart, move, strays; and what it counts.
#include "tests/support/simulator/RawBoard.h"

#include <cerrno>
#include <set>

namespace OrvaneSim {
namespace {

using Kind = Fault::Kind;

class DisturbedBoard : public RawBoard {
protected:
    // Whether a board answers a ping over UDP, asked through its port mapper.
    static bool answers(const Board& asked) {
        CLIENT* client = clnt_create_timed(asked.address().c_str(), SIM_SETUP, 1, "udp", &kLimit);
        if (!client)
            return false;
        int argument = 1;
        int value = 0;
        clnt_control(client, CLSET_TIMEOUT, reinterpret_cast<char*>(&kLimit));
        const clnt_stat status = sim_ping_1(&argument, &value, client);
        clnt_destroy(client);
        return status == RPC_SUCCESS;
    }
    static inline timeval kLimit{0, 200000};

    int connectionError(std::uint16_t toPort) {
        const Orvane::FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const sockaddr_in point = endPoint(board.address(), toPort);
        return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&point), sizeof point) == 0 ? 0
                                                                                                     : errno;
    }
};

TEST_F(DisturbedBoard, ThatHangsHearsNothingAndKeepsItsSockets) {
    board.hang();
    EXPECT_FALSE(answers(board));
    EXPECT_EQ(connectionError(111), 0);
    EXPECT_EQ(connectionError(12345), 0);
    board.start();
    EXPECT_TRUE(answers(board));
}

TEST_F(DisturbedBoard, ThatIsRestartedServesAtOtherPortsWithItsSessions) {
    const std::uint16_t tcp = port(IPPROTO_TCP);
    const std::uint16_t udp = port(IPPROTO_UDP);
    board.restart();
    EXPECT_NE(port(IPPROTO_TCP), tcp);
    EXPECT_NE(port(IPPROTO_UDP), udp);
    EXPECT_EQ(board.sessionCount(), 1U);
    EXPECT_EQ(connectionError(tcp), ECONNREFUSED);
}

TEST_F(DisturbedBoard, ThatIsRestartedMayForgetItsSessions) {
    board.restart(true);
    EXPECT_EQ(board.sessionCount(), 0U);
    EXPECT_TRUE(answers(board));
}

TEST_F(DisturbedBoard, MovesToAnotherAddressWithItsState) {
    const std::string former = board.address();
    board.setRegister(Space::C45, 0, 0, 0x10010, 77);
    board.moveTo("10.83.5.5");
    EXPECT_EQ(board.address(), "10.83.5.5");
    EXPECT_TRUE(answers(board));
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, 0x10010), 77U);
    EXPECT_EQ(lab.add({former, "heir", {}, "host", 1, false}).address(), former);
}

TEST_F(DisturbedBoard, StaysWhereItIsWhenItCannotMove) {
    const std::string former = board.address();
    Board& other = lab.add({"", "other", {}, "host", 1, false});
    EXPECT_THROW(board.moveTo(other.address()), std::invalid_argument);
    EXPECT_THROW(board.moveTo("somewhere"), std::invalid_argument);
    EXPECT_THROW(board.moveTo("192.0.2.1"), std::system_error);
    EXPECT_EQ(board.address(), former);
    EXPECT_TRUE(answers(board));
}

TEST_F(DisturbedBoard, RefusesAtItsPortMapperUntilThatIsOpenAgain) {
    board.closePortMapper();
    EXPECT_EQ(connectionError(111), ECONNREFUSED);
    EXPECT_EQ(connectionError(12345), 0);
    board.restart();
    EXPECT_EQ(connectionError(111), ECONNREFUSED);
    board.openPortMapper();
    EXPECT_TRUE(answers(board));
}

TEST_F(DisturbedBoard, RefusesAsManyOpensAsAsked) {
    board.inject({"setup", "open_connection", Kind::ResultCode, 2, -EACCES});
    sim_Open_Param argument{};
    argument.simple = 1;
    for (const int expected : {-EACCES, -EACCES, 0}) {
        sim_Open_Result result{};
        ASSERT_EQ(setup.call(sim_open_connection_1, argument, result), RPC_SUCCESS);
        EXPECT_EQ(result.error, expected);
    }
}

TEST_F(DisturbedBoard, DoesWhatActionsSay) {
    board.apply(SetRegister{Space::C45, 0, 0, 0x10010, 5});
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, 0x10010), 5U);
    board.apply(Fault{"setup", "ping", Kind::LoseReply, 3, 0});
    ASSERT_EQ(board.faults().size(), 1U);
    EXPECT_EQ(board.faults()[0].count, 3);
    board.apply(ClearFaults{});
    EXPECT_TRUE(board.faults().empty());
    board.apply(MoveTo{"10.83.6.6"});
    EXPECT_EQ(board.address(), "10.83.6.6");
    board.apply(Kill{});
    EXPECT_EQ(connectionError(111), ECONNREFUSED);
    board.apply(Start{});
    EXPECT_EQ(connectionError(111), 0);
    board.apply(ForgetSessions{});
    EXPECT_EQ(board.sessionCount(), 0U);
}

class StrayingBoard : public DisturbedBoard {
protected:
    // What a client that was seen last receives of a stream.
    std::vector<std::string> strays(StrayDatagrams::Kind kind, unsigned count) {
        RawSocket socket = RawSocket::datagram(0);
        socket.sendTo(ping(7), board.address(), port(IPPROTO_UDP));
        EXPECT_EQ(socket.receive(), pingReply(7));
        const std::uint64_t before = board.straysSent();
        board.sendStrays({kind, 10000, count});
        std::vector<std::string> received;
        while (received.size() < count)
            received.push_back(socket.receive());
        EXPECT_FALSE(socket.readable(0));
        EXPECT_EQ(board.straysSent() - before, count);
        return received;
    }
};

TEST_F(StrayingBoard, SendsRepliesThatNobodyWaitsFor) {
    for (const std::string& bytes : strays(StrayDatagrams::Kind::WrongTransaction, 5))
        EXPECT_EQ(bytes, words({0x80000007, REPLY, MSG_ACCEPTED, 0, 0, SUCCESS, 0}));
}

TEST_F(StrayingBoard, SendsRepliesFromAnotherPort) {
    for (const std::string& bytes : strays(StrayDatagrams::Kind::WrongPort, 5))
        EXPECT_EQ(bytes, words({7, REPLY, MSG_ACCEPTED, 0, 0, SUCCESS, 0}));
}

TEST_F(StrayingBoard, SendsDatagramsOfUpToThreeBytes) {
    std::set<std::size_t> sizes;
    for (const std::string& bytes : strays(StrayDatagrams::Kind::Short, 100))
        sizes.insert(bytes.size());
    EXPECT_EQ(sizes, (std::set<std::size_t>{0, 1, 2, 3}));
}

TEST_F(StrayingBoard, SendsMadeUpBytes) {
    for (const std::string& bytes : strays(StrayDatagrams::Kind::Random, 20))
        EXPECT_GE(bytes.size(), 4U);
}

TEST_F(DisturbedBoard, CountsWhatBecomesOfItsCalls) {
    Client udp(board, SIM_SETUP, "udp");
    udp.setTimeout(100);
    board.inject({"setup", "ping", Kind::LoseRequest, 1, 0});
    board.inject({"setup", "ping", Kind::LoseReply, 1, 0});
    board.inject({"setup", "ping", Kind::ResultCode, 1, -5});
    for (int i = 0; i < 4; ++i) {
        int value = 0;
        udp.call(sim_ping_1, 1, value);
    }
    const CallCounts counts = board.counts("ping");
    EXPECT_EQ(counts.received, 4U);
    EXPECT_EQ(counts.executed, 2U);
    EXPECT_EQ(counts.faults, 3U);
    EXPECT_EQ(counts.lostRequests, 1U);
    EXPECT_EQ(counts.lostReplies, 1U);
    EXPECT_EQ(board.counts().at("open_connection").executed, 1U);
    EXPECT_EQ(board.executions("mdio_read"), 0U);
}

TEST_F(DisturbedBoard, GoesOnCountingWhatItDoesNotKeep) {
    BoardOptions options;
    options.serial = "forgetful";
    options.keptRequests = 2;
    Board& forgetful = lab.add(options);
    Client client(forgetful, SIM_SETUP, "udp");
    for (int i = 0; i < 5; ++i) {
        int value = 0;
        client.call(sim_ping_1, i, value);
    }
    EXPECT_EQ(forgetful.executions("ping"), 5U);
    ASSERT_EQ(forgetful.requests().size(), 2U);
    EXPECT_EQ(argumentsOf(forgetful.requests()[0])["value"], 3);
}

TEST_F(DisturbedBoard, LetsAnObserverActBetweenTwoRequests) {
    int seen = 0;
    board.onRequest([&](const Request& request) {
        if (request.procedure == "ping" && ++seen == 2)
            board.inject({"setup", "ping", Kind::ResultCode, 1, -5});
    });
    std::vector<int> values;
    for (int i = 1; i <= 4; ++i) {
        int value = 0;
        setup.call(sim_ping_1, i, value);
        values.push_back(value);
    }
    EXPECT_EQ(values, (std::vector<int>{1, 2, -5, 4}));
}

TEST_F(DisturbedBoard, IsStoppedByAnObserverOnceTheRequestIsAnswered) {
    board.onRequest([&](const Request& request) {
        if (request.procedure == "ping")
            board.stop();
    });
    int value = 0;
    EXPECT_EQ(setup.call(sim_ping_1, 9, value), RPC_SUCCESS);
    EXPECT_EQ(value, 9);
    EXPECT_EQ(setup.call(sim_ping_1, 9, value), RPC_CANTRECV);
}

} // namespace
} // namespace OrvaneSim
