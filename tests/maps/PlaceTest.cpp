// Addresses: their texts and their order.
#include "tests/support/maps/MapTexts.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

TEST(Place, IsWrittenAsItIsRead) {
    for (const char* text :
         {"7.0x0001", "31.0xFFFF", "c22:0x1F", "ext32:0x80004000", "smbus:0x0010", "30.0xC000@3"})
        EXPECT_EQ(MapAddress::parse(text).text(), text);
}

TEST(Place, MayBeWrittenInDecimal) {
    EXPECT_EQ(MapAddress::parse("7.10").text(), "7.0x000A");
    EXPECT_EQ(MapAddress::parse("c22:4").text(), "c22:0x04");
}

TEST(Place, MayBeWrittenInHexadecimalAndBinaryWithEitherLetter) {
    for (const char* text : {"7.0x1A", "7.0X1a", "7.0b11010", "7.0B11010"})
        EXPECT_EQ(MapAddress::parse(text).text(), "7.0x001A") << text;
}

TEST(Place, BeyondItsSpaceIsRefused) {
    for (const char* text :
         {"32.0", "7.0x10000", "c22:32", "ext32:0x100000000", "7", "c23:1", "", "7.", ".1", "7.1@", "7.-1"})
        EXPECT_THROW(MapAddress::parse(text), MapError) << text;
}

TEST(Place, IsOrderedBySpaceMmdPageAndNumber) {
    EXPECT_LT(MapAddress::parse("1.5"), MapAddress::parse("3.0"));
    EXPECT_LT(MapAddress::parse("31.5"), MapAddress::parse("c22:0"));
    EXPECT_LT(MapAddress::parse("30.9"), MapAddress::parse("30.1@0"));
    EXPECT_LT(MapAddress::parse("30.9@0"), MapAddress::parse("30.1@1"));
}

TEST(Place, OfARegisterMayNotBeAFraction) {
    EXPECT_NE(problemsOf(R"("registers": {"R": {"at": 7.1}})").find("registers.R.at: '7.1' is no address"),
              std::string::npos);
}

TEST(Place, HasAPageOf32Bits) {
    EXPECT_EQ(MapAddress::parse("7.1@4294967295").page, 4294967295);
    EXPECT_THROW(MapAddress::parse("7.1@4294967296"), MapError);
}

TEST(Place, OfARegisterOf64BitsTakes8Bytes) {
    EXPECT_EQ(
        problemsOf(
            R"("registers": {"A": {"at": "ext32:0", "width": 64, "count": 2}, "B": {"at": "ext32:16"}})"),
        "");
}

} // namespace
} // namespace OrvaneTest
