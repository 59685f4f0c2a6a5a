// orvane list, info and ping.
#include "tests/support/tools/Program.h"

#include <algorithm>
#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace OrvaneTest {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

const std::string kColumns =
    "record,device,board,port,phy,adapter,address,kind,ports,error.kind,error.code,error.text\n";

TEST(OrvaneList, FindsEveryBoardThatAnswersAMulticast) {
    OrvaneSim::Lab lab;
    lab.add({"10.83.0.1", "OV0001", {"OV0001:0", "OV0001:10"}, "host", 1, false});
    lab.add({"10.83.0.2", "OV0002", {"OV0002:0"}, "host", 2, false});
    EXPECT_EQ(orvane({"list"}), prints("NAME       ADAPTER  ADDRESS    PORT  KIND   BOARD'S PORTS\n"
                                       "OV0001:0         0  10.83.0.1     0  mdio   0 10\n"
                                       "OV0001:10        1  10.83.0.1    10  smbus  0 10\n"
                                       "OV0002:0         2  10.83.0.2     0  mdio   0\n"));
}

TEST(OrvaneList, AsksTheGivenAddressesAloneAndSendsNoMulticast) {
    OrvaneSim::Lab lab;
    lab.add({"10.83.0.1", "OV0001", {"OV0001:0"}, "host", 1, false});
    OrvaneSim::Board& second = lab.add({"10.83.0.2", "OV0002", {"OV0002:0"}, "host", 2, false});
    EXPECT_EQ(orvane({"list", "--address", "10.83.0.2", "--csv"}),
              prints(kColumns + "device,OV0002:0,OV0002,0,,0,10.83.0.2,mdio,0,,,\n"));
    EXPECT_EQ(second.discoveryCount(), 0U);
    EXPECT_EQ(second.probeRequests().size(), 1U);
}

TEST(OrvaneList, AsCsvHasNoFormulasFromBoards) {
    OrvaneSim::Lab lab;
    lab.add({"10.83.0.2", "OV0002", {"=1+cmd:3"}, "host", 2, false});
    EXPECT_EQ(orvane({"list", "--address", "10.83.0.2", "--csv"}),
              prints(kColumns + "device,'=1+CMD:3,'=1+CMD,3,,0,10.83.0.2,mdio,3,,,\n"));
}

TEST(OrvaneList, OfThreeThousandBoardsIsComplete) {
    OrvaneSim::Lab lab;
    for (int i = 0; i < 3000; ++i)
        lab.add({"", "B" + std::to_string(1000 + i), {}, "host", 1, false});
    const Outcome outcome = orvane({"list", "--expect", "3000", "--time", "60", "--csv"});
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1 + 2 * 3000);
}

TEST(OrvaneList, HasABoardThatAnswersLate) {
    OneBoardLab lab;
    lab.board.inject({"discovery", "", OrvaneSim::Fault::Kind::DelayReply, -1, 100});
    EXPECT_THAT(orvane({"list", "--expect", "1", "--time", "60"}).output, HasSubstr("\nOV0001:0 "));
    lab.board.clearFaults();
    lab.board.inject({"probe", "", OrvaneSim::Fault::Kind::DelayReply, -1, 100});
    EXPECT_THAT(lab.run({"list"}).output, HasSubstr("\nOV0001:0 "));
}

TEST(OrvaneList, EndsAsSoonAsTheExpectedBoardsAreThere) {
    OrvaneSim::Lab lab;
    lab.add({"10.83.0.1", "OV0001", {"OV0001:0"}, "host", 1, false});
    lab.add({"10.83.0.2", "OV0002", {"OV0002:0"}, "host", 2, false});
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(orvane({"list", "--expect", "2", "--time", "600", "--csv"}).status, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(60));
}

TEST(OrvaneList, FailsWhenFewerBoardsAnswerThanExpected) {
    const OneBoardLab board;
    EXPECT_EQ(board.run({"list", "--expect", "2", "--csv"}),
              fails(1, "orvane: list: 1 of 2 boards answered\n",
                    kColumns + "device,OV0001:0,OV0001,0,,0,10.83.0.1,mdio,0 1 10,,,\n"
                               "device,OV0001:1,OV0001,1,,1,10.83.0.1,mdio,0 1 10,,,\n"
                               "device,OV0001:10,OV0001,10,,2,10.83.0.1,smbus,0 1 10,,,\n"
                               "failure,,,,,,,,,failed,0,list: 1 of 2 boards answered\n"));
}

TEST(OrvaneList, WarnsOfBoardsThatAnswerWithoutAName) {
    const OneBoardLab board;
    board.board.setDiscoveryReplies(std::vector<std::string>{"|host OV0001:0", "no bar"});
    EXPECT_EQ(orvane({"list"}),
              fails(1, "orvane: list: there may be more boards: 1 answer named no port as it should\n",
                    "NAME      ADAPTER  ADDRESS    PORT  KIND  BOARD'S PORTS\n"
                    "OV0001:0        0  10.83.0.1     0  mdio  0\n"));
}

// The time is so short that nobody knows whether others will follow.
TEST(OrvaneList, WarnsWhenBoardsStillAnswerInTheEnd) {
    const OneBoardLab board;
    EXPECT_EQ(orvane({"list", "--time", "0.19"}).error,
              "orvane: list: there may be more boards: boards were still answering when the time was over "
              "(--time gives them more)\n");
}

