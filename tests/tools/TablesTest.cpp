// Tables on a terminal that is narrow.
#include "tests/support/tools/Program.h"

#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <sstream>

namespace OrvaneTest {
namespace {

std::set<std::string> wordsOf(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

TEST(OrvaneTable, FitsTheTerminalAndBreaksNoWord) {
    const std::vector<Arguments> commands{
        {"decode", "7.1", "0x0004"}, {"map", "show", "AN.STATUS"}, {"map", "search", "link", "partner"}};
    for (const Arguments& words : commands) {
        const std::set<std::string> known = wordsOf(orvane(words).output);
        const Outcome narrow = Program(words, {{"NO_COLOR", "1"}}, Program::Streams::Narrow).finish();
        std::istringstream lines(narrow.output);
        std::size_t count = 0;
        for (std::string line; std::getline(lines, line); ++count) {
            EXPECT_LE(line.find_last_not_of('\r') + 1, 60U) << line;
            for (const std::string& word : wordsOf(line))
                EXPECT_EQ(known.count(word), 1U) << word << " in " << line;
        }
        EXPECT_GT(count, 5U);
        EXPECT_EQ(wordsOf(narrow.output), known);
    }
}

} // namespace
} // namespace OrvaneTest
