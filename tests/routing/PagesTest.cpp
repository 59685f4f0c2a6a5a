// The pages of MMD 28: their steps and their oddities.
#include "ov_sys/routing/Pages.h"

#include "tests/support/routing/ScriptedPhy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utility>

namespace OrvaneTest {
namespace {

using namespace Orvane::Routing;
using testing::ElementsAre;

TEST(Pages, AreWrittenWithThePageInPlaceOfAValue) {
    ScriptedPhy phy({0xABCF});
    EXPECT_TRUE(writePaged(phy, 0x344));
    EXPECT_THAT(phy.steps, ElementsAre("R 04.C180 ABCF", "W 04.C180 ABCB", "W 04.C244 ABCB"));
}

TEST(Pages, AreReadAsThePageWithItsNibblesExchanged) {
    ScriptedPhy phy({0xABDF});
    EXPECT_EQ(readPaged(phy, 0x345), Value(0xBD));
    EXPECT_THAT(phy.steps, ElementsAre("R 04.C180 ABDF", "W 04.C180 ABDB"));
}

TEST(Pages, AreReadByLaneAndIndexWithBit8000) {
    ScriptedPhy phy({0xFFFF, 0x34, 0xF9});
    EXPECT_EQ(readPaged(phy, 0x8419), Value(0x934));
    EXPECT_THAT(phy.steps, ElementsAre("R 04.C180 FFFF", "W 04.C180 FFF8", "W 04.C20B 0099", "R 04.C2EF 0034",
                                       "R 04.C2FF 00F9"));
}

TEST(Pages, NameLaneAndIndexInReverseOrderOfBits) {
    ScriptedPhy phy;
    readPaged(phy, 0x8208);
    EXPECT_EQ(phy.steps.at(2), "W 04.C20B 0012");
}

TEST(Pages, HaveNoAddressBeyondTheirLimits) {
    for (const auto& [address, trouble] : {std::pair{0x600U, "trouble 7 0 0600"},
                                           {0x8500U, "trouble 7 0 8500"},
                                           {0x8800U, "trouble 7 0 8800"},
                                           {0x8080U, "trouble 7 0 8080"},
                                           {0x801AU, "trouble 7 0 801A"}}) {
        ScriptedPhy phy;
        EXPECT_EQ(readPaged(phy, address), Value(0));
        phy.endsAtTrouble();
        EXPECT_EQ(readPaged(phy, address), std::nullopt);
        EXPECT_FALSE(writePaged(phy, address));
        EXPECT_THAT(phy.steps, ElementsAre(trouble, trouble, trouble));
    }
    ScriptedPhy last;
    EXPECT_TRUE(writePaged(last, 0x5FF));
    EXPECT_EQ(last.steps.back(), "W 04.C2FF 0005");
    EXPECT_EQ(readPaged(last, 0x5FF), Value(0x50));
}

TEST(Pages, EndAtTheFirstAccessThatFails) {
    expectToEndAtEachFailure({}, [](ScriptedPhy& phy) { return writePaged(phy, 0x345); });
    expectToEndAtEachFailure({}, [](ScriptedPhy& phy) { return readPaged(phy, 0x345).has_value(); });
    expectToEndAtEachFailure({}, [](ScriptedPhy& phy) { return readPaged(phy, 0x8419).has_value(); });
}

} // namespace
} // namespace OrvaneTest
