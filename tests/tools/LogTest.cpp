// orvane log.
#include "tests/support/tools/Program.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <orvane/orvane.h>

namespace OrvaneTest {
namespace {

// A log that the library itself writes.
std::string logged(const Folder& folder, void (*work)()) {
    const std::string path = folder.path("session.csv");
    HW_EnableLogging(std::fopen(path.c_str(), "w"));
    work();
    HW_DisableLogging(1);
    return path;
}

void someOfEverything() {
    HW_Logging_MDIOWrite(0, 3, 30, 0xC010, 0xCAFE);
    HW_Logging_MDIORead(0, 3, 30, 0xC010, 0xCAFE);
    HW_Logging_MDIORead(0, 3, 30, 0xC010, 0xCAFF);
    HW_Logging_Write32(12, 3, 0x80004000, 0xDEADBEEF);
    HW_Logging_Read32(12, 3, 0x1000, 0x12345678);
    HW_Logging_Write64(12, 3, 0x2000, 0x0123456789ABCDEFULL);
    HW_Logging_MDIORead(0, 4, 1, 2, 0x0A5C);
    HW_Logging_BlockMDIORead(0, 3, 1, 2);
    HW_Logging_BlockMDIOWrite(0, 3, 1, 0, 0x8000);
    HW_Logging_BlockMDIORead(0, 3, 1, 3);
    HW_Logging_BlockMDIOFetch(0, 3, 0, 0, 0, 0x0A5C);
    HW_Logging_BlockMDIOFetch(0, 3, 0, 0, 0, 0x1E83);
    HW_Logging_BlockRead32(0, 3, 0xA);
    HW_Logging_BlockFetch32(0, 3, 0, 0, 0xDEF);
    HW_Logging_MacConfigSpaceWrite(9, 1, 0xAB, 0xFFFFFFFF);
    HW_Logging_BlockMacConfigSpaceRead(9, 0xAB);
    HW_Logging_MacConfigSpaceRead(9, 1, 0xAB);
    HW_Logging_BlockMDIOFetch(0, 5, 0, 0, 0, 7);
    HW_LogMsg("the link came up");
}

struct OrvaneLog : testing::Test {
    Folder folder;
    const std::string log = logged(folder, someOfEverything);
};

TEST_F(OrvaneLog, IsSummedUpByAdapterPhyAndRegister) {
    EXPECT_EQ(orvane({"log", log}),
              prints("11 accesses: 7 reads, 4 writes, 9 registers\n"
                     "3 accesses of the configuration space\n"
                     "1 values of queued reads that are not in the log\n"
                     "note: the link came up\n"
                     "ADAPTER  PHY  ADDRESS     READS  WRITES  CHANGES  FIRST READ  LAST READ\n"
                     "      0    3  1.0x0000        0       1        0  -           -\n"
                     "      0    3  1.0x0002        1       0        0  0x0A5C      0x0A5C\n"
                     "      0    3  1.0x0003        1       0        0  0x1E83      0x1E83\n"
                     "      0    3  30.0xC010       2       1        1  0xCAFE      0xCAFF\n"
                     "      0    3  0x0000000A      1       0        0  0x00000DEF  0x00000DEF\n"
                     "      0    4  1.0x0002        1       0        0  0x0A5C      0x0A5C\n"
                     "     12    3  0x00001000      1       0        0  0x12345678  0x12345678\n"
                     "     12    3  0x00002000      0       1        0  -           -\n"
                     "     12    3  0x80004000      0       1        0  -           -\n"));
}

TEST_F(OrvaneLog, NamesTheRegistersWhoseReadsChanged) {
    EXPECT_EQ(
        orvane({"log", log, "--changed", "--csv"}),
        prints("adapter,phy,address,reads,writes,changes,first,last\n0,3,30.0xC010,2,1,1,0xCAFE,0xCAFF\n"));
}

TEST_F(OrvaneLog, IsFilteredByAdapterAndPhy) {
    EXPECT_EQ(orvane({"log", log, "--adapter", "12", "--csv"}),
              prints("adapter,phy,address,reads,writes,changes,first,last\n"
                     "12,3,0x00001000,1,0,0,0x12345678,0x12345678\n"
                     "12,3,0x00002000,0,1,0,-,-\n"
                     "12,3,0x80004000,0,1,0,-,-\n"));
    EXPECT_EQ(
        orvane({"log", log, "--phy", "4", "--csv"}),
        prints("adapter,phy,address,reads,writes,changes,first,last\n0,4,1.0x0002,1,0,0,0x0A5C,0x0A5C\n"));
}

TEST_F(OrvaneLog, HasTheHistoryOfARegister) {
    EXPECT_EQ(orvane({"log", log, "--register", "30.0xC010"}),
              prints("PLACE  ADAPTER  PHY  ACCESS  VALUE   CHANGED\n"
                     "    1        0    3  write   0xCAFE\n"
                     "    2        0    3  read    0xCAFE\n"
                     "    3        0    3  read    0xCAFF  0x0001\n"));
    EXPECT_EQ(orvane({"log", log, "--register", "0x2000", "--csv"}),
              prints("place,adapter,phy,access,value,changed\n6,12,3,write,0x0123456789ABCDEF,\n"));
}

TEST_F(OrvaneLog, GivesQueuedReadsTheValuesOfTheirBlock) {
    EXPECT_EQ(orvane({"log", log, "--register", "1.3", "--csv"}),
              prints("place,adapter,phy,access,value,changed\n10,0,3,queued read,0x1E83,\n"));
    EXPECT_EQ(orvane({"log", log, "--register", "0xA", "--csv"}),
              prints("place,adapter,phy,access,value,changed\n11,0,3,queued read,0x00000DEF,\n"));
}

TEST_F(OrvaneLog, WithoutTheRegisterOrTheFileFails) {
    EXPECT_EQ(orvane({"log", log, "--register", "9.9"}),
              fails(1, "orvane: " + log + ": there is no access to 9.0x0009 in it\n"));
    EXPECT_EQ(orvane({"log", folder.path("none")}),
              fails(1, "orvane: " + folder.path("none") + ": cannot read: No such file or directory\n"));
}

TEST(OrvaneLogOfAnything, ShowsTheControlCharactersOfNotes) {
    const Folder folder;
    const std::string log =
        folder.write("odd", "a\x1b]0;t\x07 gr\xc3\xbc\xc3\x9f\xc2\x9b e\xe2\x80\xae \xff\r\n");
    EXPECT_EQ(orvane({"log", log}),
              prints("0 accesses: 0 reads, 0 writes, 0 registers\n"
                     "note: a\\x1b]0;t\\x07 gr\xc3\xbc\xc3\x9f\\xc2\\x9b e\\xe2\\x80\\xae \\xff\\x0d\n"));
}

TEST(OrvaneLogOfAnything, IsNotesWhereItIsNoRecord) {
    const Folder folder;
    const std::string log =
        folder.write("odd", "1,2,3\n,,,\n0,3,MR,1,\n0,3,XX,01,0002,0003\n0,3,MR,01,0002,zz\n"
                            "0,3,AF,,,\n99999999999,3,MR,01,0002,0003\n0,3,MR,01,0002,0003");
    EXPECT_EQ(orvane({"log", log}),
              prints("1 accesses: 1 reads, 0 writes, 1 registers\n"
                     "note: 1,2,3\nnote: ,,,\nnote: 0,3,MR,1,\nnote: 0,3,XX,01,0002,0003\n"
                     "note: 0,3,MR,01,0002,zz\nnote: 0,3,AF,,,\n"
                     "note: 99999999999,3,MR,01,0002,0003\n"
                     "ADAPTER  PHY  ADDRESS   READS  WRITES  CHANGES  FIRST READ  LAST READ\n"
                     "      0    3  1.0x0002      1       0        0  0x0003      0x0003\n"));
}

} // namespace
} // namespace OrvaneTest
