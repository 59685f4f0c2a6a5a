// What becomes of watch, ping and dump when a board is away, when they are told to end, and when nobody
// reads.
#include "tests/support/tools/Program.h"

#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

using OrvaneSim::Fault;
using OrvaneSim::Space;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* kGap = "gap [0-9:.TZ-]+ to [0-9:.TZ-]+: [a-z ]+";

struct OrvaneGap : testing::Test, OneBoardLab {
    void set(unsigned value) { board.setRegister(Space::C45, 0, 3, 0x1EC010, value); }
    // Answers nothing until it is told to.
    void goAway() { board.inject({"", "", Fault::Kind::LoseRequest, -1, 0}); }
    void comeBack() { board.clearFaults(); }
};

// The board is away for longer than a sample waits, which is a second.
TEST_F(OrvaneGap, OfABoardThatIsWatchedIsMarkedAndCounted) {
    set(1);
    Program program({"watch", "OV0001:0", "3", "30.0xC010", "--interval", "20"}, environment());
    program.waitForOutput("1 30.0xC010 0x0001\n");
    goAway();
    const auto begun = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - begun < std::chrono::milliseconds(2500))
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    set(2);
    comeBack();
    program.waitForOutput("was 0x0001, change 1\n");
    program.signal(SIGINT);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, MatchesRegex("1 30.0xC010 0x0001\n[0-9]+ " + std::string(kGap) +
                                             "\n[0-9]+ 30.0xC010 0x0002 was 0x0001, change 1\n"));
    EXPECT_THAT(outcome.error, MatchesRegex("orvane: OV0001:0 PHY 3, 1 gap of [0-9.]+ s\n"));
}

TEST_F(OrvaneGap, OfARestartIsNoneAtAll) {
    set(1);
    Program program({"watch", "OV0001:0", "3", "30.0xC010", "--interval", "20"}, environment());
    program.waitForOutput("1 30.0xC010 0x0001\n");
    board.forgetSessions();
    set(2);
    program.waitForOutput("was 0x0001, change 1\n");
    program.signal(SIGINT);
    EXPECT_EQ(program.finish().status, 0);
}

TEST_F(OrvaneGap, OfPingsIsMarkedAndCounted) {
    Program program({"ping", "OV0001:0", "-i", "20"}, environment());
    program.waitForOutput("seq=1 time=");
    goAway();
    program.waitForOutput("lost\n");
    comeBack();
    program.waitForOutput(": gap ");
    program.signal(SIGINT);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                MatchesRegex("(.*\n)*OV0001:0 at 10.83.0.1: " + std::string(kGap) + "\n(.*\n)*"));
    EXPECT_THAT(outcome.output, MatchesRegex("(.*\n)*[0-9]+ sent, [0-9]+ received, [0-9.]+ % lost, 1 gap of "
                                             "[0-9.]+ s\nmin .*\n"));
}

// Every read behind the first block is lost for longer than one read lasts, which is 5 s.
void loseSecondBlock(OrvaneSim::Board& board) {
    using Clock = std::chrono::steady_clock;
    board.onRequest([&board, reads = 0, begun = Clock::time_point()](const OrvaneSim::Request& each) mutable {
        if (each.procedure != "mdio_read" || ++reads == 1)
            return;
        if (reads == 2) {
            begun = Clock::now();
            board.inject({"mdio", "mdio_read", Fault::Kind::LoseRequest, -1, 0});
        } else if (Clock::now() - begun > std::chrono::milliseconds(5500)) {
            board.clearFaults();
        }
    });
}

TEST_F(OrvaneGap, OfADumpIsToldAndLeavesNoHoleInItsFile) {
    for (unsigned i = 0; i < 600; ++i)
        board.setRegister(Space::C45, 0, 3, 0x1EC000 + i, 0x4000 + i);
    const Folder folder;
    const std::string file = folder.path("a.dump");
    loseSecondBlock(board);
    const Outcome outcome = orvane({"dump", "OV0001:0", "3", "30.0xC000+600", "-o", file}, environment());
    EXPECT_EQ(outcome.status, 0) << outcome;
    EXPECT_THAT(outcome.output, MatchesRegex(file + ": 600 registers, 1 gap of [0-9.]+ s\n"));
    EXPECT_THAT(outcome.error, MatchesRegex("orvane: dump: " + std::string(kGap) + "\n"));
    for (const char* line : {"\n30.0xC000 0x4000\n", "\n30.0xC0FF 0x40FF\n30.0xC100 0x4100\n",
                             "\n30.0xC1FF 0x41FF\n30.0xC200 0x4200\n", "\n30.0xC257 0x4257\n"})
        EXPECT_THAT(folder.content("a.dump"), HasSubstr(line));
}

