// The window to MMD 10: its steps and its wait.
#include "ov_sys/routing/Window.h"

#include "tests/support/routing/ScriptedPhy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane::Routing;
using testing::ElementsAre;

TEST(Window, ReadsOddAddressesFromTheirOwnRegister) {
    ScriptedPhy phy({0x100, 0xFEFF, 0xBEEF}); // busy by bit 8 alone
    EXPECT_EQ(readByWindow(phy, 0x1235), Value(0xBEEF));
    EXPECT_THAT(phy.steps, ElementsAre("W 1E.0202 3FFE", "W 1E.0203 28EA", "W 1E.0200 8000", "R 1E.0200 0100",
                                       "R 1E.0200 FEFF", "R 1E.0204 BEEF"));
}

TEST(Window, PointsAtAddressesAcrossABoundaryOf64K) {
    ScriptedPhy phy;
    readByWindow(phy, 0xC001);
    EXPECT_EQ(phy.steps.at(0), "W 1E.0202 3FFF");
    EXPECT_EQ(phy.steps.at(1), "W 1E.0203 8482");
}

TEST(Window, NamesTheAddressAgainToWrite) {
    ScriptedPhy phy;
    EXPECT_TRUE(writeByWindow(phy, 2, 0xCAFE));
    EXPECT_THAT(phy.steps,
                ElementsAre("W 1E.0202 3FFE", "W 1E.0203 0484", "W 1E.0200 8000", "R 1E.0200 0000",
                            "W 1E.0202 3FFE", "W 1E.0203 0484", "W 1E.0205 CAFE", "W 1E.0200 C000"));
}

TEST(Window, EndsAtTheFirstAccessThatFails) {
    expectToEndAtEachFailure({0x100}, [](ScriptedPhy& phy) { return writeByWindow(phy, 2, 1); });
    expectToEndAtEachFailure({0x100}, [](ScriptedPhy& phy) { return readByWindow(phy, 2).has_value(); });
}

TEST(Window, ThatStaysBusyIsReadFortyOneTimes) {
    ScriptedPhy phy(std::deque<unsigned>(100, 0x100));
    EXPECT_EQ(readByWindow(phy, 2), Value(0));
    EXPECT_EQ(phy.steps.size(), 3U + 41U + 1U);
    EXPECT_EQ(phy.steps.back(), "trouble 6 0 0002");
}

TEST(Window, ThatIsFreeAtTheLastReadIsUsed) {
    std::deque<unsigned> answers(40, 0x100);
    answers.insert(answers.end(), {0, 0xBEEF});
    ScriptedPhy phy(answers);
    EXPECT_EQ(readByWindow(phy, 2), Value(0xBEEF));
}

TEST(Window, IsWaitedForNoLongerThanTheAccessDoes) {
    ScriptedPhy phy(std::deque<unsigned>(100, 0x100));
    phy.waitsAtMost(2);
    phy.endsAtTrouble();
    EXPECT_FALSE(writeByWindow(phy, 2, 1));
    EXPECT_EQ(phy.steps.size(), 3U + 3U + 1U);
    EXPECT_EQ(phy.steps.back(), "trouble 6 0 0002");
}

} // namespace
} // namespace OrvaneTest
