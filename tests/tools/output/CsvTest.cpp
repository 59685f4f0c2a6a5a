// Fields of comma-separated values, with hostile text in them.
#include "tools/orvane/output/Csv.h"

#include <gtest/gtest.h>

namespace OrvaneTool {
namespace {

TEST(CsvField, ShowsControlCharacters) {
    EXPECT_EQ(csvField(Cell("a\x1b,\n")), "\"a\\x1b,\\x0a\"");
}

TEST(CsvField, QuotesFormulasAsText) {
    for (const std::string text : {"=1+1", "+1", "-1+1", "@a", "-a", "--"})
        EXPECT_EQ(csvField(Cell(text)), "'" + text);
}

TEST(CsvField, KeepsNegativeNumbersAndTheMarkOfNoValue) {
    for (const std::string text : {"-40", "-0.5", "-", "a=b", ""})
        EXPECT_EQ(csvField(Cell(text)), text);
}

TEST(CsvField, OfAListOfObjectsIsItsText) {
    const Cell fields("LINK 1, UP 0", nlohmann::ordered_json{{{"field", "LINK"}}, {{"field", "UP"}}});
    EXPECT_EQ(csvField(fields), "\"LINK 1, UP 0\"");
}

} // namespace
} // namespace OrvaneTool
