// Clause 22 and queued accesses of the flat interface that name their device by PHY argument.
#include "ov_sys/capi/AdapterTables.h"
#include "ov_sys/capi/Forward.h"

using namespace Orvane;

extern "C" {

// ---- Clause 22; never logged ----

unsigned ZR_API_MDIO_Read_C22_Abstracted(int phyArg, unsigned reg) {
    return forwardedTo(phyArg, &HWInterface::readAdapter_c22, reg);
}

void ZR_API_MDIO_Write_C22_Abstracted(int phyArg, unsigned reg, unsigned data) {
    forwardedTo(phyArg, &HWInterface::writeAdapter_c22, reg, data);
}

unsigned ZR_API_MDIO_Read_C22(int phyArg, unsigned reg) {
    return ZR_API_MDIO_Read_C22_Abstracted(phyArg, reg);
}

void ZR_API_MDIO_Write_C22(int phyArg, unsigned reg, unsigned data) {
    ZR_API_MDIO_Write_C22_Abstracted(phyArg, reg, data);
}

// ---- Queued; logged with the default adapter and the PHY argument as it is ----

void ZR_API_MDIO_BlockRead_Abstracted(int phyArg, unsigned mmd, unsigned reg) {
    forwardedTo(phyArg, &HWInterface::blockReadAdapter, mmd, reg);
}

void ZR_API_MDIO_BlockWrite_Abstracted(int phyArg, unsigned mmd, unsigned reg, unsigned data) {
    forwardedTo(phyArg, &HWInterface::blockWriteAdapter, mmd, reg, data);
}

void ZR_API_MDIO_BlockRead(int phyArg, unsigned mmd, unsigned reg) {
    if (reachedByDefaultAdapterOnly(mmd))
        return;
    ZR_API_MDIO_BlockRead_Abstracted(phyArg, mmd, reg);
    HW_Logging_BlockMDIORead(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), mmd, reg);
}

void ZR_API_MDIO_BlockWrite(int phyArg, unsigned mmd, unsigned reg, unsigned data) {
    if (reachedByDefaultAdapterOnly(mmd))
        return;
    ZR_API_MDIO_BlockWrite_Abstracted(phyArg, mmd, reg, data);
    HW_Logging_BlockMDIOWrite(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), mmd, reg, data);
}

void ZR_API_MDIO_BlockRead_Default_PHY_ID(unsigned mmd, unsigned reg) {
    ZR_API_MDIO_BlockRead(static_cast<int>(HW_GetDefault_PHY_ID()), mmd, reg);
}

void ZR_API_MDIO_BlockWrite_Default_PHY_ID(unsigned mmd, unsigned reg, unsigned data) {
    ZR_API_MDIO_BlockWrite(static_cast<int>(HW_GetDefault_PHY_ID()), mmd, reg, data);
}

void ZR_API_BlockRead32_Abstracted(int phyArg, unsigned address) {
    forwardedTo(phyArg, &HWInterface::blockRead32Adapter, address);
}

void ZR_API_BlockWrite32_Abstracted(int phyArg, unsigned address, unsigned data) {
    forwardedTo(phyArg, &HWInterface::blockWrite32Adapter, address, data);
}

void ZR_API_BlockRead32(int phyArg, unsigned address) {
    ZR_API_BlockRead32_Abstracted(phyArg, address);
    HW_Logging_BlockRead32(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), address);
}

void ZR_API_BlockWrite32(int phyArg, unsigned address, unsigned data) {
    ZR_API_BlockWrite32_Abstracted(phyArg, address, data);
    HW_Logging_BlockWrite32(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), address, data);
}

void ZR_API_BlockRead64_Abstracted(int phyArg, unsigned address) {
    forwardedTo(phyArg, &HWInterface::blockRead64Adapter, address);
}

void ZR_API_BlockWrite64_Abstracted(int phyArg, unsigned address, unsigned long long data) {
    forwardedTo(phyArg, &HWInterface::blockWrite64Adapter, address, data);
}

void ZR_API_BlockRead64(int phyArg, unsigned address) {
    ZR_API_BlockRead64_Abstracted(phyArg, address);
    HW_Logging_BlockRead64(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), address);
}

void ZR_API_BlockWrite64(int phyArg, unsigned address, unsigned long long data) {
    ZR_API_BlockWrite64_Abstracted(phyArg, address, data);
    HW_Logging_BlockWrite64(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), address, data);
}

// ---- Execution, under names that are misspelled on purpose (docs/limits.md): logged for a PHY id on the
// default adapter, not for an argument that names its adapter ----

unsigned* ZR_API_MDIO_BlockOperationExecute_Abstarcted(int phyArg) {
    return phyArg < 0 ? forwardedTo(phyArg, &HWInterface::blockOperationExecuteAdapter)
                      : HW_BlockOperationExecute(static_cast<unsigned>(phyArg));
}

unsigned* ZR_API_MDIO_BlockOperationExecute_C22_Abstarcted(int phyArg) {
    return phyArg < 0 ? forwardedTo(phyArg, &HWInterface::blockOperationExecuteAdapter_c22)
                      : HW_BlockOperationExecute_C22(static_cast<unsigned>(phyArg));
}

unsigned* ZR_API_MDIO_BlockOperationExecute_C22_ZrExt32_Abstarcted(int phyArg) {
    return phyArg < 0 ? forwardedTo(phyArg, &HWInterface::blockOperationExecuteAdapter_c22_ZrExt32)
                      : HW_BlockOperationExecute_C22_ZrExt32(static_cast<unsigned>(phyArg));
}

unsigned* ZR_API_MDIO_BlockOperationExecute(int phyArg) {
    return overClause22(HW_GetDefaultAdapter()) ? ZR_API_MDIO_BlockOperationExecute_C22_Abstarcted(phyArg)
                                                : ZR_API_MDIO_BlockOperationExecute_Abstarcted(phyArg);
}

int ZR_API_MDIO_SupportsBlockOperations(void) {
    return 1;
}

unsigned ZR_API_MDIO_MaxBlockOperations(void) {
    return forwarded(&HWInterface::maxQueueSize);
}
}
