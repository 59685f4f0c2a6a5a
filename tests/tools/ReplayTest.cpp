// orvane replay.
#include "tests/support/tools/Program.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Space;

struct OrvaneReplay : testing::Test, OneBoardLab {
    Folder folder;
    const std::string log = folder.write("log", "adapter,phy,op,mmd,address,value,\n"
                                                "0,3,MW,1E,C010,CAFE\n"
                                                "0,3,MR,01,0002,0A5C\n"
                                                "0,3,MR,01,0003,0000\n"
                                                "0,3,MW,80004000,DEADBEEF0,3,MR,80004000,DEADBEEF"
                                                "0,3,AR,1E,C010,\n0,3,AF,,,CAFF\n");

    unsigned written() const { return board.registerValue(Space::Ext32, 0, 3, 0x80004000); }
};

TEST_F(OrvaneReplay, StopsAtTheFirstDifference) {
    EXPECT_EQ(run({"replay", log, "--to", "OV0001:0"}),
              fails(1, "",
                    "access 3: read PHY 3 1.0x0003: 0x0000 in the log, 0x1E83 now\n"
                    "3 of 6 accesses: 1 writes, 2 reads, 1 differ\n"));
    EXPECT_EQ(board.registerValue(Space::C45, 0, 3, 30U << 16U | 0xC010), 0xCAFEU);
    EXPECT_EQ(written(), 0U);
}

TEST_F(OrvaneReplay, CountsEveryDifferenceWhenItKeepsGoing) {
    EXPECT_EQ(run({"replay", log, "--to", "OV0001:0", "--keep-going"}),
              fails(1, "",
                    "access 3: read PHY 3 1.0x0003: 0x0000 in the log, 0x1E83 now\n"
                    "access 6: read PHY 3 30.0xC010: 0xCAFF in the log, 0xCAFE now\n"
                    "6 of 6 accesses: 2 writes, 4 reads, 2 differ\n"));
    EXPECT_EQ(written(), 0xDEADBEEFU);
}

TEST_F(OrvaneReplay, OfWhatTheBoardStillAnswersSucceeds) {
    const std::string same = folder.write("same", "7,9,MR,01,0002,0A5C\n7,9,MR,2000,0123456789ABCDEF");
    EXPECT_EQ(run({"replay", same, "--to", "OV0001:1", "--phy", "4"}),
              prints("1 of 1 accesses: 0 writes, 1 reads, 0 differ\n"));
}

TEST_F(OrvaneReplay, SendsNothingInADryRun) {
    EXPECT_EQ(run({"replay", log, "--dry-run", "--phy", "4"}), prints("write PHY 4 30.0xC010 0xCAFE\n"
                                                                      "read  PHY 4 1.0x0002 0x0A5C\n"
                                                                      "read  PHY 4 1.0x0003 0x0000\n"
                                                                      "write PHY 4 0x80004000 0xDEADBEEF\n"
                                                                      "read  PHY 4 0x80004000 0xDEADBEEF\n"
                                                                      "read  PHY 4 30.0xC010 0xCAFF\n"));
    EXPECT_TRUE(board.requests().empty());
}

TEST_F(OrvaneReplay, OfAnAdapterThatTheLogHasNothingOfFails) {
    EXPECT_EQ(run({"replay", log, "--to", "OV0001:0", "--adapter", "7"}),
              fails(1, "orvane: " + log + ": there are no accesses of adapter 7 in it; there are of 0\n"));
}

TEST_F(OrvaneReplay, NeedsToKnowWhichAdapterAndWhereTo) {
    EXPECT_EQ(run({"replay", log}), fails(2, "orvane: replay: say where to: --to DEVICE, or --dry-run\n"));
    const std::string two = folder.write("two", "0,3,MR,01,0002,0A5C\n1,3,MR,01,0002,0A5C\n");
    EXPECT_EQ(
        run({"replay", two, "--to", "OV0001:0"}),
        fails(2, "orvane: " + two + ": the log has accesses of adapters 0, 1: choose one with --adapter\n"));
    EXPECT_EQ(run({"replay", two, "--to", "OV0001:0", "--adapter", "1"}),
              prints("1 of 1 accesses: 0 writes, 1 reads, 0 differ\n"));
}

} // namespace
} // namespace OrvaneTest
