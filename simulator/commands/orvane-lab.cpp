// orvane-lab: runs a command in a private network with simulated boards.
#include "simulator/commands/ChildCommand.h"
#include "simulator/commands/RunningLab.h"
#include "simulator/commands/Signals.h"
#include "simulator/engine/Sockets.h"
#include "simulator/network/PrivateNetwork.h"
#include "tools/commandline/Documents.h"
#include "tools/commandline/HelpFormatter.h"
#include "tools/commandline/Wrap.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace {

constexpr const char* kExamples = R"(
Boards have the addresses 10.83.0.1 and up and answer discovery by multicast. The command
sees one interface (more with --interfaces) and nothing else: no packet leaves the machine.
No root is needed; the command runs as root of a user namespace of its own.

Examples:
  orvane-lab --boards 3 -- ./my-test          OV0001 to OV0003
  orvane-lab --lab rack.json -- ./my-test     the boards of a file
  orvane-lab --boards 2 shell                 look around; exit ends the lab
  orvane-lab --boards 0 -- ./no-boards-test   a network without boards

The command disturbs its lab with orvane-sim ctl, which finds it by itself. The exit status
is the command's, 128 + signal when one killed it; 125 when there is no lab. Ctrl-C and
SIGTERM go to the command; whatever it leaves running is ended with it.
)";

constexpr int kFailed = 125;

struct Flags {
    OrvaneSim::LabFlags lab;
    int interfaces = 0; // 0: as the lab says
    std::string hostsFile;
    std::vector<std::string> command;
};

CLI::App* addTo(CLI::App& app, Flags& flags) {
    flags.lab.addTo(app);
    app.add_option("--interfaces", flags.interfaces, "Host interfaces of the network (1)")
        ->type_name("N")
        ->check(CLI::Range(1, 8).description(""));
    app.add_option("--hosts", flags.hostsFile, "File that takes the place of /etc/hosts")
        ->type_name("FILE")
        ->check(CLI::Validator(CLI::ExistingFile).description(""));
    app.add_option("COMMAND", flags.command, "Command and its arguments, after --")->type_name("");
    app.positionals_at_end();
    return app.add_subcommand("shell", "Runs $SHELL");
}

std::string contentOf(const std::string& path) {
    if (path.empty())
        return {};
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string defaultShell() {
    const char* shell = std::getenv("SHELL"); // NOLINT(concurrency-mt-unsafe): no other thread yet
    return shell && *shell ? shell : "/bin/sh";
}

int runInLab(const Flags& flags) {
    const OrvaneSim::LabSetup setup = flags.lab.setup(OrvaneSim::privatePlace());
    const OrvaneSim::StopSignals signals{SIGCHLD};
    OrvaneSim::PrivateNetwork::enter(
        {flags.interfaces > 0 ? flags.interfaces : setup.interfaces, contentOf(flags.hostsFile)});
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread yet
    ::setenv(OrvaneSim::kControlVariable, OrvaneSim::controlPathOf(flags.lab).c_str(), 1);
    OrvaneSim::ChildCommand command(flags.command, signals);
    OrvaneSim::raiseDescriptorLimit(); // after the command's process was made: it keeps the usual limit
    OrvaneSim::RunningLab running(setup, flags.lab);
    const int status = command.run();
    running.finish();
    return status;
}

int run(int argc, char** argv) {
    CLI::App app{"Runs a command in a private network with simulated boards.", "orvane-lab"};
    app.formatter(std::make_shared<OrvaneTool::HelpFormatter>(OrvaneTool::terminalWidth(STDOUT_FILENO)));
    app.footer(kExamples);
    OrvaneTool::addDocuments(app, {app, ORVANE_VERSION, {}, true});
    Flags flags;
    try {
        const CLI::App* shell = addTo(app, flags);
        app.parse(argc, argv);
        if (shell->parsed() == !flags.command.empty())
            throw CLI::ParseError("give a command after --, or shell", kFailed);
        if (shell->parsed())
            flags.command = {defaultShell()};
        return runInLab(flags);
    } catch (const CLI::ParseError& problem) {
        return app.exit(problem) == 0 ? 0 : kFailed;
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvane-lab: %s\n", problem.what());
        return kFailed;
    }
}
