// Keeps a write to a broken connection from ending the process.
#pragma once

#include <csignal>

namespace Orvane {

// While one lives, SIGPIPE is blocked in the calling thread; a SIGPIPE that arose meanwhile is consumed at
// the end, and the thread's signal mask is put back. The process's signal handling is never changed. Create
// and destroy in the same thread. Does not throw.
class SigpipeGuard {
public:
    SigpipeGuard() noexcept;
    ~SigpipeGuard();
    SigpipeGuard(const SigpipeGuard&) = delete;
    SigpipeGuard& operator=(const SigpipeGuard&) = delete;

private:
    sigset_t previousMask_{};
    bool active_; // false when a SIGPIPE of somebody else was pending already
};

} // namespace Orvane
