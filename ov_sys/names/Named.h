// A register or field of a PHY, by its name.
#pragma once

#include "ov_sys/rack/Phy.h"

#include <cstdint>
#include <orvane/maps.hpp>
#include <string>
#include <string_view>

namespace Orvane {

// What Phy::operator[] gives. A value that keeps PHY and map; any thread. Each access reads or writes the
// board, blocks up to its limits and throws Failure, which has the name as its location. A register on a page
// is reached by its select register, which holds afterwards what it held before, with no other call of this
// process in between. An access that a repeat would change (of a register that is not safe to read) is sent
// once.
class ORVANE_API Named {
public:
    // What a field held, and what it holds.
    struct Twice {
        std::uint64_t before = 0; // since the last read, where the field latches
        std::uint64_t now = 0;
    };

    // A register or field of `map`, which `what` belongs to. Copies are the same place; nothing is sent.
    Named(Phy phy, RegisterMap map, MapReference what);
    Named(const Named&) = default;
    Named(Named&&) noexcept = default;
    ~Named() = default;

    // The raw value. Refused where a read tells nothing.
    std::uint64_t read(const Within& within = {}) const;
    // The same.
    operator std::uint64_t() const { return read(); } // NOLINT(google-explicit-constructor)
    // In its unit. Refused for a whole register.
    double scaled(const Within& within = {}) const;
    // In words: a choice's name or the value with its unit, and what a latched bit tells, as in
    // "0: was low since the last read"; of a whole register hexadecimal.
    std::string text(const Within& within = {}) const;
    // Two reads in one block, for what latches.
    Twice twice(const Within& within = {}) const;

    // A field is read, changed and written under the board's turn; the read is left out where no other bit
    // has to be kept. Other fields that ones clear, or that clear themselves, are written as 0. Refused, with
    // nothing sent, where nothing can be written and for a value that does not fit.
    void write(std::uint64_t raw, const Within& within = {}) const;
    // By the name of one of its choices.
    void write(std::string_view choice, const Within& within = {}) const;
    void writeScaled(double value, const Within& within = {}) const;
    const Named& operator=(std::uint64_t raw) const { // NOLINT(misc-unconventional-assign-operator)
        write(raw);
        return *this;
    }
    const Named& operator=(std::string_view choice) const { // NOLINT(misc-unconventional-assign-operator)
        write(choice);
        return *this;
    }
    // Writes the value that the other one reads.
    Named& operator=(const Named& other) {
        write(other.read());
        return *this;
    }

    // What the map says of it, valid as long as this; and its full name.
    const MapReference& reference() const noexcept { return what_; }
    std::string name() const { return what_.name(); }

private:
    [[noreturn]] void refuse(const char* operation, std::string why) const;
    const MapField& field(const char* operation) const;
    void checkReadable(const char* operation) const;
    void checkWritable(std::uint64_t raw) const;

    Phy phy_;
    RegisterMap map_;
    MapReference what_;
};

} // namespace Orvane
