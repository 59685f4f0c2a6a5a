// The program's own operator new, which fails for the size that was named.
#include "tests/support/discovery/FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t failingSize = 0;

} // namespace

namespace OrvaneTest {

void failNextAllocationOf(std::size_t size) {
    failingSize = size;
}

} // namespace OrvaneTest

void* operator new(std::size_t size) {
    if (size != 0 && size == failingSize) {
        failingSize = 0;
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
