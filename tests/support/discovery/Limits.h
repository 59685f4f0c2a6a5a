// Makes system calls fail, and descriptors large, for the length of a test.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <sys/resource.h>
#include <vector>

namespace OrvaneTest {

// No new descriptor can be had while this lives.
class NoDescriptorsLeft {
public:
    NoDescriptorsLeft();
    NoDescriptorsLeft(const NoDescriptorsLeft&) = delete;
    NoDescriptorsLeft& operator=(const NoDescriptorsLeft&) = delete;
    ~NoDescriptorsLeft();

private:
    rlimit before_{};
};

// While this lives, every new descriptor is 1024 or more.
class LargeDescriptors {
public:
    LargeDescriptors();
    LargeDescriptors(const LargeDescriptors&) = delete;
    LargeDescriptors& operator=(const LargeDescriptors&) = delete;
    ~LargeDescriptors();

private:
    rlimit before_{};
    std::vector<Orvane::FileDescriptor> occupied_;
};

// From now on the calling thread is refused to set this socket option. For a thread that ends with the test.
void refuseSocketOption(int level, int option);

} // namespace OrvaneTest
