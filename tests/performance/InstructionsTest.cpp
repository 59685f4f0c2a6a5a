// The library's own instructions for each access.
#include "tests/support/OneBoard.h"
#include "tests/support/performance/Callgrind.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using namespace OrvaneTest;

// The most that one read may take, libtirpc, libc and kernel left out.
constexpr unsigned long kReadLimit = 1200;
constexpr unsigned long kRoutingAndLogging = 200;
constexpr unsigned long kOfAList = 873; // reads that a rack makes in one call
constexpr unsigned long kListedReadLimit = 40;

class OwnInstructions : public testing::Test {
protected:
    unsigned long of(const std::string& operation) { return instructionsOf(operation, lab.board.address()); }

    OneBoard lab;
};

TEST_F(OwnInstructions, OfAReadThroughTheClassesStayBelowTheLimit) {
    EXPECT_LE(of("class read"), kReadLimit);
}

TEST_F(OwnInstructions, OfAReadThroughTheFlatInterfaceStayBelowTheLimit) {
    EXPECT_LE(of("flat read"), kReadLimit);
}

TEST_F(OwnInstructions, OfAReadThroughARackStayBelowTheLimit) {
    // Pings of the rack's own thread count along when they fall into the reads.
    EXPECT_LE(std::min({of("rack read"), of("rack read"), of("rack read")}), kReadLimit);
}

TEST_F(OwnInstructions, OfEachReadOfAListThroughARackStayBelowTheLimit) {
    EXPECT_LE(std::min(of("rack list"), of("rack list")), kOfAList * kListedReadLimit);
}

TEST_F(OwnInstructions, OfALoggedAndRoutedReadAreFewMore) {
    EXPECT_LE(of("logged read"), kReadLimit + kRoutingAndLogging);
}

TEST_F(OwnInstructions, OfALogRecordWhileLoggingIsOffAreAFewAroundOneBranch) {
    EXPECT_LE(of("log record, off"), 8U);
}

} // namespace
