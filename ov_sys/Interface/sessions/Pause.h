// A pause of one thread that others may end early.
#pragma once

#include <cerrno>
#include <ctime>
#include <semaphore.h>

namespace Orvane {

// A semaphore and not a condition variable: a forked child may destroy one that a thread of its parent waits
// on. Throws nothing.
class Pause {
public:
    Pause() noexcept { sem_init(&ended_, 0, 0); }
    ~Pause() { sem_destroy(&ended_); }
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;

    // Forgets what end() was called for before. Not while a thread sleeps.
    void reset() noexcept {
        while (sem_trywait(&ended_) == 0) {
        }
    }

    // Blocks for `ms` milliseconds (below 1000) of the steady clock, or until end() is called.
    void sleep(long ms) noexcept {
        constexpr long kNanoseconds = 1'000'000'000;
        timespec until{};
        clock_gettime(CLOCK_MONOTONIC, &until);
        until.tv_nsec += ms * 1'000'000;
        until.tv_sec += until.tv_nsec / kNanoseconds;
        until.tv_nsec %= kNanoseconds;
        while (sem_clockwait(&ended_, CLOCK_MONOTONIC, &until) != 0 && errno == EINTR) {
        }
    }

    // Ends the present sleep, or the next one when nobody sleeps. Any thread.
    void end() noexcept { sem_post(&ended_); }

private:
    sem_t ended_{};
};

} // namespace Orvane
