// orvane exec.
#include "tests/support/tools/Program.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

struct OrvaneExec : testing::Test, OneBoardLab {};

TEST_F(OrvaneExec, PassesOutputErrorOutputAndStatusThrough) {
    board.setCommand("both --ways", {3, "out\nof here", "wrong\n", 0});
    EXPECT_EQ(run({"exec", "OV0001:0", "--", "both", "--ways"}), fails(3, "wrong\n", "out\nof here"));
}

TEST_F(OrvaneExec, ShowsControlCharactersOnATerminalAndPassesThemElsewhere) {
    board.setCommand("ls", {0, "\x1b[31mred\x1b[0m\ta\r\n", "", 0});
    EXPECT_EQ(run({"exec", "OV0001:0", "ls"}), prints("\x1b[31mred\x1b[0m\ta\r\n"));
    const Outcome shown = orvaneOnTerminal({"exec", "OV0001:0", "ls"}, environment());
    EXPECT_THAT(shown.output, testing::HasSubstr("\\x1b[31mred\\x1b[0m\ta\\x0d\r\n"));
    EXPECT_THAT(shown.output, testing::Not(testing::HasSubstr("\x1b[31m")));
}

TEST_F(OrvaneExec, OfACommandThatSucceedsSucceeds) {
    EXPECT_EQ(run({"exec", "OV0001:0", "hostname"}), prints("OV0001\n"));
}

TEST_F(OrvaneExec, EndsWhenTheCommandOutlastsItsTime) {
    board.setCommand("sleep", {0, "", "", 3600});
    EXPECT_EQ(run({"exec", "OV0001:0", "--timeout", "1", "sleep"}),
              fails(1, "orvane: OV0001:0: exec sleep: it did not end within 1 s\n"));
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(OrvaneExec, ClosesItsSessionAfterCtrlCWhileTheCommandRuns) {
    board.setCommand("sleep", {0, "", "", 3600});
    Program program({"exec", "OV0001:0", "sleep"}, environment());
    board.waitFor([](const OrvaneSim::Request& request) { return request.procedure == "execute_command"; });
    program.signal(SIGINT);
    board.waitFor([](const OrvaneSim::Request& request) { return request.procedure == "close_connection"; });
    EXPECT_EQ(program.finish(), fails(130, ""));
}

} // namespace
} // namespace OrvaneTest
