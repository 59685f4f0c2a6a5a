// A program that unloads the library.
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/RunProgram.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

class Unloading : public testing::Test, protected FlatBoard {};

TEST_F(Unloading, ClosesTheSessionsAndLeavesNothingOfTheLibrary) {
    board.setRegister(OrvaneSim::Space::C45, 0, 3, 0x10002, 0xCAFE);
    const ProgramOutcome outcome =
        runProgram("'" FLAT_UNLOADING "' '" ORVANE_LIBRARY "' " + device(0) + " 2>/dev/null");
    EXPECT_EQ(outcome.output, "opened 1\n"
                              "read CAFE\n"
                              "error Invalid adapter index\n"
                              "more threads 1\n"
                              "then: more threads 0, mapped 0\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(board.sessionCount(), 0U);
}

} // namespace
} // namespace OrvaneTest
