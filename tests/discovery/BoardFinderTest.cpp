// The finder's reading of replies, its host-name look-up and its probe of one address.
#include "ov_sys/Interface/discovery/BoardFinder.h"

#include "simulator/network/PrivateFiles.h"
#include "tests/support/discovery/Found.h"
#include "tests/support/discovery/LoopbackServer.h"
#include "tests/support/HostsFile.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <thread>

namespace Orvane {
namespace {

using OrvaneTest::Found;
using Records = std::vector<AddressResponse>;

std::string parsedName(const std::string& boardType, const std::string& text) {
    AddressResponse reply(text, "10.0.0.1");
    return BoardFinder::parseResponce(boardType, reply).name;
}

TEST(ParseResponce, GivesTheLowerCasedNameBehindTheTypeWord) {
    EXPECT_EQ(parsedName("evb", "EVB|Board-7"), "board-7");
    EXPECT_EQ(parsedName("EVB", "evb|Board-7"), "board-7");
    EXPECT_EQ(parsedName("", "|host 01A2:0 01A2:1"), "host 01a2:0 01a2:1");
    EXPECT_EQ(parsedName("evb", "evb|a|b"), "a|b");
}

TEST(ParseResponce, RefusesOtherTypesAndRepliesWithoutName) {
    EXPECT_EQ(parsedName("evb", "other|board-7"), "");
    EXPECT_EQ(parsedName("evb", "evb2|board-7"), "");
    EXPECT_EQ(parsedName("evb", "|board-7"), "");
    EXPECT_EQ(parsedName("", "evb|board-7"), "");
    EXPECT_EQ(parsedName("evb", "evb|"), "");
    EXPECT_EQ(parsedName("evb", "evb"), "");
    EXPECT_EQ(parsedName("evb", ""), "");
}

TEST(ParseResponce, GivesTheRecordItselfBackWithItsAddress) {
    AddressResponse reply("evb|Board-7", "10.0.0.1");
    AddressResponse& result = BoardFinder::parseResponce("evb", reply);
    EXPECT_EQ(&result, &reply);
    EXPECT_EQ(reply, AddressResponse("board-7", "10.0.0.1"));
}

TEST(ParseResponce, KeepsTheAddressOfARefusedReply) {
    AddressResponse reply("other|Board-7", "10.0.0.1");
    BoardFinder::parseResponce("evb", reply);
    EXPECT_EQ(reply, AddressResponse("", "10.0.0.1"));
}

TEST(ParseResponce, RefusesAndCountsNamesBeyondPrintableAscii) {
    const std::uint64_t before = BoardFinder::dropped().unprintable;
    EXPECT_EQ(parsedName("evb", "evb|b\x1b[2J"), "");
    EXPECT_EQ(parsedName("evb", "evb|host a:0\n"), "");
    EXPECT_EQ(parsedName("evb", "evb|b\x1f"), "");
    EXPECT_EQ(parsedName("evb", "evb|b\x7f"), "");
    EXPECT_EQ(parsedName("evb", "evb|b\xc2\x9b"), "");
    EXPECT_EQ(BoardFinder::dropped().unprintable, before + 5);
}

TEST(ParseResponce, TakesEveryPrintableByteAndAnyTypeWord) {
    std::string every;
    for (char each = ' '; each <= '~'; ++each)
        if (each < 'A' || each > 'Z')
            every += each;
    const std::uint64_t before = BoardFinder::dropped().unprintable;
    EXPECT_EQ(parsedName("", "|" + every), every);
    EXPECT_EQ(parsedName("\xfc", "\xfc|b"), "b");
    EXPECT_EQ(parsedName("evb", "other|\x1b"), "");
    EXPECT_EQ(BoardFinder::dropped().unprintable, before);
}

TEST(HandleReceivedData, AppendsAcceptedRepliesInOrderAndEmptiesThem) {
    Found found;
    Records replies = {
        {"evb|B2", "10.0.0.2"}, {"other|B9", "10.0.0.9"}, {"evb|", "10.0.0.8"}, {"evb|B1", "10.0.0.1"}};
    BoardFinder::handleReceivedData("evb", replies, found.list);
    EXPECT_EQ(found.records(), (Records{{"b2", "10.0.0.2"}, {"b1", "10.0.0.1"}}));
    EXPECT_EQ(replies, Records{});
}

TEST(HandleReceivedData, SkipsWhatWasFoundBeforeOrTwice) {
    Found found = {{"b1", "10.0.0.1"}};
    AddressResponse* const earlier = found.list[0];
    Records replies = {{"|B1", "10.0.0.1"}, {"|b2", "10.0.0.2"}, {"|B2", "10.0.0.2"}};
    BoardFinder::handleReceivedData("", replies, found.list);
    EXPECT_EQ(found.records(), (Records{{"b1", "10.0.0.1"}, {"b2", "10.0.0.2"}}));
    EXPECT_EQ(found.list[0], earlier);
}

TEST(HandleReceivedData, KeepsOneNameAtTwoAddressesAndTwoNamesAtOne) {
    Found found;
    Records replies = {{"|b", "10.0.0.1"}, {"|b", "10.0.0.2"}, {"|c", "10.0.0.1"}};
    BoardFinder::handleReceivedData("", replies, found.list);
    EXPECT_EQ(found.records(), (Records{{"b", "10.0.0.1"}, {"b", "10.0.0.2"}, {"c", "10.0.0.1"}}));
}

// The host names of these tests, in place of the machine's own.
class FindByHostName : public testing::Test {
protected:
    static constexpr int kManyAddresses = 200; // more than fits the first buffer of a look-up

