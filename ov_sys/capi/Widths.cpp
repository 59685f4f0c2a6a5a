// The 8-, 16-, 32- and 64-bit accesses of the flat interface, and those at the PHY's address register.
#include "ov_sys/capi/Forward.h"

using namespace Orvane;

namespace {

// Narrow accesses work on the 32-bit word that holds the address.
unsigned alignedTo32(unsigned address) {
    return address & ~3U;
}

unsigned readWord(PhyTarget phy, unsigned address) {
    return theInterface().read32Adapter(phy.adapter, phy.phy, alignedTo32(address));
}

void writeWord(PhyTarget phy, unsigned address, unsigned word) {
    theInterface().write32Adapter(phy.adapter, phy.phy, address, word);
}

// The shifts count bits, and the result is not masked: docs/limits.md, "Odd on purpose".
unsigned read8(PhyTarget phy, unsigned address) {
    return readWord(phy, address) >> (address & 3U);
}

unsigned read16(PhyTarget phy, unsigned address) {
    return readWord(phy, address) >> (address & 2U);
}

void write8(PhyTarget phy, unsigned address, unsigned data) {
    const unsigned shift = (address & 3U) * 8U;
    const unsigned word = readWord(phy, address);
    writeWord(phy, alignedTo32(address), (word & ~(0xFFU << shift)) | (data & 0xFFU) << shift);
}

// The word goes back unchanged, to `target`; the new half-word stays here: docs/limits.md, "Odd on purpose".
void write16(PhyTarget phy, unsigned address, unsigned target) {
    writeWord(phy, target, readWord(phy, address));
}

void logWrite(int phyArg, unsigned address, unsigned value) {
    HW_Logging_Write32(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), address, value);
}

unsigned logRead(int phyArg, unsigned address, unsigned value, unsigned mask) {
    HW_Logging_Read32(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), address, value & mask);
    return value;
}

constexpr unsigned kByte = 0xFF;
constexpr unsigned kHalfWord = 0xFFFF;
constexpr unsigned kWord = 0xFFFFFFFF;

} // namespace

