// orvane read, write and modify.
#include "tests/support/tools/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Fault;
using OrvaneSim::Space;
using testing::HasSubstr;

class OrvaneRegisters : public testing::Test, protected OneBoardLab {
protected:
    void set(unsigned mmd, unsigned reg, unsigned value) {
        board.setRegister(Space::C45, 0, 3, mmd << 16U | reg, value);
    }
    unsigned get(unsigned mmd, unsigned reg) {
        return board.registerValue(Space::C45, 0, 3, mmd << 16U | reg);
    }
};

TEST_F(OrvaneRegisters, OneIsPrintedAsItsValue) {
    EXPECT_EQ(run({"read", "OV0001:0", "3", "1.0x0002"}), prints("0x0A5C\n"));
    EXPECT_EQ(run({"read", "ov0001:0", "0x3", "1.2"}), prints("0x0A5C\n"));
    EXPECT_EQ(board.requestsOf("mdio_read").size(), 2U);
}

TEST_F(OrvaneRegisters, SeveralAreReadInOneRoundTrip) {
    set(31, 0x8037, 0x8001);
    EXPECT_EQ(run({"read", "OV0001:0", "3", "1.2", "1.3", "31.0x8037"}),
              prints("ADDRESS    VALUE   BITS                 DECIMAL\n"
                     "1.0x0002   0x0A5C  0000 1010 0101 1100     2652\n"
                     "1.0x0003   0x1E83  0001 1110 1000 0011     7811\n"
                     "31.0x8037  0x8001  1000 0000 0000 0001    32769\n"));
    EXPECT_EQ(board.requests("mdio").size(), 1U);
}

TEST_F(OrvaneRegisters, ManyAreAGridThatStartsAnewWhereTheAddressesDo) {
    set(3, 0x20, 0x1111);
    set(3, 0x28, 0xABCD);
    EXPECT_EQ(run({"read", "OV0001:0", "3", "3.0x20+10", "1.0-0x7"}),
              prints("3.0x0020: 1111 0000 0000 0000 0000 0000 0000 0000\n"
                     "3.0x0028: ABCD 0000\n"
                     "1.0x0000: 0000 0000 0A5C 1E83 0000 0000 0000 0000\n"));
}

TEST_F(OrvaneRegisters, AsCsvAndJsonNameEverything) {
    EXPECT_EQ(run({"read", "OV0001:0", "3", "1.2", "--csv"}),
              prints("record,device,board,port,phy,space,at,name,value,error.kind,error.code,error.text\n"
                     "register,OV0001:0,OV0001,0,3,c45,1.0x0002,PMA.ID1,2652,,,\n"));
    EXPECT_EQ(run({"read", "OV0001:0", "3", "--ext32", "0x80004000", "--json"}),
              prints("[\n  {\n    \"record\": \"register\",\n    \"device\": \"OV0001:0\",\n"
                     "    \"board\": \"OV0001\",\n    \"port\": 0,\n    \"phy\": 3,\n"
                     "    \"space\": \"ext32\",\n    \"register\": 2147500032,\n"
                     "    \"at\": \"0x80004000\",\n    \"value\": 0\n  }\n]\n"));
}

TEST_F(OrvaneRegisters, OfClause22AndTheExtensionAreNamedByNumber) {
    board.setRegister(Space::C22, 0, 3, 17, 0x2211);
    board.setRegister(Space::Ext32, 0, 3, 0x80004004, 0xDEADBEEF);
    EXPECT_EQ(run({"read", "OV0001:0", "3", "--c22", "16+2"}),
              prints("ADDRESS  VALUE   BITS                 DECIMAL\n"
                     "0x10     0x0000  0000 0000 0000 0000        0\n"
                     "0x11     0x2211  0010 0010 0001 0001     8721\n"));
    EXPECT_EQ(run({"read", "OV0001:0", "3", "--ext32", "0x80004000-0x80004004"}),
              prints("ADDRESS     VALUE       BITS                                        DECIMAL\n"
                     "0x80004000  0x00000000  0000 0000 0000 0000 0000 0000 0000 0000           0\n"
                     "0x80004004  0xDEADBEEF  1101 1110 1010 1101 1011 1110 1110 1111  3735928559\n"));
}

