// The child that serves the boards, and its end.
#include "bench/calls/BoardProcess.h"

#include "bench/Processors.h"

#include "simulator/engine/Sockets.h"
#include "simulator/lab/Lab.h"
#include "simulator/network/PrivateNetwork.h"

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvaneBench {
namespace {

std::string addressOf(unsigned board) {
    const unsigned host = board + 1;
    return "10.83." + std::to_string(host / 256) + "." + std::to_string(host % 256);
}

[[noreturn]] void serve(unsigned boards, int ready) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    keepToProcessorsOf(Side::Boards);
    OrvaneSim::raiseDescriptorLimit();
    OrvaneSim::Lab lab;
    for (unsigned board = 0; board < boards; ++board) {
        OrvaneSim::BoardOptions options;
        options.address = addressOf(board);
        options.serial = "BENCH" + std::to_string(board);
        options.keptRequests = 0;
        lab.add(options);
    }
    const char yes = 1;
    if (write(ready, &yes, sizeof yes) != sizeof yes)
        _exit(1);
    for (;;)
        pause();
}

} // namespace

BoardProcess::BoardProcess(unsigned boards) {
    OrvaneSim::PrivateNetwork::enter({});
    for (unsigned board = 0; board < boards; ++board)
        addresses_.push_back(addressOf(board));
    int ready[2];
    if (pipe(ready) != 0)
        throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
        try {
            serve(boards, ready[1]);
        } catch (const std::exception& problem) {
            std::fprintf(stderr, "the boards: %s\n", problem.what());
            _exit(1);
        }
    }
    close(ready[1]);
    char yes = 0;
    const bool serving = read(ready[0], &yes, sizeof yes) == sizeof yes;
    close(ready[0]);
    if (!serving)
        throw std::runtime_error("the boards do not start");
    keepToProcessorsOf(Side::Host);
}

BoardProcess::~BoardProcess() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

} // namespace OrvaneBench
