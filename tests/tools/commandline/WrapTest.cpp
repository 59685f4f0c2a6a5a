// Lines that fit.
#include "tools/commandline/Wrap.h"

#include <gtest/gtest.h>

namespace OrvaneTool {
namespace {

TEST(WrappedText, BreaksBetweenWords) {
    EXPECT_EQ(wrapped("one two three", 7, 2), "one two\n  three");
}

TEST(WrappedText, LeavesALongWordWhole) {
    EXPECT_EQ(wrapped("a unbreakable b", 4, 0), "a\nunbreakable\nb");
}

TEST(WrappedText, EndsEveryLineButTheLastAsAsked) {
    EXPECT_EQ(wrapped("one two three", 9, 2, " \\"), "one two \\\n  three");
}

} // namespace
} // namespace OrvaneTool
