// What boards say of themselves, and in which order it is kept.
#include "ov_sys/rack/search/Announcement.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::RackSearch::Answer;
using Orvane::RackSearch::boardsOf;

TEST(Announcement, IsOfPrintableCharactersFromBlankToTilde) {
    const auto boards = boardsOf({0x0100007F, " ~|wren ~A:3 ~A:0"});
    ASSERT_EQ(boards.size(), 1U);
    EXPECT_EQ(boards[0].serial, "~A");
    EXPECT_EQ(boards[0].address, "127.0.0.1");
    EXPECT_EQ(boards[0].ports, (std::vector<unsigned>{0, 3}));
    EXPECT_EQ(boards[0].kind, "wren");
    for (const char* const text : {"\x1F|wren A:0", "\x7F|wren A:0", "|wren A:0\x1F", "wren A:0"})
        EXPECT_TRUE(boardsOf({0x0100007F, text}).empty()) << text;
}

TEST(Announcement, IsOrderedByItsAddressThenByItsText) {
    const Answer answers[] = {{1, "a"}, {1, "b"}, {2, "a"}};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            EXPECT_EQ(answers[i] < answers[j], i < j);
}

} // namespace
} // namespace OrvaneTest
