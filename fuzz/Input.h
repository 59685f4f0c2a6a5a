// What a fuzz target is made of: its entry, and a reader of the bytes that it is given.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

// The entry of a target: no input may crash, hang or leak; what else must hold is asserted by `mustHold`.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace OrvaneFuzz {

using Bytes = std::vector<unsigned char>;

inline void mustHold(bool condition) {
    if (!condition)
        std::abort();
}

// Takes an input apart from its front; what is not there any more reads as zero.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : next_(data), left_(size) {}

    std::size_t left() const { return left_; }
    std::uint8_t byte() {
        if (left_ == 0)
            return 0;
        --left_;
        return *next_++;
    }
    // Up to `most` bytes.
    Bytes bytes(std::size_t most) {
        const std::size_t count = std::min(most, left_);
        Bytes taken(next_, next_ + count);
        next_ += count;
        left_ -= count;
        return taken;
    }
    Bytes rest() { return bytes(left_); }

private:
    const std::uint8_t* next_;
    std::size_t left_;
};

} // namespace OrvaneFuzz
