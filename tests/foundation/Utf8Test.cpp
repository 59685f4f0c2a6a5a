// UTF-8, read character by character, checked and written.
#include "ov_sys/Interface/foundation/Utf8.h"
#include "tests/support/NamedParam.h"

#include <array>
#include <gtest/gtest.h>
#include <string_view>
#include <utility>

namespace Orvane {
namespace {

struct Text {
    const char* name;
    std::string_view text;
    char32_t code;
    std::size_t bytes;
};

class FirstCharacter : public testing::TestWithParam<Text> {};

TEST_P(FirstCharacter, HasItsNumberAndItsLength) {
    const Utf8Character first = firstCharacter(GetParam().text);
    EXPECT_EQ(first.code, GetParam().code);
    EXPECT_EQ(first.bytes, GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Of, FirstCharacter,
                         testing::Values(Text{"Nul", std::string_view("\0z", 2), 0, 1},
                                         Text{"OneByte", "\x7F\x80", 0x7F, 1},
                                         Text{"TheFirstOfTwoBytes", "\xC2\x80z", 0x80, 2},
                                         Text{"TheLastOfTwoBytes", "\xDF\xBF", 0x7FF, 2},
                                         Text{"TheFirstOfThreeBytes", "\xE0\xA0\x80", 0x800, 3},
                                         Text{"TheLastBeforeTheSurrogates", "\xED\x9F\xBF", 0xD7FF, 3},
                                         Text{"TheFirstBehindTheSurrogates", "\xEE\x80\x80", 0xE000, 3},
                                         Text{"TheLastOfThreeBytes", "\xEF\xBF\xBF", 0xFFFF, 3},
                                         Text{"TheFirstOfFourBytes", "\xF0\x90\x80\x80", 0x10000, 4},
                                         Text{"TheLast", "\xF4\x8F\xBF\xBF", 0x10FFFF, 4}),
                         OrvaneTest::NamedParam());

INSTANTIATE_TEST_SUITE_P(IsMissingIn, FirstCharacter,
                         testing::Values(Text{"NoText", "", 0, 0}, Text{"AFollowingByte", "\x80", 0, 0},
                                         Text{"ACutOne", "\xE2\x82", 0, 0},
                                         Text{"OneInterrupted", "\xE2\x82z", 0, 0},
                                         Text{"TwoBytesForOne", "\xC1\xBF", 0, 0},
                                         Text{"ThreeBytesForTwo", "\xE0\x9F\xBF", 0, 0},
                                         Text{"FourBytesForThree", "\xF0\x8F\xBF\xBF", 0, 0},
                                         Text{"TheFirstSurrogate", "\xED\xA0\x80", 0, 0},
                                         Text{"TheLastSurrogate", "\xED\xBF\xBF", 0, 0},
                                         Text{"OneBeyondTheLast", "\xF4\x90\x80\x80", 0, 0},
                                         Text{"FiveBytes", "\xF8\x88\x80\x80\x80", 0, 0}),
                         OrvaneTest::NamedParam());

class VisibleCharacters : public testing::TestWithParam<std::pair<char32_t, char32_t>> {};

TEST_P(VisibleCharacters, EndAtTheFirstAndBeginBehindTheLastThatIsNone) {
    const auto& [first, last] = GetParam();
    EXPECT_TRUE(first == 0 || isVisible(first - 1));
    for (char32_t code = first; code <= last; ++code)
        EXPECT_FALSE(isVisible(code)) << static_cast<unsigned>(code);
    EXPECT_TRUE(isVisible(last + 1));
}

INSTANTIATE_TEST_SUITE_P(Around, VisibleCharacters,
                         testing::Values(std::pair{U'\0', U'\x1F'}, std::pair{U'\x7F', U'\x9F'},
                                         std::pair{U'\x061C', U'\x061C'}, std::pair{U'\x200E', U'\x200F'},
                                         std::pair{U'\x2028', U'\x202E'}, std::pair{U'\x2066', U'\x2069'},
                                         std::pair{U'\xFEFF', U'\xFEFF'}));

TEST(Utf8, IsATextOfNothingButCharacters) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("a\xC2\x80\xED\x9F\xBF\xF4\x8F\xBF\xBFz"));
    EXPECT_FALSE(isUtf8("a\xE2\x82z"));
    EXPECT_FALSE(isUtf8("a\xED\xA0\x80z"));
    EXPECT_FALSE(isUtf8("a\xE2\x82"));
}

class WrittenCharacter : public FirstCharacter {};

TEST_P(WrittenCharacter, IsReadAgain) {
    std::array<char, 4> bytes{};
    const char* const end = writeUtf8(GetParam().code, bytes.data());
    EXPECT_EQ(std::string_view(bytes.data(), static_cast<std::size_t>(end - bytes.data())), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Of, WrittenCharacter,
                         testing::Values(Text{"OneByte", "\x7F", 0x7F, 1},
                                         Text{"TheFirstOfTwoBytes", "\xC2\x80", 0x80, 2},
                                         Text{"TheLastOfTwoBytes", "\xDF\xBF", 0x7FF, 2},
                                         Text{"TheFirstOfThreeBytes", "\xE0\xA0\x80", 0x800, 3},
                                         Text{"TheLastOfThreeBytes", "\xEF\xBF\xBF", 0xFFFF, 3},
                                         Text{"TheFirstOfFourBytes", "\xF0\x90\x80\x80", 0x10000, 4},
                                         Text{"TheLast", "\xF4\x8F\xBF\xBF", 0x10FFFF, 4}),
                         OrvaneTest::NamedParam());

} // namespace
} // namespace Orvane
