// The window in MMD 30 to the PHY's 32-bit space, through which the registers of MMD 10 are reached.
#pragma once

#include "simulator/models/PhyRegisters.h"
#include "simulator/models/PolledCommands.h"

namespace OrvaneSim {

// Numbers in hexadecimal: 202 and 203 are the upper and lower half of a byte address, 204 and 205 those of
// the 32-bit word there, 200 is the command (8000 fetches the word, C000 stores it), in which bit 100 reads
// set while a fetch is busy.
class WindowPath {
public:
    void beforeRead(const PhyRegisters& phy, std::uint32_t reg);
    void afterWrite(const PhyRegisters& phy, std::uint32_t reg, const PathTroubles& troubles);

private:
    PolledCommands fetches_;
};

} // namespace OrvaneSim
