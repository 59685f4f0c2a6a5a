// Lets one thread see that another has gone to sleep.
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
    void await() const {
        while (!asleep())
            std::this_thread::yield();
    }

private:
    bool asleep() const {
        std::ifstream file(path_);
        long number = -1;
        file >> number; // "running" reads as no number
        return file && (number == SYS_clock_nanosleep || number == SYS_nanosleep);
    }

    std::string path_;
};

} // namespace OrvaneTest
