// Lets memory run out at each allocation of a piece of work in turn.
#pragma once

#include <cstddef>
#include <exception>

namespace OrvaneTest {

// While one lives, the calling thread's allocation of that number, counted from 0, fails: `new` throws, and
// what calls malloc(), calloc() or realloc() gets a null pointer (not in builds with sanitizers, whose
// allocator stands in between). Those before and behind it, and other threads', succeed. One inside another
// counts alone until it ends.
class AllocationFailure {
public:
    explicit AllocationFailure(std::size_t number) noexcept;
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    // Whether there were as many allocations.
    bool happened() const noexcept;
    // Whether malloc() and its like fail, too, in this build.
    static bool reachesMalloc() noexcept;

private:
    std::size_t outerLeft_;
    bool outerFailed_;
};

// While one lives, what the calling thread allocates is no part of the work.
class NoAllocationFailure {
public:
    NoAllocationFailure() noexcept : none_(~std::size_t{0}) {}

private:
    AllocationFailure none_;
};

// Does `work` again and again, failing one allocation further each time, until it needs no more; `after` is
// done behind each. Exceptions of `work` are what failures may end in. Returns how many allocations were
// failed.
template <class Work, class After>
std::size_t failEachAllocation(Work work, After after) {
    for (std::size_t number = 0;; ++number) {
        bool happened = false;
        try {
            const AllocationFailure failure(number);
            const struct Note {
                const AllocationFailure& failure;
                bool& happened;
                ~Note() { happened = failure.happened(); }
            } note{failure, happened};
            work();
        } catch (const std::exception&) { // an error is as good as success
        }
        after();
        if (!happened)
            return number;
    }
}

} // namespace OrvaneTest
