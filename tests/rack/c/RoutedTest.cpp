// Registers behind others, as a C program reaches them.
#include "tests/support/rack/CRackOnBoard.h"

namespace OrvaneTest {
namespace {

class CRouted : public testing::Test, protected CRackOnBoard {
protected:
    static constexpr orvane_register kSerdes{ORVANE_CLAUSE45, 27, 0x40};
};

TEST_F(CRouted, FirmwareAndBridgeReachTheSameRegister) {
    orvane_paths bridge = orvane_default_paths();
    bridge.serdes = 0;
    uint32_t value = 0;
    uint32_t written = 0;
    EXPECT_EQ(orvane_routed_write(phy, nullptr, kSerdes, 0x1234, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_routed_read(phy, &bridge, kSerdes, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(value, 0x1234U);
    EXPECT_EQ(orvane_routed_modify(phy, &bridge, kSerdes, 0xF0, 0x50, nullptr, &written, &failure),
              ORVANE_DONE);
    EXPECT_EQ(written, 0x1254U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x1B0040), 0x1254U);
}

TEST_F(CRouted, UsualPathsAreTheFirmwares) {
    const orvane_paths usual = orvane_default_paths();
    EXPECT_EQ(usual.read_classes + usual.write_paged + usual.read_paged + usual.tge + usual.serdes, 5);
    EXPECT_EQ(usual.over_clause22, 0);
}

TEST_F(CRouted, Clause22CarriesEverything) {
    orvane_paths paths = orvane_default_paths();
    paths.over_clause22 = 1;
    uint32_t value = 0;
    EXPECT_EQ(orvane_routed_read(phy, &paths, kRegister, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(count("mdio_read"), 0U);
    EXPECT_GT(count("mdio_write_c22"), 0U);
    EXPECT_EQ(count("mdio_read_c22"), 1U);
}

TEST_F(CRouted, FailureNamesThePath) {
    orvane_phy_open(phy, nullptr, nullptr);
    inject(Fault::Kind::ResultCode, "mdio", "", 1, -5);
    uint32_t value = 0;
    EXPECT_EQ(orvane_routed_read(phy, nullptr, kSerdes, nullptr, &value, &failure), ORVANE_BOARD_ERROR);
    EXPECT_STREQ(failure.operation, "read by firmware");
    EXPECT_EQ(orvane_routed_read(phy, nullptr, {ORVANE_CLAUSE22, 0, 1}, nullptr, &value, &failure),
              ORVANE_INVALID_ARGUMENT);
}

} // namespace
} // namespace OrvaneTest
