// Tells the XDR routines how much room a caller's own buffer has, for the length of a call.
#pragma once

#include <cstddef>

namespace Orvane {

// While a guard lives, the record routines of the same thread that find `buffer` preset in a record
// - decode at most `capacity` elements into it, read past the rest, and report the count that the board sent
//   (a string is cut to capacity - 1 characters and always terminated);
// - do not free it in XDR_FREE mode, though they do free what a decode allocated inside its elements.
// Without a guard a preset pointer is decoded into without bound and freed like any other, so free a result
// while its guards still live. Guards nest: each adds an announcement, the innermost counts where two name
// one buffer, and the end of a guard, in any order but on its own thread, restores what held before it. A
// null buffer announces nothing. Allocates nothing, throws nothing.
class DecodeGuard {
public:
    // `buffer` stays the caller's and must outlive the guard; `capacity` is in elements (bytes for opaque
    // data and, the terminating zero included, for strings).
    DecodeGuard(void* buffer, std::size_t capacity) noexcept;
    ~DecodeGuard();
    DecodeGuard(const DecodeGuard&) = delete;
    DecodeGuard& operator=(const DecodeGuard&) = delete;

    // True when a guard of this thread announces `buffer`; then stores its capacity.
    static bool announced(const void* buffer, std::size_t& capacity) noexcept;

private:
    const void* buffer_;
    std::size_t capacity_;
    DecodeGuard* outer_;
};

} // namespace Orvane
