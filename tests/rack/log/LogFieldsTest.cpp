// How arguments, results and notes are written into a log.
#include "ov_sys/rack/log/LogFields.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::RackLog::Fields;

std::string shown(std::string_view text) {
    std::string to;
    Orvane::RackLog::appendText(to, text);
    return to;
}

TEST(LogFields, AreNamesAndValuesWithSemicolonsBetween) {
    Fields fields(true);
    fields.add("bus", std::uint8_t{2}).addHex("device", 0x50).addHex("reg", 0x10203).addHex("mask", 0);
    fields.add("celsius", -40.5F).add("bytes", std::vector<std::uint8_t>{0, 0xAB}).add("name", "x y");
    fields.add("bits", std::vector<std::string>{"01", "1"});
    EXPECT_EQ(fields.text(), "bus=2;device=0x50;reg=0x010203;mask=0x00;celsius=-40.5;bytes=00AB;name=x y;"
                             "bits=01;bits=1");
}

TEST(LogFields, OfNoLogAreNothing) {
    Fields fields(false);
    fields.add("bus", 2).addHex("device", 0x50).add("name", "x").add("celsius", 1.0F);
    EXPECT_EQ(fields.text(), "");
}

TEST(LogFields, ThatAreLongAreCutAndTellTheirLength) {
    Fields fields(true);
    fields.add("bytes", std::vector<std::uint8_t>(8192, 1));
    EXPECT_EQ(fields.text().size(), 6U + 16384U);
    Fields more(true);
    more.add("bytes", std::vector<std::uint8_t>(8193, 1)).add("text", std::string(9000, 'x'));
    EXPECT_EQ(more.text(),
              fields.text() + ";bytes.length=8193;text=" + std::string(8192, 'x') + ";text.length=9000");
}

TEST(LogText, KeepsWhatASeparatorOrATerminalWouldTakeForItsOwnOutOfTheFile) {
    EXPECT_EQ(shown("a,b;c\"d\\e"), "a\\x2Cb\\x3Bc\\x22d\\x5Ce");
    EXPECT_EQ(shown("\x1B[2J\r\n\x7F"), "\\x1B[2J\\x0D\\x0A\\x7F");
    EXPECT_EQ(shown("\xC2\x9B\xE2\x80\xAE"), "\\xC2\\x9B\\xE2\\x80\\xAE"); // C1, and a turn of direction
    EXPECT_EQ(shown("\xFFz\xC3"), "\\xFFz\\xC3");
    EXPECT_EQ(shown(std::string_view("\0", 1)), "\\x00");
    EXPECT_EQ(shown("25 \xC2\xB0"
                    "C \xE2\x82\xAC"),
              "25 \xC2\xB0"
              "C \xE2\x82\xAC");
}

} // namespace
} // namespace OrvaneTest
