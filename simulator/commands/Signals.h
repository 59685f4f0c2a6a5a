// Signals taken one by one instead of interrupting the program.
#pragma once

#include <csignal>
#include <initializer_list>

namespace OrvaneSim {

// Blocks the signals that ask a program to end, for the calling thread and the threads that it makes from
// then on. To be created before any thread.
class StopSignals {
public:
    // SIGINT, SIGTERM, SIGHUP and SIGQUIT, and `more`.
    StopSignals(std::initializer_list<int> more = {});
    // Restores what was blocked before.
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // Blocks until one of the signals comes and takes it.
    siginfo_t wait() const;

    // As `wait`, for at most `milliseconds`; signal number 0 when none came.
    siginfo_t wait(int milliseconds) const;

    // Undoes the blocking, for a child process about to become another program.
    void restore() const;

private:
    sigset_t blocked_{};
    sigset_t before_{};
};

} // namespace OrvaneSim
