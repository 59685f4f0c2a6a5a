// The PHY registers behind a board's MDIO ports.
#pragma once

#include "simulator/models/WrittenWords.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace OrvaneSim {

class MappedRegisters;
struct MappedRegister;
class RegisterPaths;

// A PHY's register spaces: Clause 45 (address (MMD << 16) | register, 16 bits wide), Clause 22 (registers 0
// to 31, 16 bits) and the 32-bit extension (any 32-bit address, each holding a word of its own).
enum class Space { C45, C22, Ext32 };

// One PHY: the device index of its port and its address there (0 to 31).
struct PhyAddress {
    unsigned device = 0;
    unsigned phy = 0;
};

// One register and what it holds.
struct RegisterValue {
    Space space = Space::C45;
    unsigned device = 0;
    unsigned phy = 0;
    std::uint32_t address = 0;
    std::uint32_t value = 0;
};

// Registers that keep what is written to them, unless a map says how they behave. Never written, the
// identifier registers 2 and 3 (of each MMD and of Clause 22) hold the PHY's identifier and every other one
// 0. Belongs to the loop's thread.
class MdioPorts {
public:
    // What registers 2 (high half) and 3 of a PHY hold unless told otherwise.
    static constexpr std::uint32_t kIdentifier = 0x0A5C1E83;

    MdioPorts();
    ~MdioPorts();

    // Accesses as a bus frame makes them. Registers 13 and 14 of Clause 22 reach Clause 45 registers: 13
    // selects the MMD (bits 0 to 4) and the function (bits 14 and 15: 0 address, 1 data, 2 data with
    // increment after each access, 3 data with increment after writes), 14 carries address or data. An
    // access of the 32-bit extension sets the current address.
    std::uint32_t read(PhyAddress where, Space space, std::uint32_t address);
    void write(PhyAddress where, Space space, std::uint32_t address, std::uint32_t value);
    // Reads so many registers of a PHY, one after the other.
    void read(PhyAddress where, Space space, const std::uint32_t* addresses, std::size_t count,
              std::uint32_t* values);

    // The register itself, without any effect of a bus access.
    std::uint32_t peek(PhyAddress where, Space space, std::uint32_t address) const;
    void poke(PhyAddress where, Space space, std::uint32_t address, std::uint32_t value);

    // Makes a PHY's registers behave as declared, in place of what was declared for it before. They begin
    // with their reset values, but those that were written go on with what they hold.
    void map(PhyAddress where, std::uint32_t identifier, const std::vector<MappedRegister>& registers);

    // Every register that was ever written or is mapped, sorted; those on pages left out.
    std::vector<RegisterValue> written() const;
    // Makes every register as never written, then those of the list hold what it says.
    void replace(const std::vector<RegisterValue>& values);

    // The indirect paths that Clause 45 accesses on the bus run through.
    RegisterPaths& paths() { return *paths_; }

    // The address that current-address accesses of the 32-bit extension use: that of the last access.
    std::uint32_t currentAddress(PhyAddress where) const;

private:
    std::uint32_t& indirectAddress(PhyAddress where);
    bool reachesIndirectData(PhyAddress where, Space space, std::uint32_t address) const;
    std::uint32_t indirectRegister(PhyAddress where);
    void advanceIndirect(PhyAddress where, bool written);
    std::uint32_t identifier(PhyAddress where) const;
    std::uint32_t unmapped(PhyAddress where, Space space, std::uint32_t address) const;
    std::uint32_t initialValue(PhyAddress where, Space space, std::uint32_t address) const;

    std::unique_ptr<RegisterPaths> paths_;
    std::unique_ptr<MappedRegisters> mapped_;
    std::unordered_map<std::uint64_t, std::uint32_t> identifiers_; // of PHYs that have one of their own
    WrittenWords registers_;
    std::unordered_map<std::uint64_t, std::uint32_t> currentAddresses_;
    std::unordered_map<std::uint64_t, std::uint32_t> indirectAddresses_; // one for each PHY and MMD
};

} // namespace OrvaneSim
