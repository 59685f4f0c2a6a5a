// The reader of JSON: what it takes and refuses, beside another reader, and where it says that things stand.
#include "ov_sys/maps/Json.h"

#include "tests/support/maps/MapTexts.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <vector>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using namespace Orvane::Maps;

std::string failureOf(const std::string& text, JsonBudget budget = {}) {
    Problems problems;
    const JsonDocument document("f", text, budget, problems);
    try {
        problems.throwIfAny();
    } catch (const MapError& error) {
        return error.what();
    }
    return "";
}

TEST(Json, TakesAndRefusesWhatAnotherReaderDoes) {
    for (const char* text : {"{}",
                             "[]",
                             "null",
                             "true",
                             "false",
                             "0",
                             "-0",
                             "1.5e-3",
                             "1E5",
                             "\"\"",
                             "[1, 2]",
                             "{\"a\": [{}]}",
                             " 1 ",
                             "01",
                             "1.",
                             ".5",
                             "+1",
                             "-",
                             "1e",
                             "--1",
                             "[1,]",
                             "{\"a\":1,}",
                             "{a:1}",
                             "{\"a\" 1}",
                             "[1 2]",
                             "\"a",
                             "\"\t\"",
                             "\"\\x\"",
                             "\"\\u12\"",
                             "\"\\ud800\"",
                             "\"\\udc00\"",
                             "\"\\ud83d\\ude00\"",
                             "\"\\u00e9\"",
                             "nul",
                             "tru",
                             "truefalse",
                             "",
                             " ",
                             "1 1",
                             "[",
                             "{",
                             "]",
                             "[]]",
                             "/* */ 1",
                             "// \n1",
                             "NaN",
                             "Infinity",
                             "'a'",
                             "\"\xC3\xA9\"",
                             "\"\xC3\"",
                             "\"\xC0\x80\"",
                             "\"\xED\xA0\x80\"",
                             "\"\xF4\x90\x80\x80\"",
                             "\"\xF0\x9F\x98\x80\"",
                             "\"\x7F\"",
                             "\"\\/\"",
                             "1e+5",
                             "\"\\\n\"",
                             "\"\\\t\"",
                             "\"\\udc00\\udc00\"",
                             "[1/]",
                             "[1:]",
                             "[\t1]",
                             "[\r1]",
                             "[\v1]",
                             "[\b1]",
                             "\"\x1F\"",
                             "\"\\udfff\"",
                             "\"\\udbff\"",
                             "\"\\ud800\\udbff\"",
                             "\"\\ud800\\ue000\"",
                             "\xEF\xBB\xBF"
                             "1x"})
        EXPECT_EQ(failureOf(text).empty(), nlohmann::json::accept(text)) << text;
}

TEST(Json, ReadsStringsWithoutTheirEscapes) {
    JsonBudget budget;
    Problems problems;
    const std::string text = R"(["a\"\\\/\b\f\n\r\t\u0041\u00e9\u20ac\ud83d\ude00z"])";
    const JsonDocument document("f", text, budget, problems);
    ASSERT_NE(document.root(), nullptr);
    EXPECT_EQ(document.root()->first->text, nlohmann::json::parse(text)[0].get<std::string>());
}

TEST(Json, KnowsTheLineAndPathOfEachValue) {
    JsonBudget budget;
    Problems problems;
    const JsonDocument document("file.json", "{\n\"a\": [1,\n {\"b\": 2}]}", budget, problems);
    const JsonValue& b = *document.root()->member("a")->first->next->member("b");
    EXPECT_EQ(b.text, "2");
    EXPECT_EQ(b.position().file, "file.json");
    EXPECT_EQ(b.position().line, 3U);
    EXPECT_EQ(b.position().path, "a[1].b");
}

TEST(Json, SaysWhereItGaveUp) {
    EXPECT_EQ(failureOf("{\"a\": [1,\n 2,, 3]}"), "f:2: a[2]: a value is missing");
    EXPECT_EQ(failureOf("{\"a\": {\n\"b\": \"x\n\"}}"),
              "f:2: a.b: a line or a control character within a string");
    EXPECT_EQ(failureOf("{} {}"), "f:1: something follows the value");
}

