// The limits of calls, as a C program has them.
#include <orvane/rack.h>

#include <gtest/gtest.h>
#include <limits>

namespace OrvaneTest {
namespace {

TEST(CLimits, UsualOnesAreThoseOfTheManual) {
    const orvane_limits usual = orvane_default_limits();
    EXPECT_EQ(usual.seconds, 5.0);
    EXPECT_EQ(usual.read_repeats, std::numeric_limits<unsigned>::max());
    EXPECT_EQ(usual.write_repeats, 16U);
    EXPECT_EQ(usual.heals, 1);
    EXPECT_EQ(usual.cancellation, nullptr);
}

TEST(CLimits, OfSomeTimeOrOfOneSendingLeaveTheRestAsItIs) {
    const orvane_limits brief = orvane_within(0.25);
    EXPECT_EQ(brief.seconds, 0.25);
    EXPECT_EQ(brief.write_repeats, 16U);
    const orvane_limits once = orvane_once(brief);
    EXPECT_EQ(once.seconds, 0.25);
    EXPECT_EQ(once.read_repeats, 0U);
    EXPECT_EQ(once.write_repeats, 0U);
    EXPECT_EQ(once.heals, 1);
}

} // namespace
} // namespace OrvaneTest
