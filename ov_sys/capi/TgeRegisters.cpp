// TGE registers (MMD 11), reached through the GFE's registers in MMD 29.
#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <orvane/orvane.h>

namespace {

constexpr unsigned kMmd = 29;
constexpr unsigned kSmiCommand = 0xC203;
constexpr unsigned kSmiData = 0xC204;

// SMI registers of the GFE that lead to its indirect registers.
constexpr unsigned kControl = 20;
constexpr unsigned kReadData = 21;
constexpr unsigned kWriteData = 23;

unsigned controlWord(unsigned address, unsigned bank) {
    return (address & 0x7FU) | (bank & 7U) << 7U;
}

// Block 0 is the SMI registers, blocks 1 to 3 are banks of indirect registers.
constexpr unsigned kBanks = 3;

unsigned blockOf(unsigned address) {
    return address >> 12U & 0xFU;
}

unsigned offsetOf(unsigned address) {
    return address & 0xFFFU;
}

void reportUnsupported(unsigned block) {
    Orvane::Diagnostics::error("Error: unsupported TGE register block ID: ", block);
}

} // namespace

extern "C" {

void gfeSmiRegisterSet(unsigned int adapter, unsigned int phy, unsigned int reg, unsigned int value) {
    HW_Write(adapter, phy, kMmd, kSmiData, value);
    HW_Write(adapter, phy, kMmd, kSmiCommand, (reg & 0x1FU) | 0x8000U);
}

unsigned int gfeSmiRegisterGet(unsigned int adapter, unsigned int phy, unsigned int reg) {
    HW_Write(adapter, phy, kMmd, kSmiCommand, (reg & 0x1FU) | 0xC000U);
    return HW_Read(adapter, phy, kMmd, kSmiData);
}

void gfeIndirectRegisterSet(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int bank,
                            unsigned int value) {
    gfeSmiRegisterSet(adapter, phy, kWriteData, value);
    gfeSmiRegisterSet(adapter, phy, kControl, controlWord(address, bank) | 0x4000U);
}

unsigned int gfeIndirectRegisterGet(unsigned int adapter, unsigned int phy, unsigned int address,
                                    unsigned int bank) {
    gfeSmiRegisterSet(adapter, phy, kControl, controlWord(address, bank) | 0x8000U);
    return gfeSmiRegisterGet(adapter, phy, kReadData);
}

void tgeIndirectRegisterWrite(unsigned int adapter, unsigned int phy, unsigned int address,
                              unsigned int value) {
    const unsigned block = blockOf(address);
    if (block == 0)
        gfeSmiRegisterSet(adapter, phy, offsetOf(address), value);
    else if (block <= kBanks)
        gfeIndirectRegisterSet(adapter, phy, offsetOf(address), block - 1, value);
    else
        reportUnsupported(block);
}

unsigned int tgeIndirectRegisterRead(unsigned int adapter, unsigned int phy, unsigned int address) {
    const unsigned block = blockOf(address);
    if (block == 0)
        return gfeSmiRegisterGet(adapter, phy, offsetOf(address));
    if (block <= kBanks)
        return gfeIndirectRegisterGet(adapter, phy, offsetOf(address), block - 1);
    reportUnsupported(block);
    return 0;
}
}
