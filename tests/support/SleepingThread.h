// Lets one thread see that another has gone to sleep or waits for a lock.
#pragma once

#include <fstream>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace OrvaneTest {

// Names the thread that makes it. Any thread may use it while that one lives.
class SleepingThread {
public:
    SleepingThread() : path_("/proc/self/task/" + std::to_string(gettid()) + "/syscall") {}

    // Returns when the thread is inside a timed sleep.
    void await() const { awaitOneOf(SYS_clock_nanosleep, SYS_nanosleep); }

    // Returns when the thread waits for a descriptor.
    void awaitPolling() const { awaitOneOf(SYS_poll, SYS_ppoll); }

    // Returns when the thread waits for a lock.
    void awaitLocked() const { awaitOneOf(SYS_futex, SYS_futex); }

private:
    void awaitOneOf(long one, long other) const {
        for (long now = -1; now != one && now != other; now = systemCall())
            std::this_thread::yield();
    }

    // The system call that the thread is in, -1 for none.
    long systemCall() const {
        std::ifstream file(path_);
        long number = -1;
        file >> number; // "running" reads as no number
        return file ? number : -1;
    }

    std::string path_;
};

} // namespace OrvaneTest