TEST(OrvaneList, AsJsonIsAnArrayOfObjects) {
    const OneBoardLab board;
    const Outcome outcome = board.run({"list", "--json"});
    EXPECT_EQ(outcome.status, 0);
    const auto devices = nlohmann::json::parse(outcome.output);
    EXPECT_EQ(devices.size(), 3U);
    EXPECT_EQ(devices[2], (nlohmann::json{{"record", "device"},
                                          {"device", "OV0001:10"},
                                          {"board", "OV0001"},
                                          {"port", 10},
                                          {"adapter", 2},
                                          {"address", "10.83.0.1"},
                                          {"kind", "smbus"},
                                          {"ports", {0, 1, 10}}}));
}

TEST(OrvaneList, FailsWhenNoBoardAnswers) {
    EXPECT_EQ(
        orvane({"list"}),
        fails(1, "orvane: list: no board answers on the local networks (--address asks one directly)\n"));
    EXPECT_EQ(orvane({"list", "--address", "10.83.100.1"}),
              fails(1, "orvane: list: no board answers at 10.83.100.1\n"));
}

TEST(OrvaneList, CountsTheBoardsOnATerminalAndClearsItsLine) {
    const OneBoardLab board;
    const Outcome outcome = orvaneOnTerminal({"list"}, {{"NO_COLOR", "1"}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("\r\033[K| looking for boards"));
    EXPECT_THAT(outcome.output, HasSubstr(" looking for boards, 1\r\033[KNAME       ADAPTER"));
}

TEST(OrvaneInfo, ShowsTheDeviceItsSessionAndThePhysIdentifier) {
    const OneBoardLab board;
    EXPECT_EQ(board.run({"info", "OV0001:1", "--phy", "3"}),
              prints("device      OV0001:1\n"
                     "address     10.83.0.1\n"
                     "port        1 (MDIO)\n"
                     "session     simple\n"
                     "key         0\n"
                     "services    adc gpio i2c jtag keepAlive mdio setup thermal\n"
                     "identifier  0x0A5C 0x1E83\n"));
}

TEST(OrvaneInfo, TellsTheModeThatTheEnvironmentAsksFor) {
    const OneBoardLab board;
    Environment environment = board.environment();
    environment["EXCLUSIVE_KEY"] = "77";
    const Outcome outcome = orvane({"info", "ov0001:10", "--json"}, environment);
    EXPECT_EQ(outcome.status, 0) << outcome;
    const auto facts = nlohmann::json::parse(outcome.output).at(0);
    EXPECT_EQ(facts["session"], "exclusive (EXCLUSIVE_KEY=77)");
    EXPECT_EQ(facts["key"], 77);
    EXPECT_EQ(facts["port"], 10);
    EXPECT_EQ(facts["kind"], "smbus");
}

TEST(OrvanePing, PrintsEachRoundTripAndASummary) {
    const OneBoardLab board;
    const Outcome outcome = board.run({"ping", "OV0001:0", "-c", "3", "-i", "0"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(outcome.output,
                MatchesRegex("OV0001:0 at 10\\.83\\.0\\.1: seq=1 time=[0-9.]+ ms\n"
                             "OV0001:0 at 10\\.83\\.0\\.1: seq=2 time=[0-9.]+ ms\n"
                             "OV0001:0 at 10\\.83\\.0\\.1: seq=3 time=[0-9.]+ ms\n"
                             "--- OV0001:0 ---\n3 sent, 3 received, 0\\.0 % lost\n"
                             "min [0-9.]+ ms, median [0-9.]+ ms, p99 [0-9.]+ ms, max [0-9.]+ ms\n"));
}

TEST(OrvanePing, CountsWhatTheBoardDoesNotAnswer) {
    using OrvaneSim::Fault;
    const OneBoardLab board;
    board.board.inject({"keepAlive", "", Fault::Kind::LoseRequest, -1, 0});
    board.board.inject({"setup", "ping", Fault::Kind::LoseRequest, -1, 0});
    EXPECT_EQ(
        board.run({"ping", "OV0001:0", "-c", "1"}),
        fails(1, "",
              "OV0001:0 at 10.83.0.1: seq=1 lost\n--- OV0001:0 ---\n1 sent, 0 received, 100.0 % lost\n"));
}

TEST(OrvanePing, AsJsonIsALineForEachAndTheSummary) {
    const OneBoardLab board;
    EXPECT_THAT(
        board.run({"ping", "OV0001:0", "-c", "2", "-i", "0", "--json"}).output,
        MatchesRegex("(\\{\"record\":\"ping\",\"device\":\"OV0001:0\",\"board\":\"OV0001\",\"port\":0,"
                     "\"sequence\":[12],\"milliseconds\":[0-9.e-]+\\}\n){2}"
                     "\\{\"record\":\"summary\",\"device\":\"OV0001:0\",\"board\":\"OV0001\",\"port\":0,"
                     "\"sent\":2,\"received\":2,\"loss_percent\":0.0,\"gaps\":0,\"min_ms\":[0-9.e-]+,"
                     "\"median_ms\":[0-9.e-]+,\"p99_ms\":[0-9.e-]+,\"max_ms\":[0-9.e-]+\\}\n"));
}

} // namespace
} // namespace OrvaneTest
