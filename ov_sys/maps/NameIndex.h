// Finds registers by their names.
#pragma once

#include "ov_sys/maps/Index.h"

#include <cstdint>
#include <orvane/maps.hpp>
#include <string_view>
#include <vector>

namespace Orvane::Maps {

// The elements of an array are found by their indices, from one entry for all of them, which stays in the
// processor's nearest cache whatever the array's size; every other name by a hash table. The entries' texts
// lie side by side, so that a look-up does not touch the registers themselves. Filled once, then only read.
class NameIndex {
public:
    static constexpr std::uint32_t kNone = Index::kNone;

    // Enters the names of registers, and returns the numbers of those whose name one before has already.
    std::vector<std::uint32_t> fill(const std::vector<MapRegister>& registers);
    // The number of the register of this name; kNone: none.
    std::uint32_t find(std::string_view name) const noexcept;
    // How many there are: one for all elements of an array whose numbers are regular; else one for each
    // register, and one for all whose names differ in nothing but their indices.
    std::size_t entries() const noexcept { return entries_; }

private:
    struct Dimension {
        std::uint32_t count = 0;  // elements
        std::uint32_t stride = 0; // registers from one to the next
    };
    // All registers whose names differ in nothing but their indices, of which there is every one.
    struct Family {
        std::uint32_t first = 0; // the register with every index 0
        std::uint32_t members = 0;
        std::uint32_t dimension = 0; // the first of its own
        std::uint32_t dimensions = 0;
    };
    struct Parts;
    // What an index leads to.
    struct Entry {
        std::uint32_t number = 0; // of a register or a family
        std::string_view text;
    };

    void keep(std::string_view text, std::uint32_t number);
    Entry entry(std::uint32_t at) const noexcept;
    std::uint32_t lookUp(const Index& index, std::string_view text) const noexcept;
    // False when there is an entry of this text.
    bool enter(Index& index, std::string_view text, std::uint32_t number);
    std::vector<std::uint32_t> group(const std::vector<MapRegister>& registers);
    bool isRegular(const Family& family) const noexcept;
    std::uint32_t numberIn(const Family& family, const Parts& parts) const noexcept;

    std::vector<Dimension> dimensions_;
    std::vector<Family> families_;
    std::vector<char> bytes_; // of the entries: number, length, text; the indices hold where each begins
    std::size_t entries_ = 0;
    Index byForm_; // families, by their names without indices
    Index byName_; // registers of no family
};

} // namespace Orvane::Maps
