// The bridge in MMD 30 to the SerDes control registers, which are the registers of MMD 27.
#pragma once

#include "simulator/models/PathTroubles.h"
#include "simulator/models/PhyRegisters.h"

namespace OrvaneSim {

// Register numbers in hexadecimal: a write is an address to A104 and a value to A105; a read is an address
// to A108, and its value stands in A109. A111 is the status of the last access, cleared by a write to A110.
class SerdesBridge {
public:
    static void afterWrite(const PhyRegisters& phy, std::uint32_t reg, const PathTroubles& troubles);
};

} // namespace OrvaneSim
