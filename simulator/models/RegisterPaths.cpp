// Each access is shown to every path.
#include "simulator/models/RegisterPaths.h"

#include "simulator/models/PagedRegisters.h"
#include "simulator/models/SerdesBridge.h"
#include "simulator/models/TgeRegisters.h"

namespace OrvaneSim {

void RegisterPaths::beforeRead(const PhyRegisters& phy, std::uint32_t address) {
    const std::uint32_t reg = address & 0xFFFF;
    switch (address >> 16) {
    case 4:
        PagedRegisters::beforeRead(phy, reg);
        return;
    case 30:
        mailbox_.beforeRead(phy, reg, troubles);
        window_.beforeRead(phy, reg);
        return;
    default:
        return;
    }
}

void RegisterPaths::afterWrite(const PhyRegisters& phy, std::uint32_t address) {
    const std::uint32_t reg = address & 0xFFFF;
    switch (address >> 16) {
    case 4:
        PagedRegisters::afterWrite(phy, reg);
        return;
    case 29:
        TgeRegisters::afterWrite(phy, reg);
        return;
    case 30:
        mailbox_.afterWrite(phy, reg, troubles);
        window_.afterWrite(phy, reg, troubles);
        SerdesBridge::afterWrite(phy, reg, troubles);
        return;
    default:
        return;
    }
}

} // namespace OrvaneSim
