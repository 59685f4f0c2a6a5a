// Rows as text, JSON and CSV, with hostile text in them.
#include "tools/orvane/output/Table.h"

#include "tests/support/tools/PrintedText.h"

#include <gtest/gtest.h>

namespace OrvaneTool {
namespace {

std::string printed(const Table& table, Format format) {
    return OrvaneTest::printedBy([&](Stream& stream) { table.print(stream, format); });
}

Table withCell(const Cell& cell) {
    Table table({{"name", "NAME"}, {"more", "MORE"}});
    table.add({cell, "x"});
    return table;
}

TEST(Table, LinesUpWhatItShowsOfControlCharacters) {
    EXPECT_EQ(printed(withCell("a\x1b\n"), Format::Text), "NAME       MORE\na\\x1b\\x0a  x\n");
}

TEST(Table, EscapesControlCharactersInJson) {
    EXPECT_EQ(printed(withCell("a\x1b\xc2\x9b\x7f"), Format::Json),
              "[\n  {\n    \"name\": \"a\\u001b\\u009b\\u007f\",\n    \"more\": \"x\"\n  }\n]\n");
}

TEST(Table, ShowsControlCharactersInCsv) {
    EXPECT_EQ(printed(withCell("a\x1b,\n"), Format::Csv), "name,more\n\"a\\x1b,\\x0a\",x\n");
}

TEST(Table, QuotesFormulasInCsvAsText) {
    for (const std::string text : {"=1+1", "+1", "-1+1", "@a", "-a", "--"})
        EXPECT_EQ(printed(withCell(text), Format::Csv), "name,more\n'" + text + ",x\n") << text;
}

TEST(Table, KeepsNegativeNumbersAndTheMarkOfNoValueInCsv) {
    for (const std::string text : {"-40", "-0.5", "-", "a=b", ""})
        EXPECT_EQ(printed(withCell(text), Format::Csv), "name,more\n" + text + ",x\n") << text;
}

TEST(Table, QuotesNoFormulaElsewhere) {
    EXPECT_EQ(printed(withCell("=1"), Format::Text), "NAME  MORE\n=1    x\n");
}

} // namespace
} // namespace OrvaneTool
