// Finds elements of a list by a key, in the time of one or two cache misses however long the list is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvane::Maps {

// A hash table of the elements' numbers, open addressing; keys stay with their elements. Filled once, then
// only read.
class Index {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    // Room for so many elements.
    void reserve(std::size_t elements) {
        std::size_t slots = 16;
        while (slots < elements + elements / 4)
            slots *= 2;
        slots_.assign(slots, Slot{});
    }

    // The number of the element with this hash for which `is(number)` holds; kNone: none.
    template <class Is>
    std::uint32_t find(std::uint64_t hash, Is is) const {
        if (slots_.empty())
            return kNone;
        for (std::size_t at = hash & mask();; at = (at + 1) & mask()) {
            const Slot& slot = slots_[at];
            if (slot.element == kNone || (slot.tag == tagOf(hash) && is(slot.element)))
                return slot.element;
        }
    }

    // Adds an element, unless one is there for which `is(number)` holds; returns that one, else kNone.
    template <class Is>
    std::uint32_t add(std::uint64_t hash, std::uint32_t element, Is is) {
        const std::uint32_t known = find(hash, is);
        if (known != kNone)
            return known;
        std::size_t at = hash & mask();
        while (slots_[at].element != kNone)
            at = (at + 1) & mask();
        slots_[at] = {tagOf(hash), element};
        return kNone;
    }

private:
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t element = kNone;
    };
    std::size_t mask() const { return slots_.size() - 1; }
    static std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32U); }

    std::vector<Slot> slots_;
};

// Spreads a number over all bits.
inline std::uint64_t hashOf(std::uint64_t number) {
    number ^= number >> 32U;
    number *= 0x9E3779B97F4A7C15U;
    number ^= number >> 29U;
    number *= 0xBF58476D1CE4E5B9U;
    return number ^ number >> 32U;
}

} // namespace Orvane::Maps
