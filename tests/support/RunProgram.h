// Runs another program beside the test's boards.
#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace OrvaneTest {

struct ProgramOutcome {
    std::string output; // on its standard output
    int status;         // of its exit; -1 when it ended otherwise
};

// Runs the shell's command line and waits for its end.
inline ProgramOutcome runProgram(const std::string& command) {
    std::FILE* pipe = popen(command.c_str(), "re");
    if (pipe == nullptr)
        return {"cannot run " + command, -1};
    std::string output;
    std::array<char, 256> piece;
    while (std::fgets(piece.data(), piece.size(), pipe) != nullptr)
        output += piece.data();
    const int status = pclose(pipe);
    return {output, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

} // namespace OrvaneTest
