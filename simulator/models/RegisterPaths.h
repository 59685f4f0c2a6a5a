// The indirect paths to a PHY's registers.
#pragma once

#include "simulator/models/FirmwareMailbox.h"
#include "simulator/models/PathTroubles.h"
#include "simulator/models/PhyRegisters.h"
#include "simulator/models/WindowPath.h"

namespace OrvaneSim {

// What a Clause 45 access to one of the paths' registers brings about beyond that register. To be told of
// every access on the bus; any other register is left as it is.
class RegisterPaths {
public:
    PathTroubles troubles;

    // To be called before the register is read and after it was written; `address` is (MMD << 16) |
    // register.
    // Registers of other MMDs may be read without being told of.
    static constexpr bool mayNotice(std::uint32_t address) {
        return address >> 16 == 4 || address >> 16 == 30;
    }
    void beforeRead(const PhyRegisters& phy, std::uint32_t address);
    void afterWrite(const PhyRegisters& phy, std::uint32_t address);

private:
    FirmwareMailbox mailbox_;
    WindowPath window_;
};

} // namespace OrvaneSim
