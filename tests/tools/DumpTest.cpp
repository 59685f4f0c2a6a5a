// orvane dump and diff.
#include "tests/support/tools/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Fault;
using OrvaneSim::Space;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

class OrvaneDump : public testing::Test, protected OneBoardLab {
protected:
    Outcome dump(const std::string& range, const Arguments& more = {}) {
        Arguments arguments{"dump", "OV0001:0", "3", range, "-o", file};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments);
    }
    void set(unsigned reg, unsigned value) { board.setRegister(Space::C45, 0, 3, 1U << 16U | reg, value); }

    Folder folder;
    const std::string file = folder.path("a.dump");
};

TEST_F(OrvaneDump, HoldsWhatWasReadAndWhere) {
    EXPECT_EQ(dump("1.1+2"), prints(file + ": 2 registers\n"));
    EXPECT_THAT(
        folder.content("a.dump"),
        MatchesRegex("# orvane dump 2\n# version [0-9.]+\n# date [0-9-]+T[0-9:]+Z\n# device OV0001:0\n"
                     "# address 10.83.0.1\n# phy 3\n# identifier 0x0A5C1E83\n# maps ieee8023\n"
                     "# space c45\n# ranges 1.1\\+2\n1.0x0001 0x0000\n1.0x0002 0x0A5C\n"));
    EXPECT_FALSE(folder.has("a.dump.part"));
}

TEST_F(OrvaneDump, Of4096RegistersTakes60RoundTripsOrFewer) {
    set(0xFFF, 0xBEEF);
    EXPECT_EQ(dump("1.0+4096"), prints(file + ": 4096 registers\n"));
    EXPECT_THAT(folder.content("a.dump"), HasSubstr("\n1.0x0FFF 0xBEEF\n"));
    EXPECT_EQ(board.requests("mdio").size(), 17U); // the identifier, too
    EXPECT_LE(board.requests().size(), 60U);
}

TEST_F(OrvaneDump, DoesNotOverwriteUnlessItIsForced) {
    folder.write("a.dump", "precious");
    EXPECT_EQ(dump("1.1+2"),
              fails(1, "orvane: " + file + ": cannot write: it exists; --force overwrites it\n"));
    EXPECT_EQ(folder.content("a.dump"), "precious");
    EXPECT_EQ(dump("1.1+2", {"--force"}).status, 0);
    EXPECT_THAT(folder.content("a.dump"), StartsWith("# orvane dump 2\n"));
}

TEST_F(OrvaneDump, ThatWasBrokenOffGoesOnWhereItStopped) {
    board.inject({"mdio", "", Fault::Kind::ResultCode, 2, -5}); // of the identifier and a block
    EXPECT_EQ(dump("1.0+600").status, 1);
    const std::string header = folder.content("a.dump.part");
    folder.write("a.dump.part", header + "1.0x0000 0x1234\n1.0x0001 0x5678\n1.0x00");
    board.forgetRequests();
    EXPECT_EQ(dump("1.0+600"), prints(file + ": 600 registers, 2 of them from an earlier attempt\n"));
    EXPECT_THAT(folder.content("a.dump"),
                StartsWith(header + "1.0x0000 0x1234\n1.0x0001 0x5678\n1.0x0002 0x0A5C\n1.0x0003 0x1E83\n"));
    EXPECT_EQ(board.requests("mdio").size(), 4U); // 598 registers, 256 at most in each; the identifier
}

TEST_F(OrvaneDump, LeavesAPartOfAnotherDumpAlone) {
    folder.write("a.dump.part", "something else\n");
    EXPECT_EQ(dump("1.1+2"), fails(1, "orvane: " + file +
                                          ".part: a part of another dump is there; --force overwrites it\n"));
}

TEST_F(OrvaneDump, ShowsABarOnATerminal) {
    const Outcome outcome = orvaneOnTerminal({"dump", "OV0001:0", "3", "1.0+600", "-o", file}, environment());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("\r\033[Kdump [..............................] 0/600\r\033[K"));
    EXPECT_THAT(outcome.output, HasSubstr("dump [############..................] 256/600"));
}

TEST_F(OrvaneDump, ComparesWithThePhyAsItIsNow) {
    dump("1.0xC000+300");
    EXPECT_EQ(run({"diff", file, "--live"}), prints(""));
    set(0xC005, 0x8007);
    EXPECT_EQ(run({"diff", file, "--live"}),
              fails(1, "",
                    "ADDRESS   FIRST   SECOND  CHANGED  BITS\n"
                    "1.0xC005  0x0000  0x8007  0x8007   1000 0000 0000 0111\n"));
    EXPECT_EQ(run({"diff", file, "OV0001:1", "3"}), prints(""));
}

