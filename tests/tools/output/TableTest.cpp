// Rows as text that lines up, with hostile text in them.
#include "tools/orvane/output/Table.h"

#include "tests/support/tools/PrintedText.h"

#include <gtest/gtest.h>

namespace OrvaneTool {
namespace {

std::string printed(const Table& table) {
    return OrvaneTest::printedBy([&](Stream& stream) { table.print(stream); });
}

Table withCell(const Cell& cell) {
    Table table({{"name", "NAME"}, {"more", "MORE"}});
    table.add({cell, "x"});
    return table;
}

TEST(Table, LinesUpWhatItShowsOfControlCharacters) {
    EXPECT_EQ(printed(withCell("a\x1b\n")), "NAME       MORE\na\\x1b\\x0a  x\n");
}

TEST(Table, QuotesNoFormula) {
    EXPECT_EQ(printed(withCell("=1")), "NAME  MORE\n=1    x\n");
}

TEST(Table, WithoutRowsIsNothing) {
    EXPECT_EQ(printed(Table(std::vector<Column>{{"name", "NAME"}})), "");
}

TEST(Table, PrintsRowsThatNobodyKeeps) {
    int rounds = 0;
    const std::string text = OrvaneTest::printedBy([&](Stream& stream) {
        const std::size_t lines = printRows(stream, {{"", "N", true}}, [&](const auto& take) {
            ++rounds;
            for (const int each : {1, 200})
                take({each});
        });
        EXPECT_EQ(lines, 3U);
    });
    EXPECT_EQ(text, "  N\n  1\n200\n");
    EXPECT_EQ(rounds, 2);
}

} // namespace
} // namespace OrvaneTool
