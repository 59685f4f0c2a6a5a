// One command for many boards: lists, ranges, patterns and files of devices, and failures of some of them.
#include "tests/support/tools/Program.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

// The head of CSV with values of registers, and a line of it.
constexpr const char* kCsvHead =
    "record,device,board,port,phy,space,at,name,value,error.kind,error.code,error.text\n";

std::string csvLine(const std::string& board, unsigned phy, const std::string& at, const std::string& value,
                    const std::string& name = "") {
    return "register," + board + ":0," + board + ",0," + std::to_string(phy) + ",c45," + at + "," + name +
           "," + value + ",,,\n";
}

using OrvaneSim::Fault;
using OrvaneSim::Space;
using testing::HasSubstr;

// OV0001 to OV0003 with ports 0 and 10, which the program finds by multicast.
class OrvaneOnManyBoards : public testing::Test {
protected:
    OrvaneOnManyBoards() {
        for (unsigned i = 1; i <= 3; ++i) {
            const std::string serial = "OV000" + std::to_string(i);
            OrvaneSim::Board& board = lab.add(
                {"10.83.0." + std::to_string(i), serial, {serial + ":0", serial + ":10"}, "host", i, false});
            board.setRegister(Space::C45, 0, 3, 0x1EC010, 0x1110 + i);
            boards.push_back(&board);
        }
    }
    unsigned held(unsigned board, unsigned phy = 3) const {
        return boards[board]->registerValue(Space::C45, 0, phy, 0x1EC010);
    }

    OrvaneSim::Lab lab;
    std::vector<OrvaneSim::Board*> boards;
    Folder folder;
};

TEST_F(OrvaneOnManyBoards, ReadsOfARangeOfThem) {
    EXPECT_EQ(orvane({"read", "OV0001-OV0003:0", "3", "30.0xC010"}),
              prints("DEVICE    PHY  ADDRESS    VALUE   BITS                 DECIMAL\n"
                     "OV0001:0    3  30.0xC010  0x1111  0001 0001 0001 0001     4369\n"
                     "OV0002:0    3  30.0xC010  0x1112  0001 0001 0001 0010     4370\n"
                     "OV0003:0    3  30.0xC010  0x1113  0001 0001 0001 0011     4371\n"));
}

TEST_F(OrvaneOnManyBoards, ReadsOfAPattern_WithOneSearchForAll) {
    EXPECT_EQ(
        orvane({"read", "ov*:0", "3-4,3", "30.0xC010,1.2", "--csv"}),
        prints(
            std::string(kCsvHead) + csvLine("OV0001", 3, "30.0xC010", "4369") +
            csvLine("OV0001", 3, "1.0x0002", "2652", "PMA.ID1") + csvLine("OV0001", 4, "30.0xC010", "0") +
            csvLine("OV0001", 4, "1.0x0002", "2652", "PMA.ID1") + csvLine("OV0002", 3, "30.0xC010", "4370") +
            csvLine("OV0002", 3, "1.0x0002", "2652", "PMA.ID1") + csvLine("OV0002", 4, "30.0xC010", "0") +
            csvLine("OV0002", 4, "1.0x0002", "2652", "PMA.ID1") + csvLine("OV0003", 3, "30.0xC010", "4371") +
            csvLine("OV0003", 3, "1.0x0002", "2652", "PMA.ID1") + csvLine("OV0003", 4, "30.0xC010", "0") +
            csvLine("OV0003", 4, "1.0x0002", "2652", "PMA.ID1")));
    EXPECT_LE(boards[0]->discoveryCount(), 8U); // a second, a question each 150 ms
}

TEST_F(OrvaneOnManyBoards, ReadsOfThoseThatAFileNames) {
    const std::string file = folder.write("rack.txt", "# the bench\nOV0003:0  # at the window\nov0001:0\n");
    EXPECT_EQ(orvane({"read", "@" + file, "3", "30.0xC010", "--csv"}),
              prints(std::string(kCsvHead) + csvLine("OV0003", 3, "30.0xC010", "4371") +
                     csvLine("OV0001", 3, "30.0xC010", "4369")));
}

