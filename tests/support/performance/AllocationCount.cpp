// The allocation functions of the whole process: they count and hand on to the C library's own.
#include "tests/support/performance/AllocationCount.h"

#include <cerrno>

extern "C" {
void* __libc_malloc(std::size_t size);                          // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t number, std::size_t size);      // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);           // NOLINT(bugprone-reserved-identifier)
void* __libc_memalign(std::size_t alignment, std::size_t size); // NOLINT(bugprone-reserved-identifier)
}

namespace {

thread_local std::size_t allocations = 0;

} // namespace

namespace OrvaneTest {

std::size_t allocationsOfThisThread() {
    return allocations;
}

} // namespace OrvaneTest

// The C++ library's `new` asks malloc().
extern "C" {

void* malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t number, std::size_t size) {
    ++allocations;
    return __libc_calloc(number, size);
}

void* realloc(void* memory, std::size_t size) {
    ++allocations;
    return __libc_realloc(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    ++allocations;
    return __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}
}
