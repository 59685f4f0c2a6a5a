// A process that gets no more threads.
#pragma once

#include <cstddef>
#include <pthread.h>

namespace OrvaneTest {

// New threads of this process get a stack that no machine has while one lives.
class NoMoreThreads {
public:
    NoMoreThreads() {
        pthread_getattr_default_np(&former_);
        pthread_attr_t huge;
        pthread_attr_init(&huge);
        pthread_attr_setstacksize(&huge, std::size_t{1} << 46U);
        pthread_setattr_default_np(&huge);
        pthread_attr_destroy(&huge);
    }
    ~NoMoreThreads() {
        pthread_setattr_default_np(&former_);
        pthread_attr_destroy(&former_);
    }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    pthread_attr_t former_{};
};

} // namespace OrvaneTest
