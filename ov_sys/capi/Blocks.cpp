// The queued accesses of the flat interface that name their device by adapter, and their execution.
#include "ov_sys/capi/AdapterTables.h"
#include "ov_sys/capi/Forward.h"

using namespace Orvane;

namespace {

// Executes a block and logs its values.
unsigned* executeLogged(unsigned adapter, unsigned phy, MDIO::MDIO_clause frames) {
    return guarded(kReported, [=]() -> unsigned* {
        std::vector<unsigned>& values = theInterface().executeBlock(adapter, phy, frames);
        for (const unsigned value : values)
            HW_Logging_BlockMDIOFetch(adapter, phy, 0, 0, 0, value);
        return values.empty() ? nullptr : values.data();
    });
}

} // namespace

extern "C" {

// ---- Clause 45 ----

void HW_BlockRead_Abstracted(unsigned phy, unsigned mmd, unsigned reg) {
    forwarded(&HWInterface::blockRead, phy, mmd, reg);
}

void HW_BlockWrite_Abstracted(unsigned phy, unsigned mmd, unsigned reg, unsigned data) {
    forwarded(&HWInterface::blockWrite, phy, mmd, reg, data);
}

void HW_BlockReadAdapter_Abstracted(unsigned adapter, unsigned phy, unsigned mmd, unsigned reg) {
    forwarded(&HWInterface::blockReadAdapter, adapter, phy, mmd, reg);
}

void HW_BlockWriteAdapter_Abstracted(unsigned adapter, unsigned phy, unsigned mmd, unsigned reg,
                                     unsigned data) {
    forwarded(&HWInterface::blockWriteAdapter, adapter, phy, mmd, reg, data);
}

void HW_BlockReadAdapter(unsigned adapter, unsigned phy, unsigned mmd, unsigned reg) {
    if (reachedByDefaultAdapterOnly(mmd))
        return;
    HW_BlockReadAdapter_Abstracted(adapter, phy, mmd, reg);
    HW_Logging_BlockMDIORead(adapter, phy, mmd, reg);
}

// MMD 11 and 27 are not queued but written at once, whatever the delegation flags say: docs/limits.md, "Odd
// on purpose".
void HW_BlockWriteAdapter(unsigned adapter, unsigned phy, unsigned mmd, unsigned reg, unsigned data) {
    if (reachedByDefaultAdapterOnly(mmd))
        return;
    if (mmd == Routing::kTgeMmd)
        return tgeIndirectRegisterWrite(adapter, phy, reg, data);
    if (mmd == Routing::kSerdesMmd)
        return synSdControlRegWrite(adapter, phy, reg, data);
    HW_BlockWriteAdapter_Abstracted(adapter, phy, mmd, reg, data);
    HW_Logging_BlockMDIOWrite(adapter, phy, mmd, reg, data);
}

void HW_BlockRead(unsigned phy, unsigned mmd, unsigned reg) {
    HW_BlockReadAdapter(HW_GetDefaultAdapter(), phy, mmd, reg);
}

void HW_BlockWrite(unsigned phy, unsigned mmd, unsigned reg, unsigned data) {
    HW_BlockWriteAdapter(HW_GetDefaultAdapter(), phy, mmd, reg, data);
}

void HW_BlockRead_Default_PHY_ID(unsigned mmd, unsigned reg) {
    HW_BlockRead(HW_GetDefault_PHY_ID(), mmd, reg);
}

void HW_BlockWrite_Default_PHY_ID(unsigned mmd, unsigned reg, unsigned data) {
    HW_BlockWrite(HW_GetDefault_PHY_ID(), mmd, reg, data);
}

// ---- 32-bit registers ----

void HW_BlockRead32_Abstracted(unsigned phy, unsigned address) {
    forwarded(&HWInterface::blockRead32, phy, address);
}

void HW_BlockWrite32_Abstracted(unsigned phy, unsigned address, unsigned data) {
    forwarded(&HWInterface::blockWrite32, phy, address, data);
}

void HW_BlockRead32Adapter_Abstracted(unsigned adapter, unsigned phy, unsigned address) {
    forwarded(&HWInterface::blockRead32Adapter, adapter, phy, address);
}

void HW_BlockWrite32Adapter_Abstracted(unsigned adapter, unsigned phy, unsigned address, unsigned data) {
    forwarded(&HWInterface::blockWrite32Adapter, adapter, phy, address, data);
}

void HW_BlockRead32Adapter(unsigned adapter, unsigned phy, unsigned address) {
    HW_BlockRead32Adapter_Abstracted(adapter, phy, address);
    HW_Logging_BlockRead32(adapter, phy, address);
}

void HW_BlockWrite32Adapter(unsigned adapter, unsigned phy, unsigned address, unsigned data) {
    HW_BlockWrite32Adapter_Abstracted(adapter, phy, address, data);
    HW_Logging_BlockWrite32(adapter, phy, address, data);
}

void HW_BlockRead32(unsigned phy, unsigned address) {
    HW_BlockRead32Adapter(HW_GetDefaultAdapter(), phy, address);
}

void HW_BlockWrite32(unsigned phy, unsigned address, unsigned data) {
    HW_BlockWrite32Adapter(HW_GetDefaultAdapter(), phy, address, data);
}

// ---- 64-bit registers ----

void HW_BlockRead64_Abstracted(unsigned phy, unsigned address) {
    forwarded(&HWInterface::blockRead64, phy, address);
}

void HW_BlockWrite64_Abstracted(unsigned phy, unsigned address, unsigned long long data) {
    forwarded(&HWInterface::blockWrite64, phy, address, data);
}

void HW_BlockRead64Adapter_Abstracted(unsigned adapter, unsigned phy, unsigned address) {
    forwarded(&HWInterface::blockRead64Adapter, adapter, phy, address);
}

void HW_BlockWrite64Adapter_Abstracted(unsigned adapter, unsigned phy, unsigned address,
                                       unsigned long long data) {
    forwarded(&HWInterface::blockWrite64Adapter, adapter, phy, address, data);
}

void HW_BlockRead64Adapter(unsigned adapter, unsigned phy, unsigned address) {
    HW_BlockRead64Adapter_Abstracted(adapter, phy, address);
    HW_Logging_BlockRead64(adapter, phy, address);
}

void HW_BlockWrite64Adapter(unsigned adapter, unsigned phy, unsigned address, unsigned long long data) {
    HW_BlockWrite64Adapter_Abstracted(adapter, phy, address, data);
    HW_Logging_BlockWrite64(adapter, phy, address, data);
}

void HW_BlockRead64(unsigned phy, unsigned address) {
    HW_BlockRead64Adapter(HW_GetDefaultAdapter(), phy, address);
}

void HW_BlockWrite64(unsigned phy, unsigned address, unsigned long long data) {
    HW_BlockWrite64Adapter(HW_GetDefaultAdapter(), phy, address, data);
}

// ---- Execution ----

unsigned* HW_BlockOperationExecuteAdapter(unsigned adapter, unsigned phy) {
    return executeLogged(adapter, phy, MDIO::CLAUSE_45);
}

unsigned* HW_BlockOperationExecuteAdapter_C22(unsigned adapter, unsigned phy) {
    return executeLogged(adapter, phy, MDIO::CLAUSE_22);
}

unsigned* HW_BlockOperationExecuteAdapter_C22_ZrExt32(unsigned adapter, unsigned phy) {
    return executeLogged(adapter, phy, MDIO::CLAUSE_22_32BIT);
}

unsigned* HW_BlockOperationExecute(unsigned phy) {
    return HW_BlockOperationExecuteAdapter(HW_GetDefaultAdapter(), phy);
}

unsigned* HW_BlockOperationExecute_C22(unsigned phy) {
    return HW_BlockOperationExecuteAdapter_C22(HW_GetDefaultAdapter(), phy);
}

unsigned* HW_BlockOperationExecute_C22_ZrExt32(unsigned phy) {
    return HW_BlockOperationExecuteAdapter_C22_ZrExt32(HW_GetDefaultAdapter(), phy);
}

unsigned HW_BlockReadQueueSize(void) {
    return forwarded(&HWInterface::blockReadQueueSize);
}

int HW_BroadcastEnable(unsigned phy, unsigned on) {
    return forwarded(&HWInterface::setMdioPortBroadcast, phy, on != 0) ? 1 : 0;
}
}
