// orvane-sim: serves simulated boards until it is told to stop.
#include "simulator/commands/BoardFlags.h"
#include "simulator/commands/Signals.h"
#include "simulator/engine/Sockets.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

namespace {

constexpr const char* kExamples = R"(
Without --address, boards are served at 127.0.0.2 and up. Each board answers at its own
address: port mapper (port 111, which takes root), programs, discovery probe (port 12345).

Examples:
  orvane-sim                                       one board, OV0001, at 127.0.0.2
  orvane-sim --address 127.0.0.9 --serial LAB7     one board of that name there
  orvane-sim --boards 20 --serial-prefix RACK      RACK0001 to RACK0020

To have boards found by multicast, see orvane-lab. Ends on Ctrl-C or SIGTERM.
)";

void serve(const OrvaneSim::BoardFlags& flags, const OrvaneSim::StopSignals& signals) {
    OrvaneSim::raiseDescriptorLimit();
    OrvaneSim::Lab lab;
    addAll(lab, flags.options());
    for (const OrvaneSim::Board* board : lab.boards())
        std::printf("board %s at %s: %s\n", board->serial().c_str(), board->address().c_str(),
                    board->nameLine().c_str());
    std::puts("ready");
    std::fflush(stdout);
    signals.wait();
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Serves simulated boards at addresses of this machine."};
    app.footer(kExamples);
    OrvaneSim::BoardFlags flags;
    flags.addTo(app);
    CLI11_PARSE(app, argc, argv);
    try {
        const OrvaneSim::StopSignals signals;
        serve(flags, signals);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvane-sim: %s\n", problem.what());
        return 1;
    }
}
