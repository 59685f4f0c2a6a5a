// Text that may hold anything, made visible.
#include "tools/orvane/output/VisibleText.h"

#include <gtest/gtest.h>

namespace OrvaneTool {
namespace {

TEST(VisibleText, KeepsWhatCanBeShown) {
    for (const std::string text :
         {"OV0001:0 ~!", "C:\\new", "gr\xc3\xbc\xc3\x9f", "\xe2\x82\xac", "\xf0\x9f\x98\x80", ""})
        EXPECT_EQ(visible(text), text);
}

TEST(VisibleText, HasControlCharactersAsHexadecimalBytes) {
    EXPECT_EQ(visible(std::string("\0\x07\x1b[2J\x7f", 7)), "\\x00\\x07\\x1b[2J\\x7f");
    EXPECT_EQ(visible("a\r\n\tb"), "a\\x0d\\x0a\\x09b");
    EXPECT_EQ(visible("\xc2\x80\xc2\x9b\xc2\x9f\xc2\xa0"), "\\xc2\\x80\\xc2\\x9b\\xc2\\x9f\xc2\xa0");
}

TEST(VisibleText, HasWhatTurnsTheDirectionAsHexadecimalBytes) {
    EXPECT_EQ(visible("\xe2\x80\xae\xe2\x81\xa6\xe2\x80\xa8"),
              "\\xe2\\x80\\xae\\xe2\\x81\\xa6\\xe2\\x80\\xa8");
}

TEST(VisibleText, HasBytesThatAreNoUtf8AsHexadecimalBytes) {
    EXPECT_EQ(visible("\x9b"), "\\x9b");
    EXPECT_EQ(visible("\xff\xc3"), "\\xff\\xc3");
    EXPECT_EQ(visible("\xc3("), "\\xc3(");
    EXPECT_EQ(visible("\xc0\x9b"), "\\xc0\\x9b");                   // longer than need be
    EXPECT_EQ(visible("\xed\xa0\x80"), "\\xed\\xa0\\x80");          // a surrogate
    EXPECT_EQ(visible("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80"); // beyond the last character
}

TEST(VisibleLines, KeepLineEndsAndTabsOnly) {
    EXPECT_EQ(visibleLines("a\tb\nc\r\x1b"), "a\tb\nc\\x0d\\x1b");
}

TEST(VisibleJson, EscapesWhatTheLibraryLeaves) {
    EXPECT_EQ(visibleJson("[\n  \"\x7f\xc2\x9b\xe2\x80\xae\xc3\xbc\"\n]"),
              "[\n  \"\\u007f\\u009b\\u202e\xc3\xbc\"\n]");
}

} // namespace
} // namespace OrvaneTool
