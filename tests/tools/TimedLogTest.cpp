// Logs with times: what --log and note write, and what log and replay make of it.
#include "tests/support/tools/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>

namespace OrvaneTest {
namespace {

using OrvaneSim::Space;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* kTime = "2026-11-22T02:08:33.000001Z";

// The lines of a log, each without its time.
std::string logOf(const std::vector<std::pair<std::string, std::string>>& lines) {
    std::string text = "adapter,phy,op,mmd,address,value,time,port,outcome,arguments,result\n";
    for (const auto& [before, behind] : lines)
        text += before + "," + kTime + "," + behind + "\n";
    return text;
}

const std::string kTimedLog =
    logOf({{"0,3,MW,1E,C010,CAFE", "OV0001:0,done,,"},
           {"0,3,MR,1E,C010,CAFE", "OV0001:0,done,,"},
           {"0,3,i2c.readRegister,,,", "OV0001:0,done,bus=0;device=0x50;reg=0x00;format=1;"
                                       "length=2,bytes=4F56"},
           {",,note,,,", ",,link\\x2C up \\x1B[31m,"},
           {"0,3,2R,,02,0A5C", "OV0001:0,done,,"},
           {"0,3,MR,,80004000,", "OV0001:0,timed out,,"},
           {"0,3,event.reopened,,,", "OV0001:0,,text=10.83.0.1,"}});

struct OrvaneTimedLog : testing::Test, OneBoardLab {
    Folder folder;
};

TEST_F(OrvaneTimedLog, IsSummedUpByPortWithItsServicesEventsAndTimes) {
    EXPECT_EQ(orvane({"log", folder.write("log", kTimedLog)}),
              prints("4 accesses: 3 reads, 1 writes, 3 registers\n"
                     "1 calls of services: 1 i2c.readRegister\n"
                     "1 events\n"
                     "from 2026-11-22T02:08:33.000001Z to 2026-11-22T02:08:33.000001Z\n"
                     "note: link, up \\x1b[31m\n"
                     "DEVICE    PHY  ADDRESS     READS  WRITES  CHANGES  FIRST READ  LAST READ\n"
                     "OV0001:0    3  30.0xC010       1       1        0  0xCAFE      0xCAFE\n"
                     "OV0001:0    3  0x02            1       0        0  0x0A5C      0x0A5C\n"
                     "OV0001:0    3  0x80004000      1       0        0  -           -\n"));
}

TEST_F(OrvaneTimedLog, IsOneTimeLineInWhichNotesKeepTheirPlace) {
    const Outcome outcome = orvane({"log", folder.write("log", kTimedLog), "--timeline"});
    EXPECT_EQ(outcome.status, 0) << outcome;
    const std::string lines = std::regex_replace(outcome.output, std::regex(" +\n"), "\n");
    EXPECT_EQ(
        std::regex_replace(lines, std::regex("2026\\S* "), "T "),
        "TIME                         DEVICE    PHY  WHAT              WHERE                                 "
        "        RESULT      OUTCOME\n"
        "T  OV0001:0    3  write             30.0xC010                                     0xCAFE      done\n"
        "T  OV0001:0    3  read              30.0xC010                                     0xCAFE      done\n"
        "T  OV0001:0    3  i2c.readRegister  bus=0;device=0x50;reg=0x00;format=1;length=2  bytes=4F56  done\n"
        "T                 note              link, up \\x1b[31m\n"
        "T  OV0001:0    3  read              0x02                                          0x0A5C      done\n"
        "T  OV0001:0    3  read              0x80004000                                    -           timed "
        "out\n"
        "T  OV0001:0    3  event.reopened    text=10.83.0.1\n");
}

TEST_F(OrvaneTimedLog, IsReplayedWithItsServices) {
    const std::string log = folder.write("log", kTimedLog);
    EXPECT_EQ(run({"replay", log, "--dry-run"}),
              prints("write PHY 3 30.0xC010 0xCAFE\n"
                     "read  PHY 3 30.0xC010 0xCAFE\n"
                     "call  PHY 3 i2c.readRegister bus=0;device=0x50;reg=0x00;format=1;length=2\n"
                     "read  PHY 3 0x02 0x0A5C\n"));
    board.setRegister(Space::C22, 0, 3, 2, 0x0A5C);
    EXPECT_EQ(
        run({"replay", log, "--to", "OV0001:0"}),
        prints("4 of 4 accesses: 1 writes, 2 reads, 1 calls of services, 0 differ; 1 cannot be repeated\n"));
    EXPECT_EQ(board.registerValue(Space::C45, 0, 3, 30U << 16U | 0xC010), 0xCAFEU);
}

TEST_F(OrvaneTimedLog, ReplaysGpioAndThermalStepsAndComparesWhatLinesTell) {
    const std::string log = folder.write(
        "log", logOf({{"0,0,thermal.connect,,,", "OV0001:0,done,,"},
                      {"0,0,thermal.setTemperature,,,", "OV0001:0,done,channel=0;celsius=85;flag=1,"},
                      {"0,0,thermal.settledTemperature,,,", "OV0001:0,done,channel=0,celsius=84.92"},
                      {"0,0,gpio.enableOutput,,,", "OV0001:0,done,lines=00;states=01,"},
                      {"0,0,gpio.write,,,", "OV0001:0,done,lines=00;states=01,"},
                      {"0,0,gpio.read,,,", "OV0001:0,done,lines=0010,states=0101"}}));
    EXPECT_EQ(run({"replay", log, "--to", "OV0001:0"}),
              fails(1, "",
                    "access 6: gpio.read PHY 0 lines=0010: states=0101 in the log, states=0100 now\n"
                    "6 of 6 accesses: 0 writes, 0 reads, 6 calls of services, 1 differ\n"));
    EXPECT_EQ(board.requestsOf("thrm_settemperature").size(), 1U);
    EXPECT_EQ(board.requestsOf("thrm_getsettledtemperature").size(), 1U);
}

TEST_F(OrvaneTimedLog, OfSeveralPortsNeedsToKnowWhich) {
    const std::string log = folder.write("log", logOf({{"0,3,MR,01,0002,0A5C", "OV0001:0,done,,"},
                                                       {"0,3,MR,01,0002,0A5C", "OV0002:0,done,,"}}));
    EXPECT_EQ(run({"replay", log, "--to", "OV0001:0"}),
              fails(2, "orvane: " + log +
                           ": the log has accesses of OV0001:0, OV0002:0: choose one with --device\n"));
    EXPECT_EQ(run({"replay", log, "--to", "OV0001:0", "--device", "OV0002:0"}),
              prints("1 of 1 accesses: 0 writes, 1 reads, 0 differ\n"));
}

TEST_F(OrvaneTimedLog, IsWrittenByCommandsAndNotesIntoTheSameFile) {
    const std::string log = folder.path("session.log");
    EXPECT_EQ(run({"i2c", "get", "OV0001:0", "0", "0x50", "0", "2", "--log", log}).status, 0);
    EXPECT_EQ(orvane({"note", "now", "it", "counts"}, {{"ORVANE_LOG", log}}), prints(""));
    EXPECT_EQ(run({"gpio", "get", "OV0001:0", "3", "--log", log}).status, 0);
    EXPECT_EQ(run({"i2c", "get", "OV0001:0", "0", "0x33", "0", "--log", log}).status, 1);
    const Outcome outcome = orvane({"log", log, "--timeline", "--csv"});
    const std::regex line(
        "(call|note),(\\S*?),[^,]*,[^,]*,[^,]*,[^,]*,[^,]*,[^,]*,[^,]*,[^,]*,[^,]*,[^,]*,[^,]*,[^,]*,"
        "([^,]*),([^,]*),([^,]*),([^,]*),([^,]*),,,");
    std::string calls;
    for (std::sregex_iterator each(outcome.output.begin(), outcome.output.end(), line), end; each != end;
         ++each)
        calls += each->format("$1 $2 $3 $4 $5 $6 $7\n");
    EXPECT_EQ(
        calls,
        "call OV0001:0 i2c.readRegister bus=0;device=0x50;reg=0x00;format=1;length=2 bytes=4F56 done \n"
        "note      now it counts\n"
        "call OV0001:0 gpio.read lines=03 states=00 done \n"
        "call OV0001:0 i2c.readRegister bus=0;device=0x33;reg=0x00;format=1;length=1  board error -121 \n")
        << outcome;
}

TEST_F(OrvaneTimedLog, ThatCannotBeWrittenStopsTheCommand) {
    const Outcome outcome = run({"gpio", "get", "OV0001:0", "3", "--log", folder.path("none/log")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("none/log"));
    EXPECT_TRUE(board.requestsOf("gpio_read").empty());
}

TEST(OrvaneNote, NeedsALog) {
    EXPECT_EQ(orvane({"note", "x"}), fails(2, "orvane: note: say which log: --log FILE, or ORVANE_LOG\n"));
}

} // namespace
} // namespace OrvaneTest