TEST_F(OrvaneGap, OfADumpIsStatus1WhenStrict) {
    const Folder folder;
    loseSecondBlock(board);
    const Outcome outcome = orvane(
        {"dump", "OV0001:0", "3", "30.0xC000+300", "--strict", "-o", folder.path("a.dump")}, environment());
    EXPECT_EQ(outcome.status, 1) << outcome;
    EXPECT_THAT(outcome.output, HasSubstr(": 300 registers, 1 gap of "));
}

TEST_F(OrvaneGap, OfPingsIsStatus1WhenStrict) {
    Program program({"ping", "OV0001:0", "-i", "20", "--strict"}, environment());
    program.waitForOutput("seq=1 time=");
    goAway();
    program.waitForOutput("lost\n");
    comeBack();
    program.waitForOutput(": gap ");
    program.signal(SIGINT);
    EXPECT_EQ(program.finish().status, 1);
}

struct OrvaneSignal : testing::TestWithParam<std::pair<int, int>>, OneBoardLab {};

INSTANTIATE_TEST_SUITE_P(Each, OrvaneSignal,
                         testing::Values(std::pair(SIGHUP, 129), std::pair(SIGINT, 0),
                                         std::pair(SIGTERM, 143)),
                         [](const auto& test) { return "S" + std::to_string(test.param.first); });

TEST_P(OrvaneSignal, EndsAWatchWithItsStatusAndClosesTheSession) {
    Program program({"watch", "OV0001:0", "3", "1.2", "--interval", "600000"}, environment());
    program.waitForOutput("1 1.0x0002 0x0A5C\n");
    program.signal(GetParam().first);
    EXPECT_EQ(program.finish(), fails(GetParam().second, "", "1 1.0x0002 0x0A5C\n"));
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_P(OrvaneSignal, EndsPingsWithItsStatusAndASummary) {
    Program program({"ping", "OV0001:0", "-i", "600000"}, environment());
    program.waitForOutput("seq=1 time=");
    program.signal(GetParam().first);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.status, GetParam().second);
    EXPECT_THAT(outcome.output, HasSubstr("1 sent, 1 received, 0.0 % lost\n"));
}

TEST_P(OrvaneSignal, EndsAWatchOfATemperatureWithItsStatusAndClosesTheSession) {
    run({"thermal", "connect", "OV0001:0"});
    Program program({"thermal", "watch", "OV0001:0", "0", "--interval", "600000"}, environment());
    program.waitForOutput("1 25.00\n");
    program.signal(GetParam().first);
    EXPECT_EQ(program.finish(), fails(GetParam().second, "", "1 25.00\n"));
    EXPECT_EQ(board.sessionCount(), 0U);
}

struct OrvaneUntil : testing::Test, OneBoardLab {
    void link(bool up) { board.setRegister(Space::C45, 0, 3, 0x070001, up ? 4 : 0); }
    Outcome until(const std::string& condition, const Arguments& more = {}) const {
        Arguments words{"watch", "OV0001:0", "3", "1.2", "--until", condition, "--interval", "10"};
        words.insert(words.end(), more.begin(), more.end());
        return run(words);
    }
};

TEST_F(OrvaneUntil, EndsTheWatchAsSoonAsItIsTrue) {
    link(false);
    Program program(
        {"watch", "OV0001:0", "3", "AN.STATUS", "--until", "AN.STATUS.LINK==1", "--interval", "10"},
        environment());
    program.waitForOutput("1 7.0x0001 0x0000\n");
    link(true);
    const Outcome outcome = program.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                MatchesRegex("1 7.0x0001 0x0000\n[0-9]+ 7.0x0001 0x0004 was 0x0000, change 1\n"));
}

TEST_F(OrvaneUntil, FailsWhenItsTimeIsOver) {
    link(false);
    EXPECT_EQ(until("AN.STATUS.LINK==1", {"--timeout", "0.05"}),
              fails(1, "orvane: watch: AN.STATUS.LINK==1 did not come true\n",
                    "1 1.0x0002 0x0A5C\n1 7.0x0001 0x0000\n"));
}

TEST_F(OrvaneUntil, ComparesRegistersByNumberToo) {
    EXPECT_EQ(until("1.2>=0x0A5C"), prints("1 1.0x0002 0x0A5C\n"));
    EXPECT_EQ(until("1.2<2652", {"--count", "1"}).status, 1);
}

TEST_F(OrvaneUntil, IsRefusedWhenItIsNoCondition) {
    EXPECT_EQ(
        until("AN.STATUS.LINK"),
        fails(2, "orvane: 'AN.STATUS.LINK' is no condition: it is NAME==VALUE, or with != < <= > or >=\n"));
}

// Nothing changes, so that nothing is written that would show that the reader is gone.
TEST_F(OrvaneGap, WatchEndsWhenItsReaderIsGone) {
    EXPECT_EQ(
        shellOutput(
            "ORVANE_ADDRESS=10.83.0.1 timeout 60 $ORVANE_TOOL watch OV0001:0 3 1.2 --interval 20 | head -1; "
            "echo done"),
        "1 1.0x0002 0x0A5C\ndone\n");
}

} // namespace
} // namespace OrvaneTest
