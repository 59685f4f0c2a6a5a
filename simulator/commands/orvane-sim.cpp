// orvane-sim: serves simulated boards until it is told to stop, and tells running labs what to do.
#include "simulator/commands/CtlCommand.h"
#include "simulator/commands/RunningLab.h"
#include "simulator/commands/Signals.h"
#include "simulator/engine/Sockets.h"
#include "tools/commandline/Documents.h"
#include "tools/commandline/HelpFormatter.h"
#include "tools/commandline/Wrap.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <unistd.h>

namespace {

constexpr int kWrongWords = 2;

constexpr const char* kExamples = R"(
Without --address, boards are served at 127.0.0.2 and up. Each board answers at its own
address: port mapper (port 111, which takes root), programs, discovery probe (port 12345).

Examples:
  orvane-sim                                       one board, OV0001, at 127.0.0.2
  orvane-sim --address 127.0.0.9 --serial LAB7     one board of that name there
  orvane-sim --boards 20 --serial-prefix RACK      RACK0001 to RACK0020
  orvane-sim --lab rack.json --record calls.jsonl  the boards of a file, every request kept
  orvane-sim ctl OV0001 lose-reply 3               tell a running lab; see orvane-sim ctl --help

To have boards found by multicast, see orvane-lab. Ends on Ctrl-C or SIGTERM with status 0;
1 means that the lab cannot be had, 2 that the command line is wrong.
)";

void serve(const OrvaneSim::LabFlags& flags, const OrvaneSim::StopSignals& signals) {
    const OrvaneSim::LabSetup setup = flags.setup(OrvaneSim::loopbackPlace());
    OrvaneSim::raiseDescriptorLimit();
    OrvaneSim::RunningLab running(setup, flags);
    const auto boards = running.lab().boards();
    for (const OrvaneSim::Board* board : boards)
        std::printf("board %s at %s: %s\n", board->serial().c_str(), board->address().c_str(),
                    board->nameLine().c_str());
    if (!boards.empty())
        std::printf("reach each by its address, for no multicast gets there: orvane info %s:0 --address %s\n",
                    boards.front()->serial().c_str(), boards.front()->address().c_str());
    std::puts("ready");
    std::fflush(stdout);
    signals.wait();
    running.finish();
}

int run(int argc, char** argv) {
    CLI::App app{"Serves simulated boards at addresses of this machine.", "orvane-sim"};
    app.formatter(std::make_shared<OrvaneTool::HelpFormatter>(OrvaneTool::terminalWidth(STDOUT_FILENO)));
    app.footer(kExamples);
    OrvaneTool::addDocuments(app,
                             {app, ORVANE_VERSION, {{"orvane-sim ctl", OrvaneSim::CtlCommand::words()}}});
    OrvaneSim::LabFlags flags;
    OrvaneSim::CtlCommand ctl;
    try {
        flags.addTo(app);
        CLI::App* control = app.add_subcommand("ctl", "Looks at a running lab's boards and disturbs them");
        ctl.addTo(*control);
        app.parse(argc, argv);
        if (control->parsed())
            return ctl.run();
        const OrvaneSim::StopSignals signals;
        serve(flags, signals);
        return 0;
    } catch (const CLI::ParseError& problem) {
        return app.exit(problem) == 0 ? 0 : kWrongWords;
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvane-sim: %s\n", problem.what());
        return 1;
    }
}
