// Clause 45 over Clause 22.
#include "ov_sys/routing/OverClause22.h"

#include "tests/support/routing/ScriptedPhy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane::Routing;
using testing::ElementsAre;

TEST(OverClause22, WritesThroughRegisters13And14) {
    ScriptedPhy phy;
    EXPECT_TRUE(writeOverClause22(phy, 0x3F, 0xC010, 0xCAFE));
    EXPECT_THAT(phy.steps, ElementsAre("w 0D 001F", "w 0E C010", "w 0D 401F", "w 0E CAFE"));
}

TEST(OverClause22, ReadsThroughRegisters13And14) {
    ScriptedPhy phy({0xBEEF});
    EXPECT_EQ(readOverClause22(phy, 30, 0xC010), Value(0xBEEF));
    EXPECT_THAT(phy.steps, ElementsAre("w 0D 001E", "w 0E C010", "w 0D 401E", "r 0E BEEF"));
}

TEST(OverClause22, EndsAtTheFirstAccessThatFails) {
    expectToEndAtEachFailure({}, [](ScriptedPhy& phy) { return writeOverClause22(phy, 30, 1, 2); });
    expectToEndAtEachFailure({}, [](ScriptedPhy& phy) { return readOverClause22(phy, 30, 1).has_value(); });
}

} // namespace
} // namespace OrvaneTest
