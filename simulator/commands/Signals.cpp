// Blocking and taking of signals.
#include "simulator/commands/Signals.h"

#include <cerrno>
#include <ctime>

namespace OrvaneSim {

StopSignals::StopSignals(std::initializer_list<int> more) {
    sigemptyset(&blocked_);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        sigaddset(&blocked_, signal);
    for (const int signal : more)
        sigaddset(&blocked_, signal);
    pthread_sigmask(SIG_BLOCK, &blocked_, &before_);
}

StopSignals::~StopSignals() {
    restore();
}

siginfo_t StopSignals::wait() const {
    siginfo_t info{};
    while (sigwaitinfo(&blocked_, &info) < 0 && errno == EINTR) {
    }
    return info;
}

siginfo_t StopSignals::wait(int milliseconds) const {
    const timespec limit{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
    siginfo_t info{};
    if (sigtimedwait(&blocked_, &info, &limit) < 0)
        info.si_signo = 0;
    return info;
}

void StopSignals::restore() const {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

} // namespace OrvaneSim
