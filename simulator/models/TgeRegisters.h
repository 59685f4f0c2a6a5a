// The GFE's registers behind MMD 29, which are the TGE registers: those of MMD 11.
#pragma once

#include "simulator/models/PhyRegisters.h"

namespace OrvaneSim {

// Numbers in hexadecimal. A write to C203 starts an access to the SMI register in its low 5 bits: 8000
// writes it from C204, C000 reads it into C204. SMI register 14 starts one to an indirect register (bits 0
// to 6 its address, 7 to 9 its bank): 4000 writes it from SMI register 17, 8000 reads it into SMI
// register 15. MMD 11 holds the SMI registers from 0000 on and the banks from 1000, 2000, ... on.
class TgeRegisters {
public:
    static void afterWrite(const PhyRegisters& phy, std::uint32_t reg);
};

} // namespace OrvaneSim
