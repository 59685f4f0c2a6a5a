// Runs a command on a board.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>

using namespace std::chrono_literals;

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::BoardShell shell = rack.open("OV0001:0").phy(3).shell();
        shell.ping(); // throws when nobody answers
        const Orvane::BoardShell::Outcome outcome = shell.run("cat /boardInfo/name", 5s);
        std::printf("exit status %d\n%s", outcome.status, outcome.output.c_str());
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
