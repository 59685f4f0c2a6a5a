// One PHY's registers as the models behind them see them.
#pragma once

#include "simulator/models/MdioPorts.h"

#include <cstdint>

namespace OrvaneSim {

// Reaches one PHY's registers without any effect of a bus access. Valid as long as `ports`.
struct PhyRegisters {
    MdioPorts& ports;
    PhyAddress where;

    std::uint32_t get(std::uint32_t mmd, std::uint32_t reg) const {
        return ports.peek(where, Space::C45, (mmd << 16) | (reg & 0xFFFF));
    }
    void set(std::uint32_t mmd, std::uint32_t reg, std::uint32_t value) const {
        ports.poke(where, Space::C45, (mmd << 16) | (reg & 0xFFFF), value & 0xFFFF);
    }
    std::uint32_t word(std::uint32_t address) const { return ports.peek(where, Space::Ext32, address); }
    void setWord(std::uint32_t address, std::uint32_t value) const {
        ports.poke(where, Space::Ext32, address, value);
    }
    // A number for this PHY among all of the board.
    std::uint32_t key() const { return (where.device << 8) | where.phy; }
};

} // namespace OrvaneSim
