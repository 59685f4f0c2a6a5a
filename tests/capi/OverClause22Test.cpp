// Clause 45 accesses carried over Clause 22.
#include "tests/support/capi/FlatInterface.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

class OverClause22 : public FlatInterface {
protected:
    OverClause22() { HW_EnableClause45OverClause22(kDefaultAdapter); }

    static std::vector<std::string> writing(const Frame& phy, unsigned mmd) {
        return {phy.write22(13, mmd), phy.write22(14, 0x8037), phy.write22(13, 0x4000 + mmd),
                phy.write22(14, 0x1234)};
    }
    static std::vector<std::string> reading(const Frame& phy, unsigned mmd) {
        return {phy.write22(13, mmd), phy.write22(14, 0x8037), phy.write22(13, 0x4000 + mmd), phy.read22(14)};
    }
};

class MmdOverClause22 : public OverClause22, public testing::WithParamInterface<unsigned> {};

TEST_P(MmdOverClause22, IsWrittenInFourUnloggedAccessesWhateverItsClass) {
    EXPECT_EQ(outcomeOf([] { ZR_API_MDIO_Write(kPhy, GetParam(), 0x8037, 0x1234); }), Outcome{});
    EXPECT_EQ(frames(), writing({kDefaultAdapter, kPhy}, GetParam() & 31U));
}

TEST_P(MmdOverClause22, IsReadInFourUnloggedAccessesWhateverItsClass) {
    setRegister(kDefaultAdapter, kPhy, GetParam() & 31U, 0x8037, 0xC045);
    EXPECT_EQ(outcomeOf([] { return ZR_API_MDIO_Read(kPhy, GetParam(), 0x8037); }),
              (Outcome{0xC045, "", "", ""}));
    EXPECT_EQ(frames(), reading({kDefaultAdapter, kPhy}, GetParam() & 31U));
}

INSTANTIATE_TEST_SUITE_P(Number, MmdOverClause22, testing::Values(1U, 10U, 11U, 27U, 28U, 31U, 0x3EU));

TEST_F(OverClause22, ReadsBackWhatWasWritten) {
    ZR_API_MDIO_Write(kPhy, 31, 0x8037, 0x1234);
    EXPECT_EQ(ZR_API_MDIO_Read(kPhy, 31, 0x8037), 0x1234U);
    EXPECT_EQ(registerOf(kDefaultAdapter, kPhy, 31, 0x8037), 0x1234U);
}

TEST_F(OverClause22, IsUsedWithTheDefaultPhyIdToo) {
    HW_Write_Default_PHY_ID(1, 0x8037, 0x1234);
    EXPECT_EQ(frames(), writing({kDefaultAdapter, kDefaultPhy}, 1));
}

TEST_F(OverClause22, ReachesTheAdapterThatAnArgumentCarries) {
    ZR_API_MDIO_Write(static_cast<unsigned>(phyOn(3, 6)), 1, 0x8037, 0x1234);
    EXPECT_EQ(frames(), writing({3, 6}, 1));
}

TEST_F(OverClause22, IsDecidedByTheDefaultAdapter) {
    HW_DisableClause45OverClause22(kDefaultAdapter);
    HW_EnableClause45OverClause22(3);
    ZR_API_MDIO_Write(static_cast<unsigned>(phyOn(3, 6)), 1, 0x8037, 0x1234);
    EXPECT_EQ(frames(), (std::vector<std::string>{Frame{3, 6}.write(1, 0x8037, 0x1234)}));
}

TEST_F(OverClause22, IsNotUsedByAccessesToAnExplicitAdapter) {
    HW_Write(kDefaultAdapter, kPhy, 1, 0x8037, 0x1234);
    EXPECT_EQ(HW_Read(kDefaultAdapter, kPhy, 1, 0x8037), 0x1234U);
    const Frame phy{kDefaultAdapter, kPhy};
    EXPECT_EQ(frames(), (std::vector<std::string>{phy.write(1, 0x8037, 0x1234), phy.read(1, 0x8037)}));
}

} // namespace
} // namespace OrvaneTest