TEST_F(OrvaneRegisters, OnAnSmbusPortAreThoseOfThePhyBehindIt) {
    set(1, 0xC040, 0x5EB5);
    EXPECT_EQ(run({"read", "OV0001:10", "3", "1.0xC040"}), prints("0x5EB5\n"));
    EXPECT_EQ(run({"read", "OV0001:10", "3", "--c22", "2"}),
              fails(1, "orvane: OV0001:10: read PHY 3 0x02: invalid argument. An SMBus port has no Clause 22 "
                       "registers.\n"));
}

TEST_F(OrvaneRegisters, RoutedGoThroughTheFirmware) {
    EXPECT_EQ(run({"write", "OV0001:0", "3", "--routed", "11.0x1004", "0x1234"}), prints(""));
    EXPECT_EQ(get(11, 0x1004), 0x1234U);
    EXPECT_EQ(run({"read", "OV0001:0", "3", "--routed", "11.0x1004"}), prints("0x1234\n"));
}

TEST_F(OrvaneRegisters, AreWrittenInOneRoundTripAndNothingIsPrinted) {
    EXPECT_EQ(run({"write", "OV0001:0", "3", "30.0xC010", "0xCAFE", "30.0xC020+2", "7"}), prints(""));
    EXPECT_EQ(get(30, 0xC010), 0xCAFEU);
    EXPECT_EQ(get(30, 0xC020), 7U);
    EXPECT_EQ(get(30, 0xC021), 7U);
    EXPECT_EQ(board.requests("mdio").size(), 1U);
}

TEST_F(OrvaneRegisters, AreReadBackWhenAskedFor) {
    EXPECT_EQ(run({"write", "OV0001:0", "3", "30.0xC010", "0xCAFE", "--readback"}),
              prints("ADDRESS    WRITTEN  READ BACK  BITS\n"
                     "30.0xC010  0xCAFE   0xCAFE     1100 1010 1111 1110\n"));
}

TEST_F(OrvaneRegisters, AreModifiedInTheMaskedBitsOnly) {
    set(30, 0xC010, 0xCAFE);
    EXPECT_EQ(run({"modify", "OV0001:0", "3", "30.0xC010", "0x0040", "0x00F0"}),
              prints("ADDRESS    BEFORE  WRITTEN  READ BACK  BITS\n"
                     "30.0xC010  0xCAFE  0xCA4E   0xCA4E     1100 1010 0100 1110\n"));
    EXPECT_EQ(get(30, 0xC010), 0xCA4EU);
}

TEST_F(OrvaneRegisters, ThatDoNotHoldWhatWasWrittenAreNamed) {
    // Register 14 is a window that moves on with each access: the third sees MMD 1 register 2.
    board.setRegister(Space::C22, 0, 3, 13, 0x8001);
    EXPECT_EQ(
        run({"modify", "OV0001:0", "3", "--c22", "14", "1", "1"}),
        fails(1,
              "orvane: OV0001:0: modify PHY 3: the readback differs from what was written: 0x0E (0x0A5D)\n",
              "ADDRESS  BEFORE  WRITTEN  READ BACK  BITS\n"
              "0x0E     0x0000  0x0001   0x0A5C     0000 1010 0101 1100\n"));
}

TEST_F(OrvaneRegisters, ChangedBitsAreColouredOnATerminalUnlessNoColorIsSet) {
    set(30, 0xC010, 0x0001);
    const Arguments modify{"modify", "OV0001:0", "3", "30.0xC010", "2", "3"};
    const std::string red = orvaneOnTerminal(modify, environment()).output;
    EXPECT_THAT(red, HasSubstr("0x000\033[31m2\033[0m"));
    EXPECT_THAT(red, HasSubstr("0000 0000 0000 00\033[31m1\033[0m\033[31m0\033[0m"));
    Environment plain = environment();
    plain["NO_COLOR"] = "1";
    EXPECT_EQ(
        orvaneOnTerminal({"modify", "OV0001:0", "3", "30.0xC010", "1", "3"}, plain).output.find("\033[31m"),
        std::string::npos);
}

TEST_F(OrvaneRegisters, ThatTheBoardRefusesAreNamedWithTheCause) {
    board.inject({"mdio", "", Fault::Kind::ResultCode, 1, -5});
    EXPECT_EQ(
        run({"read", "OV0001:0", "3", "1.2"}),
        fails(1, "orvane: OV0001:0: read PHY 3 1.0x0002: the board answers: Input/output error (-5)\n"));
}

