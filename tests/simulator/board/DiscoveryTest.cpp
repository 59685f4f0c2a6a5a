// Discovery by multicast and TCP probe, from the host side.
#include "tests/support/simulator/Client.h"
#include "tests/support/simulator/RawSocket.h"

namespace OrvaneSim {
namespace {

constexpr const char* kGroup = "239.255.255.38";
constexpr std::uint16_t kPort = 12345;

class Discovery : public testing::Test {
protected:
    Lab lab;
    Board& board = lab.add({"", "01a2", {}, "host", 1, false});
    RawSocket listener = RawSocket::datagram(kPort);

    void ask(const std::string& text) {
        RawSocket sender = RawSocket::datagram(0);
        in_addr host{};
        inet_pton(AF_INET, "10.83.255.254", &host);
        ASSERT_EQ(::setsockopt(sender.get(), IPPROTO_IP, IP_MULTICAST_IF, &host, sizeof host), 0);
        sender.sendTo(text, kGroup, kPort);
    }

    std::string probe(const std::string& text) {
        RawSocket socket = RawSocket::stream(board.address(), kPort);
        socket.send(text);
        return socket.receiveAll();
    }
};

TEST_F(Discovery, IsAnsweredFromTheBoardsAddressWithTheWordAndTheName) {
    std::string sender;
    ask("ZRDISCOVER?");
    EXPECT_EQ(listener.receive(&sender), "|host 01a2:0 01a2:1");
    EXPECT_EQ(sender, board.address());
}

TEST_F(Discovery, MatchesSerialAndDeviceNamesWhateverTheirCase) {
    for (const std::string word : {"01A2", "01a2", "01A2:1"}) {
        ask("ZRDISCOVER?" + word);
        EXPECT_EQ(listener.receive(), word + "|host 01a2:0 01a2:1");
    }
}

TEST_F(Discovery, ForAnotherBoardIsHeardAndLeftUnanswered) {
    ask("ZRDISCOVER?ffff");
    ask("something else");
    ask("ZRDISCOVER?01A2:0");
    EXPECT_EQ(listener.receive().substr(0, 7), "01A2:0|");
    EXPECT_EQ(board.discoveryRequests(), (std::vector<std::string>{"ffff", "01A2:0"}));
    EXPECT_EQ(board.discoveryCount(), 2U);
}

TEST_F(Discovery, IsAnsweredByEveryBoardThatIsMeant) {
    lab.add({"", "0B0B", {"0B0B:3"}, "rack", 1, false});
    ask("ZRDISCOVER?");
    std::vector<std::string> replies{listener.receive(), listener.receive()};
    std::sort(replies.begin(), replies.end());
    EXPECT_EQ(replies, (std::vector<std::string>{"|host 01a2:0 01a2:1", "|rack 0B0B:3"}));
}

TEST_F(Discovery, OfHundredsOfBoardsReachesTheRequesterWhole) {
    for (int i = 1; i < 300; ++i)
        lab.add({"", "S" + std::to_string(i), {}, "host", 1, false});
    ask("ZRDISCOVER?");
    std::vector<std::string> senders;
    for (int i = 0; i < 300; ++i) {
        std::string sender;
        ASSERT_NE(listener.receive(&sender), "");
        senders.push_back(sender);
    }
    std::sort(senders.begin(), senders.end());
    EXPECT_EQ(std::unique(senders.begin(), senders.end()), senders.end());
}

TEST_F(Discovery, IsAnsweredWithWhateverTheTestWants) {
    board.setDiscoveryReplies(std::vector<std::string>{std::string("a\0b", 3), std::string(300, 'x')});
    ask("ZRDISCOVER?nobody");
    EXPECT_EQ(listener.receive(), std::string("a\0b", 3));
    EXPECT_EQ(listener.receive(), std::string(300, 'x'));
    board.setDiscoveryReplies(std::nullopt);
    ask("ZRDISCOVER?");
    EXPECT_EQ(listener.receive(), "|host 01a2:0 01a2:1");
}

TEST_F(Discovery, MeetsFaultsOfItsName) {
    Fault fault;
    fault.program = "discovery";
    fault.kind = Fault::Kind::LoseReply;
    board.inject(fault);
    fault.kind = Fault::Kind::DuplicateReply;
    board.inject(fault);
    ask("ZRDISCOVER?01a2");
    ask("ZRDISCOVER?01A2");
    EXPECT_EQ(listener.receive().substr(0, 5), "01A2|");
    EXPECT_EQ(listener.receive().substr(0, 5), "01A2|");
}

TEST_F(Discovery, IsAnsweredWithGarbageOrACutReplyWhenAFaultSaysSo) {
    board.inject({"discovery", "", Fault::Kind::GarbageReply, 1, 9});
    board.inject({"discovery", "", Fault::Kind::TruncateReply, 1, 5});
    board.inject({"probe", "", Fault::Kind::TruncateReply, 1, 5});
    ask("ZRDISCOVER?");
    const std::string garbage = listener.receive();
    EXPECT_EQ(garbage.size(), 9U);
    EXPECT_NE(garbage, "|host 01a");
    ask("ZRDISCOVER?");
    EXPECT_EQ(listener.receive(), "|host");
    EXPECT_EQ(probe("ZRDISCOVER?"), "|host");
}

TEST_F(Discovery, GoesUnheardByAHangingBoard) {
    board.hang();
    ask("ZRDISCOVER?");
    RawSocket connection = RawSocket::stream(board.address(), kPort);
    connection.send("ZRDISCOVER?");
    Board& other = lab.add({"", "other", {}, "host", 1, false});
    ask("ZRDISCOVER?");
    EXPECT_EQ(listener.receive(), "|" + other.nameLine());
    EXPECT_FALSE(listener.readable(0));
    EXPECT_FALSE(connection.readable(0));
}

TEST_F(Discovery, GoesUnheardByAStoppedBoard) {
    board.stop();
    ask("ZRDISCOVER?");
    board.start();
    ask("ZRDISCOVER?01A2");
    EXPECT_EQ(listener.receive().substr(0, 5), "01A2|");
    EXPECT_EQ(board.discoveryCount(), 1U);
}

TEST_F(Discovery, ByProbeIsAnsweredAndTheConnectionClosed) {
    EXPECT_EQ(probe("ZRDISCOVER?01A2:0"), "01A2:0|host 01a2:0 01a2:1");
    EXPECT_EQ(probe("ZRDISCOVER?elsewhere"), "");
    EXPECT_EQ(board.probeRequests(), (std::vector<std::string>{"01A2:0", "elsewhere"}));
    EXPECT_EQ(board.discoveryCount(), 0U);
}

TEST_F(Discovery, ByProbeComesInThePiecesThatTheTestWants) {
    board.setProbeChunks(std::vector<std::string>{"|ho", "st 01a2:0"});
    RawSocket socket = RawSocket::stream(board.address(), kPort);
    socket.send("ZRDISCOVER?");
    EXPECT_EQ(socket.receive(), "|ho");
    EXPECT_EQ(socket.receiveAll(), "st 01a2:0");
}

TEST_F(Discovery, ByProbeOfASilentBoardStaysOpen) {
    Fault fault;
    fault.program = "probe";
    fault.kind = Fault::Kind::Silent;
    board.inject(fault);
    RawSocket socket = RawSocket::stream(board.address(), kPort);
    socket.send("ZRDISCOVER?");
    EXPECT_EQ(probe("ZRDISCOVER?"), "|host 01a2:0 01a2:1") << "served after the silent one";
    EXPECT_FALSE(socket.readable(0));
}

} // namespace
} // namespace OrvaneSim
