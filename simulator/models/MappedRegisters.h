// Registers that behave as a register map says.
#pragma once

#include "simulator/models/MdioPorts.h"

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace OrvaneSim {

// How one register of a PHY behaves. A set bit in a mask means that its bit of the register behaves so; bits
// in no mask only tell what they hold.
struct MappedRegister {
    // A select register whose bits of `mask` equal `value` while the register is reached.
    struct Page {
        Space space = Space::C45;
        std::uint32_t address = 0;
        std::uint32_t mask = 0;
        std::uint32_t value = 0;
    };

    Space space = Space::C45;
    std::uint32_t address = 0; // as RegisterValue has it
    std::optional<Page> page;
    std::optional<std::uint32_t> reset; // what it holds at first; none: what it would hold without a map
    std::uint32_t writable = 0;         // takes what is written
    std::uint32_t clearedByOnes = 0;    // a written 1 makes it 0
    std::uint32_t clearedByRead = 0;    // tells what it holds, then is 0
    std::uint32_t holdsLow = 0;         // tells 0 if it was 0 since the last read
    std::uint32_t holdsHigh = 0;        // tells 1 if it was 1 since the last read
    std::uint32_t unreadable = 0;       // tells 0
};

// The mapped registers of a board's PHYs and what they hold. A write to bits that return to 0 by themselves
// has no mask: they are back before the next access. Belongs to the loop's thread.
class MappedRegisters {
public:
    // One register and what it holds.
    class Cell {
    public:
        Cell(MappedRegister declared, std::uint32_t value);
        // Holds a value as if it had always done so.
        void hold(std::uint32_t value) { held_ = live_ = value; }

        // Accesses as the bus makes them.
        std::uint32_t read();
        void write(std::uint32_t value);
        // What the next read tells, bits that tell nothing included.
        std::uint32_t value() const { return held_; }
        // The PHY changes its register: what latches goes on holding.
        void set(std::uint32_t value);

        const MappedRegister& declared() const { return declared_; }

    private:
        MappedRegister declared_;
        std::uint32_t held_;
        std::uint32_t live_; // what latching bits tell after the next read
    };

    // Declares a register, in place of one at the same place and page.
    void add(PhyAddress where, const MappedRegister& declared, std::uint32_t value);
    // All hold their reset values.
    void reset();
    // Forgets those of one PHY.
    void remove(PhyAddress where);
    // The register that is reached at an address; null when none was declared there, or none for the page
    // that is selected. `address` as a frame of the space carries it.
    Cell* find(const MdioPorts& ports, PhyAddress where, Space space, std::uint32_t address) {
        return cells_.empty() ? nullptr : findAmong(ports, where, space, address);
    }
    bool empty() const { return cells_.empty(); }
    // What those hold that are on no page.
    std::vector<RegisterValue> values() const;

private:
    Cell* findAmong(const MdioPorts& ports, PhyAddress where, Space space, std::uint32_t address);

    struct Place {
        unsigned device;
        unsigned phy;
        Space space;
        std::uint32_t address;
        friend bool operator==(const Place& a, const Place& b) {
            return a.address == b.address && a.phy == b.phy && a.device == b.device && a.space == b.space;
        }
    };
    struct Hash {
        std::size_t operator()(const Place& place) const;
    };
    std::unordered_map<Place, std::vector<Cell>, Hash> cells_; // several where pages share an address
};

} // namespace OrvaneSim
