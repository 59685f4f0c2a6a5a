// A thread on which no discovery can begin.
#pragma once

#include <gtest/gtest.h>
#include <sched.h>
#include <thread>

namespace OrvaneTest {

// Runs `work` on a thread that has no network interface with an address, and waits for its end.
template <class Work>
void withoutInterfaces(Work work) {
    std::thread([&] {
        ASSERT_EQ(unshare(CLONE_NEWNET), 0);
        work();
    }).join();
}

} // namespace OrvaneTest
