// orvane log.
#include "tests/support/tools/Program.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <gmock/gmock.h>
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

const std::string kHistories =
    "record,device,board,port,phy,adapter,space,mmd,register,at,name,reads,writes,changes,first,"
    "last,error.kind,error.code,error.text\n";
const std::string kAccesses =
    "record,device,board,port,phy,adapter,space,mmd,register,at,place,time,access,value,changed,"
    "fields,error.kind,error.code,error.text\n";

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
    EXPECT_EQ(orvane({"log", log, "--changed", "--csv"}),
              prints(kHistories + "history,,,,3,0,c45,30,49168,30.0xC010,,2,1,1,51966,51967,,,\n"));
}

TEST_F(OrvaneLog, IsFilteredByAdapterAndPhy) {
    EXPECT_EQ(orvane({"log", log, "--adapter", "12", "--csv"}),
              prints(kHistories + "history,,,,3,12,ext32,,4096,0x00001000,,1,0,0,305419896,305419896,,,\n"
                                  "history,,,,3,12,ext32,,8192,0x00002000,,0,1,0,,,,,\n"
                                  "history,,,,3,12,ext32,,2147500032,0x80004000,,0,1,0,,,,,\n"));
    EXPECT_EQ(orvane({"log", log, "--phy", "4", "--csv"}),
              prints(kHistories + "history,,,,4,0,c45,1,2,1.0x0002,PMA.ID1,1,0,0,2652,2652,,,\n"));
}

TEST_F(OrvaneLog, HasTheHistoryOfARegister) {
    EXPECT_EQ(orvane({"log", log, "--register", "30.0xC010"}),
              prints("PLACE  ADAPTER  PHY  ACCESS  VALUE   CHANGED\n"
                     "    1        0    3  write   0xCAFE\n"
                     "    2        0    3  read    0xCAFE\n"
                     "    3        0    3  read    0xCAFF  0x0001\n"));
    EXPECT_EQ(orvane({"log", log, "--register", "0x2000", "--csv"}),
              prints(kAccesses + "access,,,,3,12,ext32,,8192,0x00002000,6,,write,81985529216486895,,,,,\n"));
}

TEST_F(OrvaneLog, HasTheHistoryOfAFieldByItsName) {
    const std::string map =
        folder.write("wren.json", R"({"format": "orvane-map-1", "name": "wren", "registers": {
        "CONTROL": {"at": "30.0xC010", "fields": {"LED": 0, "MODE": {"bits": "7:6", "values": {"3": "both"}}}}}})");
    EXPECT_EQ(orvane({"log", log, "--register", "CONTROL", "--fields", "--map", map}),
              prints("PLACE  ADAPTER  PHY  ACCESS  VALUE   CHANGED  FIELDS\n"
                     "    1        0    3  write   0xCAFE           MODE both, LED 0\n"
                     "    2        0    3  read    0xCAFE\n"
                     "    3        0    3  read    0xCAFF  0x0001   LED 1\n"));
}

TEST_F(OrvaneLog, NamesItsRegisters_WhereFieldsAreShown) {
    EXPECT_THAT(
        orvane({"log", log, "--phy", "4", "--fields"}).output,
        testing::EndsWith("ADAPTER  PHY  ADDRESS   REGISTER  READS  WRITES  CHANGES  FIRST READ  LAST READ\n"
                          "      0    4  1.0x0002  PMA.ID1       1       0        0  0x0A5C      0x0A5C\n"));
}

TEST_F(OrvaneLog, GivesQueuedReadsTheValuesOfTheirBlock) {
    EXPECT_EQ(orvane({"log", log, "--register", "1.3", "--csv"}),
              prints(kAccesses + "access,,,,3,0,c45,1,3,1.0x0003,10,,queued read,7811,,,,,\n"));
    EXPECT_EQ(orvane({"log", log, "--register", "0xA", "--csv"}),
              prints(kAccesses + "access,,,,3,0,ext32,,10,0x0000000A,11,,queued read,3567,,,,,\n"));
}

