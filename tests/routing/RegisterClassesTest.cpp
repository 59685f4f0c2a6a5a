// The register classes: how many there are, and their borders.
#include "ov_sys/routing/RegisterClasses.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane::Routing;

int countOf(bool (*isIn)(unsigned, unsigned), unsigned mmd) {
    int count = 0;
    for (unsigned address = 0; address <= 0xFFFF; ++address)
        count += isIn(mmd, address) ? 1 : 0;
    return count;
}

TEST(RegisterClasses, HaveTheirRegistersInMmd31Only) {
    EXPECT_EQ(countOf(isNec, 31), 424);
    EXPECT_EQ(countOf(isDec, 31), 456);
    EXPECT_EQ(countOf(isNec, 30) + countOf(isDec, 30), 0);
}

TEST(RegisterClasses, BeginAndEndWhereTheyDo) {
    EXPECT_FALSE(isNec(31, 0x8036));
    EXPECT_TRUE(isNec(31, 0x8037));
    EXPECT_TRUE(isNec(31, 0xB9D8));
    EXPECT_FALSE(isNec(31, 0x1B9D8));
    EXPECT_TRUE(isDec(31, 0x9035));
    EXPECT_TRUE(isDec(31, 0xA27C));
    EXPECT_FALSE(isDec(31, 0xA27D));
}

} // namespace
} // namespace OrvaneTest
