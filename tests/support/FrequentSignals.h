// Signals that interrupt whatever the calling thread waits for.
#pragma once

#include <csignal>
#include <ctime>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace OrvaneTest {

// While it lives, the thread that made it handles a SIGALRM every 10 ms; system calls are not restarted.
class FrequentSignals {
public:
    FrequentSignals() {
        struct sigaction handle {};
        handle.sa_handler = [](int) {};
        EXPECT_EQ(sigaction(SIGALRM, &handle, &before_), 0);
        sigevent event{};
        event.sigev_notify = SIGEV_THREAD_ID;
        event.sigev_signo = SIGALRM;
        event._sigev_un._tid = static_cast<pid_t>(syscall(SYS_gettid));
        EXPECT_EQ(timer_create(CLOCK_MONOTONIC, &event, &timer_), 0);
        const itimerspec often = {{0, 10'000'000}, {0, 10'000'000}};
        EXPECT_EQ(timer_settime(timer_, 0, &often, nullptr), 0);
    }
    FrequentSignals(const FrequentSignals&) = delete;
    FrequentSignals& operator=(const FrequentSignals&) = delete;
    ~FrequentSignals() {
        timer_delete(timer_);
        sigaction(SIGALRM, &before_, nullptr);
    }

private:
    struct sigaction before_ {};
    timer_t timer_{};
};

} // namespace OrvaneTest
