// The allocation functions of the whole process: they fail where they are told to, and hand on otherwise.
#include "tests/support/allocations/AllocationFailure.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ORVANE_FOREIGN_ALLOCATOR
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORVANE_FOREIGN_ALLOCATOR
#endif

namespace {

constexpr std::size_t kNever = SIZE_MAX;

thread_local std::size_t left = kNever; // allocations until the one that fails; kNever before and after it
thread_local bool failed = false;

bool failsNow() noexcept {
    if (left == kNever)
        return false;
    if (left-- != 0)
        return false;
    failed = true; // and `left` is kNever again
    errno = ENOMEM;
    return true;
}

} // namespace

namespace OrvaneTest {

bool AllocationFailure::reachesMalloc() noexcept {
#ifdef ORVANE_FOREIGN_ALLOCATOR
    return false;
#else
    return true;
#endif
}

AllocationFailure::AllocationFailure(std::size_t number) noexcept
    : outerLeft_(std::exchange(left, number)), outerFailed_(std::exchange(failed, false)) {}

AllocationFailure::~AllocationFailure() {
    left = outerLeft_;
    failed = outerFailed_;
}

bool AllocationFailure::happened() const noexcept {
    return failed;
}

} // namespace OrvaneTest

#ifdef ORVANE_FOREIGN_ALLOCATOR

void* operator new(std::size_t size) {
    void* const memory = failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

#else

extern "C" {
void* __libc_malloc(std::size_t size);                     // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t number, std::size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);      // NOLINT(bugprone-reserved-identifier)

// The C++ library's `new` asks malloc(). Seen by other libraries although our own names are hidden.
[[gnu::visibility("default")]] void* malloc(std::size_t size) {
    return failsNow() ? nullptr : __libc_malloc(size);
}

[[gnu::visibility("default")]] void* calloc(std::size_t number, std::size_t size) {
    return failsNow() ? nullptr : __libc_calloc(number, size);
}

[[gnu::visibility("default")]] void* realloc(void* memory, std::size_t size) {
    return failsNow() ? nullptr : __libc_realloc(memory, size);
}
}

#endif
