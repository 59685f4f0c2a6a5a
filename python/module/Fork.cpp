// Counts the forks that led to a process.
#include "python/module/Fork.h"

#include "python/module/Interruptible.h"

#include <pthread.h>
#include <system_error>

namespace OrvanePython {
namespace {

unsigned forks = 0; // written by the one thread that a child begins with

void inChild() {
    ++forks;
    Interruptible::forget();
}

} // namespace

void watchForks() {
    if (const int problem = pthread_atfork(nullptr, nullptr, inChild))
        throw std::system_error(problem, std::generic_category(), "pthread_atfork");
}

unsigned generation() noexcept {
    return forks;
}

} // namespace OrvanePython
