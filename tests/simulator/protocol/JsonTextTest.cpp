// JSON as recordings carry it.
#include "simulator/protocol/JsonText.h"

#include <gtest/gtest.h>
#include <limits>

namespace OrvaneSim {
namespace {

template <class Value>
std::string json(Value value) {
    std::string text;
    appendJson(text, value);
    return text;
}
std::string quoted(const std::string& text) {
    return json(std::string_view(text));
}

TEST(JsonText, EscapesQuotesBackslashesAndControlCharacters) {
    EXPECT_EQ(quoted("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(quoted(std::string("\b\t\n\f\r\0\x1B", 7)), R"("\b\t\n\f\r\u0000\u001b")");
}

TEST(JsonText, KeepsWhatIsUtf8) {
    EXPECT_EQ(quoted("\x7F \xC2\xB5 \xE2\x82\xAC \xF0\x9F\x94\xA7"),
              "\"\x7F \xC2\xB5 \xE2\x82\xAC \xF0\x9F\x94\xA7\"");
}

TEST(JsonText, ReplacesEachByteThatIsNoUtf8) {
    const std::string mark = "\xEF\xBF\xBD";
    EXPECT_EQ(quoted("a\xFFz"), "\"a" + mark + "z\"");
    EXPECT_EQ(quoted("\xE2\x82"), "\"" + mark + mark + "\"") << "cut short";
    EXPECT_EQ(quoted("\xC0\x80"), "\"" + mark + mark + "\"") << "too long a form";
    EXPECT_EQ(quoted("\xED\xA0\x80"), "\"" + mark + mark + mark + "\"") << "a surrogate";
    EXPECT_EQ(quoted("\xF4\x90\x80\x80"), "\"" + mark + mark + mark + mark + "\"") << "beyond U+10FFFF";
}

TEST(JsonText, WritesNumbersSoThatTheyAreReadBackAsTheyWere) {
    EXPECT_EQ(json(-2147483648), "-2147483648");
    EXPECT_EQ(json(static_cast<unsigned char>(200)), "200");
    EXPECT_EQ(json(25.0), "25.0");
    EXPECT_EQ(json(static_cast<double>(25.1F)), "25.100000381469727");
    EXPECT_EQ(json(std::numeric_limits<double>::infinity()), "null");
}

} // namespace
} // namespace OrvaneSim
