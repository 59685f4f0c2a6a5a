// Runs shell commands as child processes without blocking the loop.
#pragma once

#include "simulator/engine/EventLoop.h"
#include "simulator/engine/ShellProcess.h"

#include <chrono>
#include <functional>
#include <list>
#include <string>
#include <sys/types.h>

namespace OrvaneSim {

// Each command runs in /bin/sh in a process group of its own, without input and never as root, and is killed
// with its group when its time is up or the runner goes. Belongs to the loop's thread.
class ShellRunner {
public:
    struct Outcome {
        bool timedOut = false;
        int status = 0; // exit status, 128 + signal when killed
        std::string output;
        std::string errors;
    };
    using Done = std::function<void(const Outcome&)>;

    // `loop` must outlive the runner. Throws std::runtime_error when only root's rights could be given.
    explicit ShellRunner(EventLoop& loop) : loop_(loop) {}
    ~ShellRunner();
    ShellRunner(const ShellRunner&) = delete;
    ShellRunner& operator=(const ShellRunner&) = delete;

    // Starts `command`; `done` is called once, when the shell has ended; what it left in the background is
    // killed. Outputs are kept up to 64 KiB each. Throws std::system_error when no process can be made.
    void run(const std::string& command, std::chrono::seconds limit, Done done);

private:
    struct Stream {
        Orvane::FileDescriptor pipe;
        std::string text;
        EventLoop::Watch watch;
    };
    struct Process {
        pid_t pid = -1;
        Stream output;
        Stream errors;
        Orvane::FileDescriptor end; // readable when the shell has ended
        EventLoop::Watch endWatch;
        bool timedOut = false;
        Done done;
        EventLoop::Life life = EventLoop::makeLife();
    };
    using Position = std::list<Process>::iterator;
    void watchStream(Stream& stream);
    void drain(Stream& stream);
    void finish(Position process);

    EventLoop& loop_;
    const ShellRights rights_ = shellRights();
    std::list<Process> processes_;
};

} // namespace OrvaneSim
