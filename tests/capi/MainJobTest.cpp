// A C99 program beside a board.
#include "tests/capi/FlatBoard.h"

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

namespace OrvaneTest {
namespace {

struct Outcome {
    std::string output;
    int status;
};

Outcome runProgram(const std::string& command) {
    std::FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return {"cannot run " + command, -1};
    std::string output;
    std::array<char, 256> piece;
    while (std::fgets(piece.data(), piece.size(), pipe) != nullptr)
        output += piece.data();
    const int status = pclose(pipe);
    return {output, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

class MainJob : public testing::Test, protected FlatBoard {};

TEST_F(MainJob, IsDoneByAC99Program) {
    const Outcome outcome = runProgram("'" FLAT_MAIN_JOB "' " + device(1) + " 2>/dev/null");
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
