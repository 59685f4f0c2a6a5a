// What becomes of open sessions when a program exits.
#include "tests/support/capi/FlatBoard.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Fault;

// A program beside a board; it runs until its input ends.
class Exit : public testing::Test, protected FlatBoard {
protected:
    void start(const std::string& mode) {
        const std::string command = "'" FLAT_EXIT_JOB "' " + mode + " " + device(1) + " " + board.address() +
                                    " 2>'" + complaints() + "'";
        program = popen(command.c_str(), "w");
        ASSERT_NE(program, nullptr);
    }
    // What the program exits with once it may; -1 when a signal ended it.
    int status() {
        const int ended = pclose(program);
        return WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    }
    int statusOf(const std::string& mode) {
        start(mode);
        return status();
    }
    void awaitCall(const char* procedure) {
        board.waitFor([&](const OrvaneSim::Request& request) { return request.procedure == procedure; });
    }
    std::size_t count(const char* procedure) const { return board.requestsOf(procedure).size(); }
    static std::string complaints() {
        return testing::TempDir() + "exit_job_" + std::to_string(getpid()) + ".log";
    }
    ~Exit() override { std::remove(complaints().c_str()); }

    std::FILE* program = nullptr;
};

TEST_F(Exit, ClosesTheSessionsOnTheBoard) {
    EXPECT_EQ(statusOf("wait"), 0);
    EXPECT_EQ(count("close_connection"), 1U);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(Exit, WhileThreadsReadIsNoCrash) {
    for (int run = 0; run < 15; ++run) {
        ASSERT_EQ(statusOf("threads"), 0) << "run " << run;
        ASSERT_EQ(board.sessionCount(), 0U);
    }
}

TEST_F(Exit, OfAForkedChildLeavesTheSessionsOfItsParentOpen) {
    EXPECT_EQ(statusOf("fork"), 0);
    EXPECT_EQ(count("open_connection"), 1U);
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(Exit, OfAProcessThatForkedBeforeItOpenedClosesItsSessions) {
    EXPECT_EQ(statusOf("as-child"), 0);
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(Exit, EndsWhenEveryPingIsAnsweredBusy) {
    board.inject({"keepAlive", "pingkeepalive", Fault::Kind::ResultCode, -1, -16});
    start("wait");
    awaitCall("pingkeepalive");
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(count("close_connection"), 1U);
}

TEST_F(Exit, EndsWhenTheBoardDoesNotAnswer) {
    start("wait");
    awaitCall("mdio_write");
    board.hang();
    EXPECT_EQ(status(), 0);
}

} // namespace
} // namespace OrvaneTest
