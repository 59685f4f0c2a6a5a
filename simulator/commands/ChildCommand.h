// A command run as a child process, with everything that it leaves running.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "simulator/commands/Signals.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace OrvaneSim {

// A child that waits for `start` before it becomes the command, so that it can be made while this process
// still has one thread and run when there is something to run against. It dies with this process.
class ChildCommand {
public:
    // `signals` must block SIGCHLD and outlive the object. Throws std::system_error.
    ChildCommand(std::vector<std::string> words, const StopSignals& signals);
    // Ends the child and whatever it left running.
    ~ChildCommand();
    ChildCommand(const ChildCommand&) = delete;
    ChildCommand& operator=(const ChildCommand&) = delete;

    // Runs the command and waits for its end, passing on the signals that come meanwhile; then ends what it
    // left running. Returns its exit status, 128 + signal when one killed it, 127 when there is no such
    // command and 126 when it cannot be run (both with a line on standard error).
    int run();

private:
    [[noreturn]] void becomeCommand(int startPipe, int errorPipe);
    void reapCommand();
    void endLeftovers();

    std::vector<std::string> words_;
    const StopSignals& signals_;
    pid_t child_ = -1;
    bool finished_ = false;
    int status_ = 0;
    Orvane::FileDescriptor startPipe_;
    Orvane::FileDescriptor errorPipe_;
};

} // namespace OrvaneSim