TEST_F(OrvaneOnManyBoards, KeepsWhatWasGood_AndTellsWhatFailed) {
    boards[1]->inject({"mdio", "", Fault::Kind::ResultCode, 1, -5});
    EXPECT_EQ(
        orvane({"read", "OV0001-OV0003:0,OV0009:0,OV0001:5", "3", "30.0xC010", "--time", "1"}),
        fails(1,
              "orvane: read: 3 of 5 failed\n"
              "DEVICE    PHY  FAILURE\n"
              "OV0002:0    3  read PHY 3 30.0xC010: the board answers: Input/output error (-5)\n"
              "OV0009:0       open: device not found; there are OV0001:0, OV0001:10, OV0002:0, OV0002:10, "
              "OV0003:0, OV0003:10\n"
              "OV0001:5       open: device not found; there are OV0001:0, OV0001:10\n",
              "DEVICE    PHY  ADDRESS    VALUE   BITS                 DECIMAL\n"
              "OV0001:0    3  30.0xC010  0x1111  0001 0001 0001 0001     4369\n"
              "OV0003:0    3  30.0xC010  0x1113  0001 0001 0001 0011     4371\n"));
}

TEST_F(OrvaneOnManyBoards, TellsProgramsOfFailuresAsRecords) {
    boards[1]->inject({"mdio", "", Fault::Kind::ResultCode, 1, -5});
    EXPECT_EQ(orvane({"read", "OV0001-OV0002:0", "3", "30.0xC010", "--csv"}).output,
              std::string(kCsvHead) + csvLine("OV0001", 3, "30.0xC010", "4369") +
                  "failure,OV0002:0,OV0002,0,3,,,,,board_error,-5,OV0002:0: read PHY 3 30.0xC010: the board "
                  "answers: Input/output error (-5)\n");
}

TEST_F(OrvaneOnManyBoards, WritesToAllAndReadsBack) {
    EXPECT_EQ(orvane({"write", "OV*:0", "3", "30.0xC010", "0xCAFE", "--readback"}),
              prints("DEVICE    PHY  ADDRESS    WRITTEN  READ BACK  BITS\n"
                     "OV0001:0    3  30.0xC010  0xCAFE   0xCAFE     1100 1010 1111 1110\n"
                     "OV0002:0    3  30.0xC010  0xCAFE   0xCAFE     1100 1010 1111 1110\n"
                     "OV0003:0    3  30.0xC010  0xCAFE   0xCAFE     1100 1010 1111 1110\n"));
    EXPECT_EQ(held(0) + held(1) + held(2), 3 * 0xCAFEU);
}

TEST_F(OrvaneOnManyBoards, MeansThePhysThatAnswerByAStar) {
    for (unsigned phy = 0; phy < 32; ++phy)
        for (const std::uint32_t number : {0x10002U, 0x10003U})
            if (phy != 3 && phy != 17)
                boards[1]->setRegister(OrvaneSim::Space::C45, 0, phy, number, 0xFFFF);
    for (unsigned phy = 0; phy < 32; ++phy)
        for (const std::uint32_t number : {2U, 3U})
            if (phy != 3 && phy != 17)
                boards[1]->setRegister(OrvaneSim::Space::C22, 0, phy, number, 0xFFFF);
    EXPECT_EQ(orvane({"read", "OV0002:0", "*", "1.2"}),
              prints("DEVICE    PHY  ADDRESS   VALUE   BITS                 DECIMAL\n"
                     "OV0002:0    3  1.0x0002  0x0A5C  0000 1010 0101 1100     2652\n"
                     "OV0002:0   17  1.0x0002  0x0A5C  0000 1010 0101 1100     2652\n"));
}

TEST_F(OrvaneOnManyBoards, ModifiesEach) {
    EXPECT_EQ(orvane({"modify", "OV0001:0,OV0003:0", "3", "30.0xC010", "0x0000", "0x000F"}),
              prints("DEVICE    PHY  ADDRESS    BEFORE  WRITTEN  READ BACK  BITS\n"
                     "OV0001:0    3  30.0xC010  0x1111  0x1110   0x1110     0001 0001 0001 0000\n"
                     "OV0003:0    3  30.0xC010  0x1113  0x1110   0x1110     0001 0001 0001 0000\n"));
    EXPECT_EQ(held(1), 0x1112U);
}