TEST_F(OrvaneDump, ComparesWhatAReadChangesOnlyWhenAskedTo) {
    dump("1.0+2");
    const std::string leftOut = "orvane: left out, for a read changes them or tells nothing: PMA.STATUS1 "
                                "(--side-effects reads them)\n";
    set(1, 0x0002);
    EXPECT_EQ(run({"diff", file, "--live"}), fails(0, leftOut));
    EXPECT_EQ(run({"diff", file, "--live", "--side-effects"}),
              fails(1, "",
                    "ADDRESS   FIRST   SECOND  CHANGED  BITS\n"
                    "1.0x0001  0x0000  0x0002  0x0002   0000 0000 0000 0010\n"));
}

TEST_F(OrvaneDump, ComparesOnlyTheBitsThatALineOfAGoldenFileNames) {
    const std::string golden =
        folder.write("golden", "# orvane dump 2\n# device OV0001:0\n# phy 3\n# space c45\n"
                               "1.0xC000 0x0012 0x00FF\n1.0xC001 0x0000\n");
    set(0xC000, 0x3413);
    EXPECT_EQ(run({"diff", golden, "--live"}),
              fails(1, "",
                    "ADDRESS   FIRST   SECOND  CHANGED  BITS\n"
                    "1.0xC000  0x0012  0x3413  0x0001   0011 0100 0001 0011\n"));
}

TEST_F(OrvaneDump, ComparesTwoPhys) {
    set(0xC005, 0x8007);
    EXPECT_EQ(run({"diff", "OV0001:0", "3", "OV0001:0-1", "3-4", "1.0xC004+2"}),
              fails(1, "",
                    "DEVICE    PHY  ADDRESS   FIRST   SECOND  CHANGED  BITS\n"
                    "OV0001:0    4  1.0xC005  0x8007  0x0000  0x8007   0000 0000 0000 0000\n"
                    "OV0001:1    3  1.0xC005  0x8007  0x0000  0x8007   0000 0000 0000 0000\n"
                    "OV0001:1    4  1.0xC005  0x8007  0x0000  0x8007   0000 0000 0000 0000\n"));
}

TEST_F(OrvaneDump, IsNotTakenForAnotherKindOfPhyUnlessItIsForced) {
    dump("1.0xC000+2");
    board.setRegister(Space::C45, 1, 3, 0x10002, 0x0022);
    EXPECT_EQ(
        run({"diff", file, "OV0001:1", "3"}),
        fails(1, "orvane: OV0001:1: diff PHY 3: " + file +
                     " is of a PHY 0x0A5C1E83, this one is 0x00221E83 (--force takes it all the same)\n"));
    EXPECT_EQ(run({"diff", file, "OV0001:1", "3", "--force"}), prints(""));
}

TEST_F(OrvaneDump, GoesToTheStandardOutput) {
    EXPECT_THAT(run({"dump", "OV0001:0", "3", "1.2", "-o", "-"}).output,
                testing::EndsWith("# ranges 1.2\n1.0x0002 0x0A5C\n"));
}

TEST_F(OrvaneDump, ComparesWithAnotherDumpAndNeedsNoBoard) {
    dump("1.2+2");
    const std::string other =
        folder.write("b.dump", "# orvane dump 1\n# device X:0\n# phy 1\n# space c45\n1.0x0002 0x0A5D\n"
                               "1.0x0009 0x0001\n");
    EXPECT_EQ(orvane({"diff", file, other}),
              fails(1, "",
                    "ADDRESS   FIRST   SECOND  CHANGED  BITS\n"
                    "1.0x0002  0x0A5C  0x0A5D  0x0001   0000 1010 0101 1101\n"
                    "1.0x0003  0x1E83  -       -\n1.0x0009  -       0x0001  -\n"));
}

TEST_F(OrvaneDump, ThatIsNoneIsToldByFileAndLine) {
    const std::string bad = folder.write("bad", "hello\n");
    EXPECT_EQ(orvane({"diff", bad, bad}), fails(1, "orvane: " + bad + ":1: this is no dump\n"));
    const std::string worse = folder.write("worse", "# orvane dump 1\n1.0x0002\n");
    EXPECT_EQ(orvane({"diff", worse, worse}), fails(1, "orvane: " + worse + ":2: there is no value\n"));
    EXPECT_EQ(orvane({"diff", folder.path("none"), bad}),
              fails(1, "orvane: " + folder.path("none") + ": cannot read: No such file or directory\n"));
}

TEST_F(OrvaneDump, WithControlCharactersIsToldWithoutThem) {
    const std::string bad = folder.write("bad", "# orvane dump 1\n1.0x0002 \x1b[2J\n");
    const Outcome outcome = orvane({"diff", bad, bad});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr(bad + ":2: "));
    EXPECT_THAT(outcome.error, HasSubstr("\\x1b[2J"));
    EXPECT_THAT(outcome.error, testing::Not(HasSubstr("\x1b")));
}

} // namespace
} // namespace OrvaneTest
