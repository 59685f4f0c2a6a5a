// Numbers as files of maps have them.
#include "ov_sys/maps/Numbers.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::Maps::decimalIn;
using Orvane::Maps::hexadecimal;
using Orvane::Maps::lowBits;
using Orvane::Maps::numberIn;

TEST(Numbers, AreDecimalHexadecimalOrBinary) {
    EXPECT_EQ(numberIn("0"), 0U);
    EXPECT_EQ(numberIn("0123"), 123U);
    EXPECT_EQ(numberIn("0x1f"), 0x1FU);
    EXPECT_EQ(numberIn("0XF"), 0xFU);
    EXPECT_EQ(numberIn("0b101"), 5U);
    EXPECT_EQ(numberIn("0B1"), 1U);
    EXPECT_EQ(numberIn("18446744073709551615"), ~std::uint64_t{0});
}

TEST(Numbers, AreNothingElse) {
    for (const char* text : {"", " 1", "1 ", "-1", "+1", "0x", "0b", "0b2", "0xG", "1F",
                             "18446744073709551616", "0x10000000000000000"})
        EXPECT_EQ(numberIn(text), std::nullopt) << text;
}

TEST(Numbers, WithAFractionMayHaveAnExponent) {
    EXPECT_EQ(decimalIn("-0.5"), -0.5);
    EXPECT_EQ(decimalIn("1e-3"), 0.001);
    EXPECT_EQ(decimalIn("25"), 25.0);
    for (const char* text : {"", "inf", "nan", "1e999", "0.5x", "0x1"})
        EXPECT_EQ(decimalIn(text), std::nullopt) << text;
}

TEST(Numbers, AreShownInAsManyDigitsAsWanted) {
    EXPECT_EQ(hexadecimal(0), "0x0");
    EXPECT_EQ(hexadecimal(0xABCDEF), "0xABCDEF");
    EXPECT_EQ(hexadecimal(0x9AF, 4), "0x09AF");
    EXPECT_EQ(hexadecimal(0x12345, 4), "0x12345");
}

TEST(Numbers, OfLowBitsAreAllOnes) {
    EXPECT_EQ(lowBits(1), 1U);
    EXPECT_EQ(lowBits(63), ~std::uint64_t{0} >> 1U);
    EXPECT_EQ(lowBits(64), ~std::uint64_t{0});
}

} // namespace
} // namespace OrvaneTest