TEST_F(OrvaneOnManyBoards, DumpsEachIntoAFile_AndGoesOnWhereItStopped) {
    boards[2]->inject({"mdio", "", Fault::Kind::ResultCode, 2, -5}); // its identifier and its registers
    const Arguments dump{"dump", "OV*:0", "3", "30.0xC010+2", "-o", folder.path("dumps")};
    EXPECT_EQ(orvane(dump),
              fails(1,
                    "orvane: dump: 1 of 3 failed\nDEVICE    PHY  FAILURE\n"
                    "OV0003:0    3  read PHY 3 30.0xC010-0xC011: the board answers: Input/output "
                    "error (-5)\n",
                    folder.path("dumps") + ": 2 dumps\n"));
    EXPECT_THAT(folder.content("dumps/OV0002-0-phy3.dump"),
                testing::EndsWith("# ranges 30.0xC010+2\n30.0xC010 0x1112\n30.0xC011 0x0000\n"));
    EXPECT_FALSE(folder.has("dumps/OV0003-0-phy3.dump"));
    boards[0]->forgetRequests();
    EXPECT_EQ(orvane(dump), prints(folder.path("dumps") + ": 3 dumps, 2 of them from before\n"));
    EXPECT_LE(boards[0]->requests("mdio").size(), 1U); // its identifier
    EXPECT_THAT(folder.content("dumps/OV0003-0-phy3.dump"), HasSubstr("30.0xC010 0x1113\n"));
}

TEST_F(OrvaneOnManyBoards, WantsAFolderForSeveralDumps) {
    EXPECT_EQ(orvane({"dump", "OV*:0", "3", "1.2", "-o", "-"}),
              fails(2, "orvane: dumps of several PHYs go into a folder: - is none\n"));
}

TEST_F(OrvaneOnManyBoards, ShowsHowFarItIs) {
    const Outcome outcome = orvaneOnTerminal({"read", "OV*:0", "0-31", "1.0+20", "--grid"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("OV0002:0 PHY 31\r\n"));
}

TEST(OrvaneProcesses, ManyAtOnceAllReadByName) {
    OrvaneSim::Lab lab;
    lab.add({"10.83.0.1", "OV0001", {"OV0001:0"}, "host", 1, false});
    EXPECT_EQ(
        shellOutput("seq 300 | xargs -P100 -I{} $ORVANE_TOOL read OV0001:0 3 1.2 2>&1 | sort | uniq -c"),
        "    300 0x0A5C\n");
}

// What a port cannot have is refused before anything is sent.
struct OrvaneOnAPort : testing::Test, OneBoardLab {};

TEST_F(OrvaneOnAPort, RefusesAPhyThatAnMdioPortCannotHave) {
    EXPECT_EQ(run({"write", "OV0001:0", "35", "30.0xC010", "1"}),
              fails(2, "orvane: OV0001:0 has no PHY 35: those of an MDIO port are 0 to 31\n"));
    EXPECT_EQ(board.requests().size(), 0U);
    EXPECT_EQ(run({"read", "OV0001:?", "35", "30.0xC010", "--csv"}).error,
              "orvane: read: 2 of 2 failed\nDEVICE    PHY  FAILURE\n"
              "OV0001:0   35  phy 35: invalid argument. PHYs of an MDIO port are 0 to 31.\n"
              "OV0001:1   35  phy 35: invalid argument. PHYs of an MDIO port are 0 to 31.\n");
}

TEST_F(OrvaneOnAPort, NamesTheRegistersThatAShortAnswerLeavesOut) {
    board.inject({"mdio", "", Fault::Kind::ReplyCount, 1, 2});
    EXPECT_EQ(
        run({"read", "OV0001:0", "3", "1.0+4", "3.7"}),
        fails(1, "orvane: OV0001:0: read PHY 3 1.0x0000-0x0003 3.0x0007: the board's answer does not fit the "
                 "question\n"));
}

TEST_F(OrvaneOnAPort, HasNoValueInItsDumpThatWasNotRead) {
    const Folder folder;
    board.inject({"mdio", "", Fault::Kind::ReplyCount, -1, 0});
    EXPECT_EQ(run({"dump", "OV0001:0", "3", "1.0+4", "-o", folder.path("a.dump")}).status, 1);
    EXPECT_FALSE(folder.has("a.dump"));
    EXPECT_THAT(folder.content("a.dump.part"), testing::Not(HasSubstr("1.0x000")));
}

} // namespace
} // namespace OrvaneTest
