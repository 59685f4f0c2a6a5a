// The single 16-bit register accesses of the flat interface that take no route and are not logged.
#include "ov_sys/capi/Forward.h"

using namespace Orvane;

extern "C" {

unsigned HW_Read_Abstracted(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg) {
    return forwarded(&HWInterface::readAdapter, adapter, phyId, mmd, reg);
}

void HW_Write_Abstracted(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg, unsigned data) {
    forwarded(&HWInterface::writeAdapter, adapter, phyId, mmd, reg, data);
}

unsigned HW_Read_C22_Abstracted(unsigned adapter, unsigned phyId, unsigned reg) {
    return forwarded(&HWInterface::readAdapter_c22, adapter, phyId, reg);
}

void HW_Write_C22_Abstracted(unsigned adapter, unsigned phyId, unsigned reg, unsigned data) {
    forwarded(&HWInterface::writeAdapter_c22, adapter, phyId, reg, data);
}

unsigned HW_Read_C22(unsigned adapter, unsigned phyId, unsigned reg) {
    return HW_Read_C22_Abstracted(adapter, phyId, reg);
}

void HW_Write_C22(unsigned adapter, unsigned phyId, unsigned reg, unsigned data) {
    HW_Write_C22_Abstracted(adapter, phyId, reg, data);
}

void ZR_API_MDIO_Write_Abstracted(int phyArg, unsigned mmd, unsigned address, unsigned value) {
    forwardedTo(phyArg, &HWInterface::writeAdapter, mmd, address, value);
}

unsigned ZR_API_MDIO_Read_Abstracted(int phyArg, unsigned mmd, unsigned address) {
    return forwardedTo(phyArg, &HWInterface::readAdapter, mmd, address);
}
}
