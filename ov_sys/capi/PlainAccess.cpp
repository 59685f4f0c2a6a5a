// The plain Clause 45 access by PHY argument.
#include "ov_sys/capi/Forward.h"
#include "ov_sys/capi/IndirectPaths.h"

namespace Orvane {

void PlainAccess::write(unsigned mmd, unsigned reg, unsigned value) const {
    ZR_API_MDIO_Write_Abstracted(static_cast<int>(phy), mmd, reg, value);
    HW_Logging_MDIOWrite(adapter, phy, mmd, reg, value);
}

unsigned PlainAccess::read(unsigned mmd, unsigned reg) const {
    const unsigned value = ZR_API_MDIO_Read_Abstracted(static_cast<int>(phy), mmd, reg);
    HW_Logging_MDIORead(adapter, phy, mmd, reg, value);
    return value;
}

} // namespace Orvane

using namespace Orvane;

extern "C" {

void ZR_API_MDIO_Write_Abstracted(int phyArg, unsigned mmd, unsigned address, unsigned value) {
    forwardedTo(phyArg, &HWInterface::writeAdapter, mmd, address, value);
}

unsigned ZR_API_MDIO_Read_Abstracted(int phyArg, unsigned mmd, unsigned address) {
    return forwardedTo(phyArg, &HWInterface::readAdapter, mmd, address);
}
}