    // Several addresses of one name count only when this file says so.
    static void SetUpTestSuite() { OrvaneSim::replaceFile("/etc/host.conf", "multi on\n"); }

    static std::string hosts() {
        std::string text = "127.0.0.1 localhost\n"
                           "10.83.0.7 boardhost\n"
                           "10.83.0.8 twohost\n"
                           "10.83.0.9 twohost\n"
                           "fd00::7 sixhost\n";
        for (int i = 1; i <= kManyAddresses; ++i)
            text += "10.83.1." + std::to_string(i) + " manyhost\n";
        return text;
    }

    const OrvaneTest::HostsFile file{hosts()};
    AddressResponse out{"before", "0.0.0.0"};
};

TEST_F(FindByHostName, GivesTheOneAddressOfAName) {
    EXPECT_TRUE(BoardFinder::findByHostName("boardhost", out));
    EXPECT_EQ(out, AddressResponse("boardhost", "10.83.0.7"));
}

TEST_F(FindByHostName, KeepsThePortInTheName) {
    EXPECT_TRUE(BoardFinder::findByHostName("boardhost:1", out));
    EXPECT_EQ(out, AddressResponse("boardhost:1", "10.83.0.7"));
}

TEST_F(FindByHostName, LooksAtThePartBeforeTheFirstColonOnly) {
    EXPECT_TRUE(BoardFinder::findByHostName("boardhost:1:nonsense", out));
    EXPECT_EQ(out, AddressResponse("boardhost:1:nonsense", "10.83.0.7"));
}

TEST_F(FindByHostName, KeepsTheLetterCaseOfTheName) {
    EXPECT_TRUE(BoardFinder::findByHostName("BOARDHOST", out));
    EXPECT_EQ(out, AddressResponse("BOARDHOST", "10.83.0.7"));
}

TEST_F(FindByHostName, DoesNotLookUpDottedAddresses) {
    for (const std::string literal : {"10.0.0.5", "10.0.0.5:1234", "10.5", "0x7f.1:x"}) {
        EXPECT_FALSE(BoardFinder::findByHostName(literal, out)) << literal;
        EXPECT_EQ(out, AddressResponse("before", "0.0.0.0")) << literal;
    }
}

TEST_F(FindByHostName, IsFalseForTwoAddressesButLeavesTheLast) {
    EXPECT_FALSE(BoardFinder::findByHostName("twohost:3", out));
    EXPECT_EQ(out, AddressResponse("twohost:3", "10.83.0.9"));
}

TEST_F(FindByHostName, TakesInMoreAddressesThanFitTheFirstBuffer) {
    EXPECT_FALSE(BoardFinder::findByHostName("manyhost", out));
    EXPECT_EQ(out, AddressResponse("manyhost", "10.83.1.200"));
}

TEST_F(FindByHostName, IsFalseForUnknownAndEmptyNamesAndForIPv6Only) {
    const OrvaneTest::WrittenText written = OrvaneTest::textWritten([this] {
        for (const std::string unknown : {"nosuchboard", "", ":7", "sixhost"}) {
            EXPECT_FALSE(BoardFinder::findByHostName(unknown, out)) << unknown;
            EXPECT_EQ(out, AddressResponse("before", "0.0.0.0")) << unknown;
        }
    });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(written.output, "");
}

TEST_F(FindByHostName, AnswersSeveralThreadsAtOnce) {
    constexpr int lookUps = 4;
    std::vector<std::thread> threads;
    threads.reserve(lookUps);
    for (int i = 0; i < lookUps; ++i)
        threads.emplace_back([i] {
            const std::string host = i % 2 == 0 ? "boardhost" : "localhost";
            for (int round = 0; round < 50; ++round) {
                AddressResponse mine;
                EXPECT_TRUE(BoardFinder::findByHostName(host, mine));
                EXPECT_EQ(mine, AddressResponse(host, i % 2 == 0 ? "10.83.0.7" : "127.0.0.1"));
            }
        });
    for (std::thread& each : threads)
        each.join();
}

// Probes 127.0.0.7, where a server answers with `reply`, for boards of type "Evb".
AddressResponse probed(const std::string& reply) {
    OrvaneTest::LoopbackServer server(
        [&reply](int connection) {
            EXPECT_EQ(OrvaneTest::receive(connection, 14), "ZRDISCOVER?Evb");
            OrvaneTest::sendText(connection, reply);
        },
        7, 12345);
    AddressResponse board("before", "127.0.0.7");
    BoardFinder::find_ports("Evb", board);
    return board;
}

TEST(FindPorts, PutsTheParsedNameInThePlaceOfTheOldOne) {
    EXPECT_EQ(probed("EVB|Board-7"), AddressResponse("board-7", "127.0.0.7"));
}

TEST(FindPorts, EmptiesTheNameWhenTheReplyIsOfAnotherType) {
    EXPECT_EQ(probed("other|Board-7"), AddressResponse("", "127.0.0.7"));
}

TEST(FindPorts, EmptiesTheNameWhenNobodyListensThere) {
    AddressResponse board("before", "127.0.0.8");
    const std::string lines = OrvaneTest::textWritten([&] { BoardFinder::find_ports("evb", board); }).error;
    EXPECT_EQ(lines, "send failed with error: Connection refused\n");
    EXPECT_EQ(board, AddressResponse("", "127.0.0.8"));
}

} // namespace
} // namespace Orvane
