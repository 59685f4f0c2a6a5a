// orvane-lab: runs a command in a private network with simulated boards.
#include "simulator/commands/BoardFlags.h"
#include "simulator/commands/ChildCommand.h"
#include "simulator/commands/Signals.h"
#include "simulator/engine/Sockets.h"
#include "simulator/network/PrivateNetwork.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>

namespace {

constexpr const char* kExamples = R"(
Boards have the addresses 10.83.0.1 and up and answer discovery by multicast. The command
sees one interface (more with --interfaces) and nothing else: no packet leaves the machine.
No root is needed; the command runs as root of a user namespace of its own.

Examples:
  orvane-lab -- orvane list                   one board, OV0001
  orvane-lab --boards 3 -- ./my-test          OV0001 to OV0003
  orvane-lab --boards 2 -- bash               look around; exit ends the lab
  orvane-lab --boards 0 -- ./no-boards-test   a network without boards

The exit status is the command's, 128 + signal when one killed it. Ctrl-C and SIGTERM go to
the command; whatever it leaves running is ended with it.
)";

constexpr int kFailed = 125;

struct LabFlags {
    OrvaneSim::BoardFlags boards;
    int interfaces = 1;
    std::string hostsFile;
    std::vector<std::string> command;
};

void addTo(CLI::App& app, LabFlags& flags) {
    flags.boards.addTo(app);
    app.add_option("--interfaces", flags.interfaces, "Host interfaces of the network")
        ->check(CLI::Range(1, 8))
        ->capture_default_str();
    app.add_option("--hosts", flags.hostsFile, "File that takes the place of /etc/hosts")
        ->check(CLI::ExistingFile);
    app.add_option("command", flags.command, "Command and its arguments, after --")->required();
    app.positionals_at_end();
}

std::string contentOf(const std::string& path) {
    if (path.empty())
        return {};
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

int runInLab(const LabFlags& flags) {
    const auto boards = flags.boards.options();
    const OrvaneSim::StopSignals signals{SIGCHLD};
    OrvaneSim::PrivateNetwork::enter({flags.interfaces, contentOf(flags.hostsFile)});
    OrvaneSim::ChildCommand command(flags.command, signals);
    OrvaneSim::raiseDescriptorLimit(); // after the command's process was made: it keeps the usual limit
    OrvaneSim::Lab lab;
    addAll(lab, boards);
    return command.run();
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Runs a command in a private network with simulated boards."};
    app.footer(kExamples);
    LabFlags flags;
    addTo(app, flags);
    CLI11_PARSE(app, argc, argv);
    try {
        return runInLab(flags);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvane-lab: %s\n", problem.what());
        return kFailed;
    }
}
