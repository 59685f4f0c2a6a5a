// orvane watch.
#include "tests/support/tools/Program.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Space;
using testing::HasSubstr;

// Clause 22 register 14 is made a window that moves on with each access, so that every sample differs.
struct OrvaneWatch : testing::Test, OneBoardLab {
    OrvaneWatch() {
        board.setRegister(Space::C22, 0, 3, 13, 0x8001);
        board.setRegister(Space::C45, 0, 3, 1U << 16U | 1U, 0x0001);
    }
    const Arguments watch{"watch", "OV0001:0", "3", "--c22", "14", "2", "--interval", "0", "--count", "3"};
};

TEST_F(OrvaneWatch, PrintsEverythingOnceAndThenEachChange) {
    EXPECT_EQ(run(watch), prints("1 0x0E 0x0000\n"
                                 "1 0x02 0x0A5C\n"
                                 "2 0x0E 0x0001 was 0x0000, change 1\n"
                                 "3 0x0E 0x0A5C was 0x0001, change 2\n"));
}

TEST_F(OrvaneWatch, RedrawsInPlaceOnATerminal) {
    Environment plain = environment();
    plain["NO_COLOR"] = "1";
    const Outcome outcome = orvaneOnTerminal(watch, plain);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("OV0001:0 PHY 3, every 0 ms, sample 1\r\n"
                                          "ADDRESS  VALUE   BITS                 CHANGES\r\n"
                                          "0x0E     0x0000  0000 0000 0000 0000        0\r\n"
                                          "0x02     0x0A5C  0000 1010 0101 1100        0\r\n"
                                          "\033[4A\033[JOV0001:0 PHY 3, every 0 ms, sample 2\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr("0x0E     0x0A5C  0000 1010 0101 1100        2\r\n"));
}

TEST_F(OrvaneWatch, ScrollsByKeysOnATerminalThatIsTooSmall_UntilQ) {
    Program program({"watch", "OV0001:0", "3", "1.0+60", "--interval", "600000"}, environment(),
                    Program::Streams::Terminal);
    program.type("\033[F\033[A");
    program.type("q");
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr(", sample 1, rows 1 to 47 of 60\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr("\033[49A\033[J"));
    EXPECT_THAT(outcome.output, HasSubstr(", sample 1, rows 14 to 60 of 60\r\n"));
    EXPECT_THAT(outcome.output, HasSubstr(", sample 1, rows 13 to 59 of 60\r\n"));
}

TEST_F(OrvaneWatch, MarksTheBitsThatChangedInColour) {
    EXPECT_THAT(
        orvaneOnTerminal(watch, environment()).output,
        HasSubstr("0x000\033[31m1\033[0m  0000 0000 0000 000\033[31m1\033[0m        \033[33m1\033[0m"));
}

TEST_F(OrvaneWatch, EndsWellAfterCtrlCAndClosesItsSession) {
    Program program({"watch", "OV0001:0", "3", "1.2", "--interval", "60000"}, environment());
    program.waitForOutput("1 1.0x0002 0x0A5C\n");
    program.signal(SIGINT);
    board.waitFor([](const OrvaneSim::Request& request) { return request.procedure == "close_connection"; });
    EXPECT_EQ(program.finish(), prints("1 1.0x0002 0x0A5C\n"));
    EXPECT_EQ(board.sessionCount(), 0U);
}

} // namespace
} // namespace OrvaneTest
