// orvane scan.
#include "tests/support/tools/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Space;
using testing::HasSubstr;

struct OrvaneScan : testing::Test, OneBoardLab {
    void identify(unsigned phy, unsigned first, unsigned second) const {
        board.setRegister(Space::C45, 0, phy, 0x10002, first);
        board.setRegister(Space::C45, 0, phy, 0x10003, second);
        board.setRegister(Space::C22, 0, phy, 2, first);
        board.setRegister(Space::C22, 0, phy, 3, second);
    }
};

TEST_F(OrvaneScan, IsAGridWithIdentifiersAndNames) {
    for (const unsigned phy : {0U, 1U, 2U, 16U})
        identify(phy, 0xFFFF, 0xFFFF);
    identify(4, 0x0011, 0x2233);
    const Folder folder;
    const std::string map = folder.write("wren.json", R"({"format": "orvane-map-1", "name": "wren",
        "identifiers": ["0x00112230/0xFFFFFFF0"], "registers": {"A": {"at": "30.0"}}})");
    EXPECT_EQ(run({"scan", "OV0001:0", "0-4,16", "--map", map}),
              prints("OV0001:0\n"
                     "     0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f\n"
                     "00: -- -- -- 03 04\n"
                     "10: --\n"
                     "DEVICE    PHY  IDENTIFIER  NAME\n"
                     "OV0001:0    3  0x0A5C1E83\n"
                     "OV0001:0    4  0x00112233  wren\n"));
}

TEST_F(OrvaneScan, ReadsNothingButIdentifiers) {
    identify(0, 0xFFFF, 0xFFFF);
    EXPECT_EQ(
        run({"scan", "OV0001:0", "0-1", "--csv"}),
        prints("record,device,board,port,phy,identifier,name,bus,target,error.kind,error.code,error.text\n"
               "device,OV0001:0,OV0001,0,1,173809283,,,,,,\n"));
    EXPECT_EQ(board.requestsOf("mdio_write").size(), 0U);
    EXPECT_EQ(board.requests("mdio").size(), 3U); // Clause 45 of both, Clause 22 of the one that is not there
}

TEST_F(OrvaneScan, MarksAPhyThatSomebodyElseHas) {
    Environment holder = environment();
    holder["EXCLUSIVE_KEY"] = "77";
    Program other({"watch", "OV0001:0", "1", "1.2", "--interval", "600000"}, holder);
    other.waitForOutput("1 1.0x0002");
    EXPECT_THAT(run({"scan", "OV0001:0", "0-1"}).output, HasSubstr("00: 00 UU\n"));
}

TEST_F(OrvaneScan, OfAnI2cBusIsAGrid) {
    const Outcome outcome = run({"scan", "OV0001:0", "--i2c", "0"});
    EXPECT_EQ(outcome.status, 0) << outcome;
    EXPECT_THAT(outcome.output, HasSubstr("OV0001:0, I2C bus 0\n     0  1  2"));
    EXPECT_THAT(outcome.output, HasSubstr("00:          -- -- --"));
    EXPECT_THAT(outcome.output, HasSubstr("\n50: 50 --"));
}

} // namespace
} // namespace OrvaneTest
