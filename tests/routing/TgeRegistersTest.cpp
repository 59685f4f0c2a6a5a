// The TGE registers: blocks, banks and steps.
#include "ov_sys/routing/TgeRegisters.h"

#include "tests/support/routing/ScriptedPhy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane::Routing;
using testing::ElementsAre;

TEST(TgeRegisters, OfBlock0AreSmiRegisters) {
    ScriptedPhy phy({0xBEEF});
    EXPECT_TRUE(writeTge(phy, 0x0FE5, 0xCAFE));
    EXPECT_EQ(readTge(phy, 0x0005), Value(0xBEEF));
    EXPECT_THAT(phy.steps,
                ElementsAre("W 1D.C204 CAFE", "W 1D.C203 8005", "W 1D.C203 C005", "R 1D.C204 BEEF"));
}

TEST(TgeRegisters, OfBlock3AreTheThirdBankOfIndirectRegisters) {
    ScriptedPhy phy({0xBEEF});
    EXPECT_TRUE(writeTge(phy, 0x3084, 0xCAFE));
    EXPECT_EQ(readTge(phy, 0x3004), Value(0xBEEF));
    EXPECT_THAT(phy.steps,
                ElementsAre("W 1D.C204 CAFE", "W 1D.C203 8017", "W 1D.C204 4104", "W 1D.C203 8014",
                            "W 1D.C204 8104", "W 1D.C203 8014", "W 1D.C203 C015", "R 1D.C204 BEEF"));
}

TEST(TgeRegisters, OfAnotherBlockAreTroubleWithoutAnAccess) {
    ScriptedPhy phy;
    EXPECT_EQ(readTge(phy, 0x4123), Value(0));
    EXPECT_TRUE(writeTge(phy, 0x4123, 1));
    EXPECT_TRUE(writeTge(phy, 0xF123, 1));
    phy.endsAtTrouble();
    EXPECT_EQ(readTge(phy, 0x4123), std::nullopt);
    EXPECT_FALSE(writeTge(phy, 0xF123, 1));
    EXPECT_THAT(phy.steps, ElementsAre("trouble 5 4 4123", "trouble 5 4 4123", "trouble 5 F F123",
                                       "trouble 5 4 4123", "trouble 5 F F123"));
}

TEST(TgeRegisters, EndAtTheFirstAccessThatFails) {
    for (const unsigned address : {0x0005U, 0x1005U}) {
        expectToEndAtEachFailure({}, [=](ScriptedPhy& phy) { return writeTge(phy, address, 1); });
        expectToEndAtEachFailure({}, [=](ScriptedPhy& phy) { return readTge(phy, address).has_value(); });
    }
}

TEST(TgeRegisters, TakeTheLowBitsOfBankAndAddress) {
    ScriptedPhy phy;
    writeGfe(phy, 0xFF, 0xF, 1);
    EXPECT_EQ(phy.steps.at(2), "W 1D.C204 43FF");
}

} // namespace
} // namespace OrvaneTest