TEST_F(OrvaneRegisters, ShowTheRacksEventsOnlyWhenTheyAreAskedFor) {
    board.inject({"mdio", "", Fault::Kind::ResultCode, 1, -5});
    const Outcome outcome = run({"read", "OV0001:0", "3", "1.2", "--verbose"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("orvane: OV0001:0 PHY 3: opened\n"));
    EXPECT_EQ(outcome.output, "");
}

TEST_F(OrvaneRegisters, OfADeviceThatIsNotThereNameThoseThatAre) {
    EXPECT_EQ(
        run({"read", "OV0001:7", "3", "1.2"}),
        fails(1, "orvane: OV0001:7: open: device not found; there are OV0001:0, OV0001:1, OV0001:10\n"));
}

TEST_F(OrvaneRegisters, OfAnAnswerThatDoesNotFitAreNoValues) {
    board.inject({"mdio", "mdio_read", Fault::Kind::ReplyCount, 1, 2});
    EXPECT_EQ(
        run({"read", "OV0001:0", "3", "1.2"}),
        fails(1, "orvane: OV0001:0: read PHY 3 1.0x0002: the board's answer does not fit the question\n"));
}

TEST_F(OrvaneRegisters, AreOnlyNamedInADryRun) {
    EXPECT_EQ(run({"read", "OV0001:0", "3", "AN.STATUS", "30.0xC010", "--dry-run"}),
              prints("read  7.0x0001          AN.STATUS\nread  30.0xC010\n"));
    EXPECT_EQ(run({"write", "OV0001:0", "3", "30.0xC010", "0xCAFE", "--readback", "--dry-run"}),
              prints("write 30.0xC010 0xCAFE\nread  30.0xC010\n"));
    EXPECT_EQ(run({"modify", "OV0001:0", "3", "30.0xC010", "0x40", "0xF0", "--dry-run"}),
              prints("read  30.0xC010\n"
                     "write 30.0xC010         0x0040 in the bits 0x00F0, the others as they were read\n"
                     "read  30.0xC010\n"));
    EXPECT_EQ(board.requests().size(), 0U);
}

TEST_F(OrvaneRegisters, ShowTheStepsOfTheirPathInADryRun) {
    const Outcome outcome = run({"read", "OV0001:0", "3", "--routed", "28.0x0123", "--dry-run"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("write 30.0xC47C 0x0123\n"));
    EXPECT_EQ(board.requests().size(), 0U);
}

struct Misuse {
    std::string name;
    Arguments arguments;
    std::string error;
};

class OrvaneUsage : public testing::TestWithParam<Misuse> {};

const Misuse kMisuses[] = {
    {"NoVerb", {}, "VERB is required\nTry 'orvane --help'."},
    {"UnknownVerb", {"frob"}, "no verb frob\nTry 'orvane --help'."},
    {"NoAddress", {"read", "OV0001:0", "3"}, "ADDRESS is required\nTry 'orvane read --help'."},
    {"NoPort",
     {"read", "OV0001", "3", "1.2"},
     "'OV0001' is no device name: it is BOARD:PORT, such as OV0001:0 ('orvane list' shows them)"},
    {"NoMmd", {"read", "OV0001:0", "3", "2"}, "'2' is not an address: it is MMD.REGISTER, such as 1.0x0002"},
    {"LargeMmd", {"read", "OV0001:0", "3", "32.0"}, "the MMD must not be above 31 (0x1f): '32'"},
    {"NoNumber", {"read", "OV0001:0", "3", "1.x"}, "the register is not a number: 'x'"},
    {"LongRange", {"read", "OV0001:0", "3", "1.0xFFFF+2"}, "'1.0xFFFF+2' reaches beyond the last register"},
    {"BackwardRange", {"read", "OV0001:0", "3", "1.5-4"}, "'1.5-4' ends before it begins"},
    {"WideValue",
     {"write", "OV0001:0", "3", "1.5", "0x10000"},
     "the value must not be above 65535 (0xffff): '0x10000'"},
    {"NoValue", {"write", "OV0001:0", "3", "1.5"}, "there is no value for 1.5"},
    {"ValueOutsideMask",
     {"modify", "OV0001:0", "3", "1.5", "3", "1"},
     "the value 3 has bits that the mask 1 leaves out"},
};

INSTANTIATE_TEST_SUITE_P(Misuse, OrvaneUsage, testing::ValuesIn(kMisuses),
                         [](const auto& test) { return test.param.name; });

TEST_P(OrvaneUsage, IsRefusedBeforeAnyBoardIsAsked) {
    EXPECT_EQ(orvane(GetParam().arguments), fails(2, "orvane: " + GetParam().error + "\n"));
}

} // namespace
} // namespace OrvaneTest
