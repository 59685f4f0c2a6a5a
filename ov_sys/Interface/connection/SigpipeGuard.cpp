#include "ov_sys/Interface/connection/SigpipeGuard.h"

#include <ctime>

namespace Orvane {
namespace {

sigset_t onlySigpipe() noexcept {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    return set;
}

bool sigpipePending() noexcept {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

} // namespace

SigpipeGuard::SigpipeGuard() noexcept : active_(!sigpipePending()) {
    const sigset_t set = onlySigpipe();
    if (active_)
        pthread_sigmask(SIG_BLOCK, &set, &previousMask_);
}

SigpipeGuard::~SigpipeGuard() {
    if (!active_)
        return;
    const sigset_t set = onlySigpipe();
    if (sigpipePending()) {
        const timespec atOnce{};
        sigtimedwait(&set, nullptr, &atOnce);
    }
    pthread_sigmask(SIG_SETMASK, &previousMask_, nullptr);
}

} // namespace Orvane
