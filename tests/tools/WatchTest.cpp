// orvane watch.
#include "tests/support/tools/Program.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Space;
using testing::HasSubstr;

bool isBlock(const OrvaneSim::Request& request) {
    return request.program == "mdio";
}

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

TEST_F(OrvaneWatch, PrintsChangesOnATerminalThatIsTooSmall) {
    const Outcome outcome = orvaneOnTerminal(
        {"watch", "OV0001:0", "3", "1.0+60", "--interval", "0", "--count", "2"}, environment());
    EXPECT_THAT(outcome.output, HasSubstr("1 1.0x0001 0x0001\r\n1 1.0x0002 0x0A5C\r\n"));
    EXPECT_EQ(outcome.output.find("\033[62A"), std::string::npos);
}

TEST_F(OrvaneWatch, MarksTheBitsThatChangedInColour) {
    EXPECT_THAT(
        orvaneOnTerminal(watch, environment()).output,
        HasSubstr("0x000\033[31m1\033[0m  0000 0000 0000 000\033[31m1\033[0m        \033[33m1\033[0m"));
}

TEST_F(OrvaneWatch, EndsWellAfterCtrlCAndClosesItsSession) {
    Program program({"watch", "OV0001:0", "3", "1.2", "--interval", "60000"}, environment());
    board.waitFor(isBlock);
    program.signal(SIGINT);
    board.waitFor([](const OrvaneSim::Request& request) { return request.procedure == "close_connection"; });
    EXPECT_EQ(program.finish(), prints("1 1.0x0002 0x0A5C\n"));
    EXPECT_EQ(board.sessionCount(), 0U);
}

} // namespace
} // namespace OrvaneTest
