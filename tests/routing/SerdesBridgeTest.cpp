// The SerDes bridge: its steps and its errors.
#include "ov_sys/routing/SerdesBridge.h"

#include "tests/support/routing/ScriptedPhy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane::Routing;
using testing::ElementsAre;

TEST(SerdesBridge, WritesAndReadsItsStatus) {
    ScriptedPhy phy;
    EXPECT_TRUE(writeSerdes(phy, 0x1234, 0xCAFE));
    EXPECT_THAT(phy.steps,
                ElementsAre("W 1E.A110 0001", "W 1E.A104 1234", "W 1E.A105 CAFE", "R 1E.A111 0000"));
}

TEST(SerdesBridge, ReadsTheDataAndThenItsStatus) {
    ScriptedPhy phy({0xBEEF});
    EXPECT_EQ(readSerdes(phy, 0x1234), Value(0xBEEF));
    EXPECT_THAT(phy.steps, ElementsAre("W 1E.A10B 0000", "W 1E.A110 0001", "W 1E.A108 1234", "R 1E.A109 BEEF",
                                       "R 1E.A111 0000"));
}

TEST(SerdesBridge, EndsAtTheFirstAccessThatFails) {
    expectToEndAtEachFailure({}, [](ScriptedPhy& phy) { return writeSerdes(phy, 0x1234, 1); });
    expectToEndAtEachFailure({}, [](ScriptedPhy& phy) { return readSerdes(phy, 0x1234).has_value(); });
}

TEST(SerdesBridge, InErrorGives0WhenTheAccessGoesOn) {
    ScriptedPhy phy({0xBEEF, 0x1005});
    EXPECT_EQ(readSerdes(phy, 0x1234), Value(0));
    EXPECT_EQ(phy.steps.back(), "trouble 3 5 1234");
}

TEST(SerdesBridge, InErrorGivesNothingWhenTheAccessDoesNotGoOn) {
    ScriptedPhy reading({0xBEEF, 0x1005});
    reading.endsAtTrouble();
    EXPECT_EQ(readSerdes(reading, 0x1234), std::nullopt);
    ScriptedPhy writing({0x100F});
    writing.endsAtTrouble();
    EXPECT_FALSE(writeSerdes(writing, 0x1234, 1));
    EXPECT_EQ(writing.steps.back(), "trouble 4 F 1234");
}

TEST(SerdesBridge, IsInErrorWithTheBitAndACodeOnly) {
    ScriptedPhy withoutCode({0xBEEF, 0x1000});
    EXPECT_EQ(readSerdes(withoutCode, 0x1234), Value(0xBEEF));
    ScriptedPhy withoutBit({0xBEEF, 0x0FFF});
    EXPECT_EQ(readSerdes(withoutBit, 0x1234), Value(0xBEEF));
}

} // namespace
} // namespace OrvaneTest
