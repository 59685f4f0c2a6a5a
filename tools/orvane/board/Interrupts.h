// Signals that ask a command to end.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/rack/values/Within.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace OrvaneTool {

// SIGINT, SIGTERM and SIGHUP while one lives. The command notices between two accesses; when it is inside a
// call that does not return, its sessions are closed on the board from another thread after a moment and the
// process ends. A second signal ends it at once. Make it before any other thread; at most one at a time.
class Interrupts {
public:
    // `terminal` is the descriptor of a terminal whose line is to be cleared before the process ends from
    // outside, or -1. Throws std::system_error.
    explicit Interrupts(int terminal);
    ~Interrupts();
    Interrupts(const Interrupts&) = delete;
    Interrupts& operator=(const Interrupts&) = delete;

    // 0 while there is no signal.
    int signal() const;
    // Throws Interrupted when there was a signal.
    void check() const;
    // Returns when the time is over; throws Interrupted as soon as there is a signal.
    void sleep(std::chrono::milliseconds time) const;

    // Cancelled by a signal.
    const Orvane::Cancellation& cancellation() const { return cancellation_; }
    // From now on there may be sessions that only the command can close, once its calls are cancelled.
    void giveTimeToClose();

    // The command closes its sessions by itself now, however long it takes.
    void closing();

private:
    void watch();
    void onSignal(int number);
    [[noreturn]] void endFromOutside(int number) const;

    Orvane::FileDescriptor signals_;
    Orvane::FileDescriptor stop_;
    int terminal_;
    Orvane::Cancellation cancellation_;
    mutable std::mutex mutex_; // guards the three below
    mutable std::condition_variable changed_;
    int signal_ = 0;
    bool closing_ = false;
    bool closesItself_ = false;
    std::thread watcher_;
};

} // namespace OrvaneTool