TEST_F(OrvaneLog, WithoutTheRegisterOrTheFileFails) {
    EXPECT_EQ(orvane({"log", log, "--register", "9.9"}),
              fails(1, "orvane: " + log + ": there is no access to 9.0x0009 in it\n"));
    EXPECT_EQ(orvane({"log", folder.path("none")}),
              fails(1, "orvane: " + folder.path("none") + ": cannot read: No such file or directory\n"));
}

TEST(OrvaneLogOfAnything, ShowsTheControlCharactersOfNotes) {
    const Folder folder;
    const std::string log = folder.write(
        "odd", "0,3,MR,01,0002,0003\na\x1b]0;t\x07 gr\xc3\xbc\xc3\x9f\xc2\x9b e\xe2\x80\xae \xff\r\n");
    EXPECT_THAT(orvane({"log", log}).output,
                testing::StartsWith(
                    "1 accesses: 1 reads, 0 writes, 1 registers\n"
                    "note: a\\x1b]0;t\\x07 gr\xc3\xbc\xc3\x9f\\xc2\\x9b e\\xe2\\x80\\xae \\xff\\x0d\n"));
}

TEST(OrvaneLogOfAnything, IsRefusedWhereNoLineIsARecord) {
    EXPECT_EQ(orvane({"log", "/etc/passwd"}),
              fails(1, "orvane: /etc/passwd: it is no transaction log: there is no record in it\n"));
}

