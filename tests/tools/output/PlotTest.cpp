// Curves of characters.
#include "tools/orvane/output/Plot.h"

#include <cmath>
#include <gtest/gtest.h>

namespace OrvaneTool {
namespace {

TEST(Plot, HasAStarForEachValue) {
    EXPECT_EQ(plot({0, 1, 2}, {0, 2, 3, 3, 0}, std::nan("")), "       2 |  *\n       1 | *\n       0 |*\n");
}

TEST(Plot, OfMoreValuesThanColumnsShowsTheRangeOfEach) {
    EXPECT_EQ(plot({0, 0, 9, 0, 0, 0, 0, 0}, {0, 9, 2, 4, 0}, std::nan("")),
              "       9 |*\n       6 |*\n       3 |*\n       0 |**\n");
}

} // namespace
} // namespace OrvaneTool