extern "C" {

// ---- HW_, not logged ----

unsigned HW_Read8_Abstracted(unsigned adapter, unsigned phy, unsigned address) {
    return guarded(kReported, [=] { return read8({adapter, phy}, address); });
}

void HW_Write8_Abstracted(unsigned adapter, unsigned phy, unsigned address, unsigned data) {
    guarded(kReported, [=] { write8({adapter, phy}, address, data); });
}

unsigned HW_Read16_Abstracted(unsigned adapter, unsigned phy, unsigned address) {
    return guarded(kReported, [=] { return read16({adapter, phy}, address); });
}

void HW_Write16_Abstracted(unsigned adapter, unsigned phy, unsigned address, unsigned /*data*/) {
    guarded(kReported, [=] { write16({adapter, phy}, address, address); });
}

unsigned HW_Read32_Abstracted(unsigned adapter, unsigned phy, unsigned address) {
    return forwarded(&HWInterface::read32Adapter, adapter, phy, address);
}

void HW_Write32_Abstracted(unsigned adapter, unsigned phy, unsigned address, unsigned data) {
    forwarded(&HWInterface::write32Adapter, adapter, phy, address, data);
}

unsigned long long HW_Read64_Abstracted(unsigned adapter, unsigned phy, unsigned address) {
    return forwarded(&HWInterface::read64Adapter, adapter, phy, address);
}

void HW_Write64_Abstracted(unsigned adapter, unsigned phy, unsigned address, unsigned long long data) {
    forwarded(&HWInterface::write64Adapter, adapter, phy, address, data);
}

// ---- HW_, logged ----

unsigned HW_Read8(unsigned adapter, unsigned phy, unsigned address) {
    const unsigned value = HW_Read8_Abstracted(adapter, phy, address);
    HW_Logging_Read32(adapter, phy, address, value & kByte);
    return value;
}

void HW_Write8(unsigned adapter, unsigned phy, unsigned address, unsigned data) {
    HW_Write8_Abstracted(adapter, phy, address, data);
    HW_Logging_Write32(adapter, phy, address, data & kByte);
}

unsigned HW_Read16(unsigned adapter, unsigned phy, unsigned address) {
    const unsigned value = HW_Read16_Abstracted(adapter, phy, address);
    HW_Logging_Read32(adapter, phy, address, value & kHalfWord);
    return value;
}

void HW_Write16(unsigned adapter, unsigned phy, unsigned address, unsigned data) {
    HW_Write16_Abstracted(adapter, phy, address, data);
    HW_Logging_Write32(adapter, phy, address, data & kHalfWord);
}

unsigned HW_Read32(unsigned adapter, unsigned phy, unsigned address) {
    const unsigned value = HW_Read32_Abstracted(adapter, phy, address);
    HW_Logging_Read32(adapter, phy, address, value);
    return value;
}

void HW_Write32(unsigned adapter, unsigned phy, unsigned address, unsigned data) {
    HW_Write32_Abstracted(adapter, phy, address, data);
    HW_Logging_Write32(adapter, phy, address, data);
}

unsigned long long HW_Read64(unsigned adapter, unsigned phy, unsigned address) {
    const unsigned long long value = HW_Read64_Abstracted(adapter, phy, address);
    HW_Logging_Read64(adapter, phy, address, value);
    return value;
}

void HW_Write64(unsigned adapter, unsigned phy, unsigned address, unsigned long long data) {
    HW_Write64_Abstracted(adapter, phy, address, data);
    HW_Logging_Write64(adapter, phy, address, data);
}

// ---- The PHY's address register; never logged ----

unsigned HW_Read32PreIncrementAddress_Abstracted(unsigned adapter, unsigned phy) {
    return forwarded(&HWInterface::read32AdapterPreincrementAddress, adapter, phy);
}

void HW_Write32PreIncrementAddress_Abstracted(unsigned adapter, unsigned phy, unsigned data) {
    forwarded(&HWInterface::write32AdapterPreincrementAddress, adapter, phy, data);
}

unsigned HW_Read32PreIncrementAddress(unsigned adapter, unsigned phy) {
    return HW_Read32PreIncrementAddress_Abstracted(adapter, phy);
}

void HW_Write32PreIncrementAddress(unsigned adapter, unsigned phy, unsigned data) {
    HW_Write32PreIncrementAddress_Abstracted(adapter, phy, data);
}

unsigned HW_Read32CurrentAddress_Abstracted(unsigned adapter, unsigned phy) {
    return forwarded(&HWInterface::read32AdapterCurrentAddress, adapter, phy);
}

void HW_Write32CurrentAddress_Abstracted(unsigned adapter, unsigned phy, unsigned data) {
    forwarded(&HWInterface::write32AdapterCurrentAddress, adapter, phy, data);
}

unsigned HW_Read32CurrentAddress(unsigned adapter, unsigned phy) {
    return HW_Read32CurrentAddress_Abstracted(adapter, phy);
}

void HW_Write32CurrentAddress(unsigned adapter, unsigned phy, unsigned data) {
    HW_Write32CurrentAddress_Abstracted(adapter, phy, data);
}

// ---- ZR_API_, by PHY argument, not logged ----

unsigned ZR_API_Read8_Abstracted(int phyArg, unsigned address) {
    return guarded(kReported, [=] { return read8(phyTarget(phyArg), address); });
}

void ZR_API_Write8_Abstracted(int phyArg, unsigned address, unsigned data) {
    guarded(kReported, [=] { write8(phyTarget(phyArg), address, data); });
}

unsigned ZR_API_Read16_Abstracted(int phyArg, unsigned address) {
    return guarded(kReported, [=] { return read16(phyTarget(phyArg), address); });
}

void ZR_API_Write16_Abstracted(int phyArg, unsigned address, unsigned /*data*/) {
    guarded(kReported, [=] { write16(phyTarget(phyArg), address, alignedTo32(address)); });
}

unsigned ZR_API_Read32_Abstracted(int phyArg, unsigned address) {
    return forwardedTo(phyArg, &HWInterface::read32Adapter, address);
}

void ZR_API_Write32_Abstracted(int phyArg, unsigned address, unsigned data) {
    forwardedTo(phyArg, &HWInterface::write32Adapter, address, data);
}

unsigned long long ZR_API_Read64_Abstracted(int phyArg, unsigned address) {
    return forwardedTo(phyArg, &HWInterface::read64Adapter, address);
}

void ZR_API_Write64_Abstracted(int phyArg, unsigned address, unsigned long long data) {
    forwardedTo(phyArg, &HWInterface::write64Adapter, address, data);
}

// ---- HW_API_, the same, logged with the default adapter and the PHY argument as it is ----

unsigned HW_API_Read8(int phyArg, unsigned address) {
    return logRead(phyArg, address, ZR_API_Read8_Abstracted(phyArg, address), kByte);
}

void HW_API_Write8(int phyArg, unsigned address, unsigned data) {
    ZR_API_Write8_Abstracted(phyArg, address, data);
    logWrite(phyArg, address, data & kByte);
}

unsigned HW_API_Read16(int phyArg, unsigned address) {
    return logRead(phyArg, address, ZR_API_Read16_Abstracted(phyArg, address), kHalfWord);
}

void HW_API_Write16(int phyArg, unsigned address, unsigned data) {
    ZR_API_Write16_Abstracted(phyArg, address, data);
    logWrite(phyArg, address, data & kHalfWord);
}

unsigned HW_API_Read32(int phyArg, unsigned address) {
    return logRead(phyArg, address, ZR_API_Read32_Abstracted(phyArg, address), kWord);
}

void HW_API_Write32(int phyArg, unsigned address, unsigned data) {
    ZR_API_Write32_Abstracted(phyArg, address, data);
    logWrite(phyArg, address, data);
}

unsigned long long HW_API_Read64(int phyArg, unsigned address) {
    const unsigned long long value = ZR_API_Read64_Abstracted(phyArg, address);
    HW_Logging_Read64(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), address, value);
    return value;
}

void HW_API_Write64(int phyArg, unsigned address, unsigned long long data) {
    ZR_API_Write64_Abstracted(phyArg, address, data);
    HW_Logging_Write64(HW_GetDefaultAdapter(), static_cast<unsigned>(phyArg), address, data);
}
}
