// A C99 program beside a board.
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/RunProgram.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

class MainJob : public testing::Test, protected FlatBoard {};

TEST_F(MainJob, IsDoneByAC99Program) {
    const ProgramOutcome outcome = runProgram("'" FLAT_MAIN_JOB "' " + device(1) + " 2>/dev/null");
    EXPECT_EQ(outcome.output, "device " + device(0) + "\ndevice " + device(1) +
                                  "\nadapter 1 of 2\n"
                                  "clause 45 CAFE\n"
                                  "clause 22 BEEF\n"
                                  "closed 0\n"
                                  "error Adapter isn't open.\n");
    EXPECT_EQ(outcome.status, 1); // for the failed access after the close
    EXPECT_EQ(board.registerValue(OrvaneSim::Space::C45, 1, 5, 0x1E0001), 0xCAFEU);
    EXPECT_EQ(board.sessionCount(), 0U);
}

} // namespace
} // namespace OrvaneTest