TEST(OrvaneLogOfAnything, HasNotesInTheirPlaces) {
    const Folder folder;
    const std::string log = folder.write("log", "0,3,MR,01,0002,0003\nnow\n0,3,MR,01,0002,0004\n");
    EXPECT_EQ(orvane({"log", log, "--timeline"}), prints("PLACE  ADAPTER  PHY  WHAT  WHERE     RESULT\n"
                                                         "    1        0    3  read  1.0x0002  0x0003\n"
                                                         "    1                note  now\n"
                                                         "    2        0    3  read  1.0x0002  0x0004\n"));
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

TEST(OrvaneLogOfARack, HasItsRegisterAccessesByPort_AndItsCallsOfServices) {
    const Folder folder;
    const std::string log =
        folder.write("rack", "adapter,phy,op,mmd,address,value,time,port,outcome,arguments,result\n"
                             "0,3,MW,1E,C010,CAFE,2026-11-22T02:08:33.123456Z,OV0001:0,done,,\n"
                             "0,3,MR,1E,C010,,2026-11-22T02:08:33.123456Z,OV0001:0,board error -5,,\n"
                             "0,3,MR,1E,C010,CAFE,2026-11-22T02:08:33.123456Z,OV0001:0,done,,\n"
                             "0,3,2W,,04,01E1,2026-11-22T02:08:33.123456Z,OV0001:0,done,,\n"
                             "0,3,MR,,80004000,DEADBEEF,2026-11-22T02:08:33.123456Z,OV0001:0,done,,\n"
                             "0,3,MR,,80004000,,2026-11-22T02:08:33.123456Z,OV0001:0,timed out,,\n"
                             "0,3,i2c.read,,,,2026-11-22T02:08:33.123456Z,OV0001:0,done,bus=0,bytes=4F\n");
    EXPECT_EQ(orvane({"log", log}),
              prints("6 accesses: 4 reads, 2 writes, 3 registers\n"
                     "1 calls of services: 1 i2c.read\n"
                     "from 2026-11-22T02:08:33.123456Z to 2026-11-22T02:08:33.123456Z\n"
                     "DEVICE    PHY  ADDRESS     READS  WRITES  CHANGES  FIRST READ  LAST READ\n"
                     "OV0001:0    3  30.0xC010       2       1        0  0xCAFE      0xCAFE\n"
                     "OV0001:0    3  0x04            0       1        0  -           -\n"
                     "OV0001:0    3  0x80004000      2       0        0  0xDEADBEEF  0xDEADBEEF\n"));
}

TEST(OrvaneLogOfAnything, HasLongLinesAsSeveralNotes) {
    const Folder folder;
    const std::string log = folder.write("odd", std::string(300'000, 'x') + "\n0,3,MR,01,0002,0003\n");
    const Outcome outcome = orvane({"log", log});
    const std::string notes =
        "note: " + std::string(262'144, 'x') + "\nnote: " + std::string(37'856, 'x') + "\n";
    EXPECT_THAT(outcome.output, testing::StartsWith("1 accesses: 1 reads, 0 writes, 1 registers\n" + notes));
}

// More queued reads, and more accesses, than are kept in memory or fit a page; every value is another one
// than the one before.
struct OrvaneLongLog : testing::Test {
    static constexpr unsigned kReads = 1'100'000;

    static std::string blockOfReads() {
        std::string text = "0,4,MR,01,0003,0004\n";
        for (unsigned i = 0; i < kReads; ++i)
            text += "0,3,AR,01,0002,\n";
        for (unsigned i = 0; i < kReads; ++i)
            text += fmt::format("0,3,AF,,,{:04X}\n", i & 0xFFFFU);
        return text;
    }

    // What the program prints in so much address space, on both streams.
    static std::string inMegabytes(unsigned megabytes, const std::string& words) {
        return shellOutput(fmt::format("ulimit -v {}; $ORVANE_TOOL {} 2>&1", megabytes * 1024, words));
    }
    // A sanitizer has its own address space beside the program's.
    static bool canBeLimited() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        return false;
#elif defined(__has_feature)
        return !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer);
#else
        return true;
#endif
    }
    void SetUp() override {
        if (!canBeLimited())
            GTEST_SKIP() << "a sanitizer takes all the address space";
    }

    Folder folder;
    const std::string log = folder.write("long.csv", blockOfReads());
};

TEST_F(OrvaneLongLog, IsSummedUpInMemoryThatDoesNotGrowWithIt) {
    const std::string table = kHistories +
                              "history,,,,3,0,c45,1,2,1.0x0002,PMA.ID1,1100000,0,1099999,0,51423,,,\n"
                              "history,,,,4,0,c45,1,3,1.0x0003,PMA.ID2,1,0,0,4,4,,,\n";
    EXPECT_EQ(inMegabytes(128, "log --csv " + log), table);
    EXPECT_EQ(shellOutput("cat " + log + " | $ORVANE_TOOL log --csv /dev/stdin"), table);
}

TEST_F(OrvaneLongLog, HasTheWholeHistoryOfARegister) {
    const std::string history = inMegabytes(128, "log --csv --register 1.2 " + log);
    EXPECT_EQ(std::count(history.begin(), history.end(), '\n'), kReads + 1);
    EXPECT_THAT(history, testing::HasSubstr(",1100001,,queued read,51423,1,"));
}

TEST_F(OrvaneLongLog, IsAReportThatSaysWhatIsLeftOut) {
    const std::string page = folder.path("report.html");
    EXPECT_EQ(inMegabytes(128, "log " + log + " --html " + page),
              "orvane: " + page +
                  ": the log is too long for one page: of each register it has the first 500000 and the last "
                  "499999 accesses; all are counted\n");
    const std::string content = folder.content("report.html");
    EXPECT_THAT(content, testing::HasSubstr(R"("accesses":[[0,0,"0x0004"],[0,1,"0x0000"],[0,1,"0x0001"],)"));
    EXPECT_THAT(content,
                testing::HasSubstr(R"([0,1,"0xC8DF"]],"registers":[{"adapter":0,"phy":3,)"
                                   R"("address":"1.0x0002","reads":1100000,"writes":0,)"
                                   R"("changes":1099999,"first":"0x0000","last":"0xC8DF","at":[1,2,)"));
    EXPECT_THAT(content, testing::HasSubstr(R"(,500000,600002,600003,)"));
    EXPECT_THAT(content,
                testing::HasSubstr(R"("of":{"accesses":1100001,"writes":0,"queued":1100000,"each":999999})"));
}

} // namespace
} // namespace OrvaneTest