TEST(Json, RefusesTwoMembersOfOneName) {
    EXPECT_EQ(failureOf("{\"a\": {\"b\": 1,\n\"c\": 2, \"b\": 3}}"), "f:2: a.b: is there twice");
}

TEST(Json, RefusesValuesDeeperThan32) {
    EXPECT_EQ(failureOf(std::string(33, '[') + std::string(33, ']')), "");
    EXPECT_NE(failureOf(std::string(34, '[') + std::string(34, ']')).find("deeper within each other than 32"),
              std::string::npos);
}

TEST(Json, RefusesMoreThanItsBudget) {
    JsonBudget budget;
    budget.values = 3;
    EXPECT_EQ(failureOf("[1, 2]", budget), "");
    EXPECT_NE(failureOf("[1, 2, 3]", budget).find("more values than"), std::string::npos);
    budget.bytes = 5;
    EXPECT_NE(failureOf("[1, 2]", budget).find("is larger than"), std::string::npos);
}

TEST(Json, ReadsEachHexadecimalDigitAndEndOfTheSurrogates) {
    Problems problems;
    JsonBudget budget;
    const std::string text = R"(["\uABCD\uEF00\uabcd\uef09", "\ud800\udc00\udbff\udfff\ud7ff\ue000"])";
    const JsonDocument document("f", text, budget, problems);
    ASSERT_NE(document.root(), nullptr);
    EXPECT_EQ(document.root()->first->text, nlohmann::json::parse(text)[0].get<std::string>());
    EXPECT_EQ(document.root()->first->next->text, nlohmann::json::parse(text)[1].get<std::string>());
}

TEST(Json, TellsOfEscapesThatAreNoCharacters) {
    for (const char* text : {R"("\u00g0")", R"("\u00")", R"("\ud800")", R"("\ud800\ud800")", R"("\udc00")",
                             R"("\udc00\udc00")", R"("\udfff\udfff")"})
        EXPECT_EQ(failureOf(text), "f:1: an escape that JSON does not have") << text;
}

TEST(Json, KeepsTheKindsOfWordsApart) {
    JsonBudget budget;
    Problems problems;
    const JsonDocument document("f", "[true, false, null]", budget, problems);
    std::vector<JsonValue::Kind> kinds;
    for (const JsonValue& each : *document.root())
        kinds.push_back(each.kind);
    EXPECT_EQ(kinds,
              (std::vector{JsonValue::Kind::boolean, JsonValue::Kind::boolean, JsonValue::Kind::null}));
}

TEST(Json, TakesATextThatIsAsLongAsItsBudget) {
    JsonBudget budget;
    budget.bytes = 6;
    EXPECT_EQ(failureOf("[1, 2]", budget), "");
}

TEST(Json, RefusesATenthMemberOfTheNameOfAnother) {
    std::string members;
    for (int i = 0; i < 9; ++i)
        members += "\"m" + std::to_string(i) + "\": 1, ";
    for (const char* twin : {"m0", "m7", "m8"})
        EXPECT_EQ(failureOf('{' + members + '"' + twin + "\": 1}"),
                  std::string("f:1: ") + twin + ": is there twice");
    EXPECT_EQ(failureOf('{' + members + "\"m9\": 1}"), "");
}

TEST(Json, Has400000ValuesAnd8MiBAtMost) {
    std::string values = "[0";
    for (int i = 1; i < 399999; ++i)
        values += ",0";
    EXPECT_EQ(failureOf(values + ']'), "");
    EXPECT_EQ(failureOf(values + ",0]"), "f:1: there are more values than the 400000 of a map");
    const std::string all = values.substr(0, values.size() - 2 * 3); // beside those of the map itself
    EXPECT_EQ(problemsOf("\"x\": " + all + ']'), "map:1: x: is not known here");
    EXPECT_EQ(problemsOf("\"x\": " + all + ",0]"),
              "map:1: x: there are more values than the 400000 of a map");
    const std::string blanks((8U << 20U) - 1, ' ');
    EXPECT_EQ(failureOf(blanks + '0'), "");
    EXPECT_EQ(failureOf(blanks + "00"), "f: is larger than 8 MiB, with what it is included with");
}

} // namespace
} // namespace OrvaneTest
