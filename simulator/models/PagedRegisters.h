// The pages in MMD 4 through which the registers of MMD 28 are reached.
#pragma once

#include "simulator/models/PhyRegisters.h"

namespace OrvaneSim {

// Numbers in hexadecimal: C200 to C2FF show the page of MMD 28 that the low 3 bits of C180 select, from
// register (page x 100) on. On page 0, C2EF and C2FF show the low and high byte of an indexed register, 8000
// + (lane x 100) + index of MMD 28; C20B selects it by (lane << 5 | index), its eight bits in reverse order.
class PagedRegisters {
public:
    static void beforeRead(const PhyRegisters& phy, std::uint32_t reg);
    static void afterWrite(const PhyRegisters& phy, std::uint32_t reg);
};

} // namespace OrvaneSim
