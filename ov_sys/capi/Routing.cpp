// Chooses the path of a register access: plain, over Clause 22, through the firmware's mailbox, or indirect.
#include "ov_sys/capi/AdapterTables.h"
#include "ov_sys/capi/IndirectPaths.h"

namespace {

using namespace Orvane;

constexpr unsigned kTgeMmd = 11;
constexpr unsigned kWindowMmd = 10;
constexpr unsigned kSerdesMmd = 27;
constexpr unsigned kPagedMmd = 28;

// The pair of Clause 22 registers through which the others are reached.
constexpr unsigned kAccessControl = 13;
constexpr unsigned kAccessWindow = 14;

// Points the PHY's window at a Clause 45 register.
void selectOverClause22(int phy, unsigned mmd, unsigned address) {
    constexpr unsigned kAccessData = 0x4000;
    ZR_API_MDIO_Write_C22(phy, kAccessControl, mmd & 31U);
    ZR_API_MDIO_Write_C22(phy, kAccessWindow, address);
    ZR_API_MDIO_Write_C22(phy, kAccessControl, (mmd & 31U) | kAccessData);
}

void writeOverClause22(int phy, unsigned mmd, unsigned address, unsigned value) {
    selectOverClause22(phy, mmd, address);
    ZR_API_MDIO_Write_C22(phy, kAccessWindow, value);
}

unsigned readOverClause22(int phy, unsigned mmd, unsigned address) {
    selectOverClause22(phy, mmd, address);
    return ZR_API_MDIO_Read_C22(phy, kAccessWindow);
}

} // namespace

namespace Orvane {

void writeTge(unsigned adapter, unsigned phy, unsigned address, unsigned value) {
    if (delegated(adapter, Delegation::Mmd11))
        writeRegisterViaPifMailbox(adapter, phy, kTgeMmd, address, value);
    else
        tgeIndirectRegisterWrite(adapter, phy, address, value);
}

unsigned readTge(unsigned adapter, unsigned phy, unsigned address) {
    return delegated(adapter, Delegation::Mmd11) ? readRegisterViaPifMailbox(adapter, phy, kTgeMmd, address)
                                                 : tgeIndirectRegisterRead(adapter, phy, address);
}

void writeSerdes(unsigned adapter, unsigned phy, unsigned address, unsigned value) {
    if (delegated(adapter, Delegation::Mmd27))
        writeRegisterViaPifMailbox(adapter, phy, kSerdesMmd, address, value);
    else
        synSdControlRegWrite(adapter, phy, address, value);
}

unsigned readSerdes(unsigned adapter, unsigned phy, unsigned address) {
    return delegated(adapter, Delegation::Mmd27)
               ? readRegisterViaPifMailbox(adapter, phy, kSerdesMmd, address)
               : synSdControlRegRead(adapter, phy, address);
}

} // namespace Orvane

extern "C" {

void ZR_API_MDIO_Write(unsigned int phy, unsigned int mmd, unsigned int address, unsigned int value) {
    const unsigned adapter = HW_GetDefaultAdapter();
    const PlainAccess plain{adapter, phy};
    if (overClause22(adapter))
        return writeOverClause22(static_cast<int>(phy), mmd, address, value);
    if (shouldDelegateWrite(adapter, mmd, address) != 0)
        return writeRegisterViaPifMailbox(adapter, phy, mmd, address, value);
    switch (mmd) {
    case kTgeMmd:
        return writeTge(adapter, phy, address, value);
    case kWindowMmd:
        return windowWrite(plain, address, value);
    case kSerdesMmd:
        return writeSerdes(adapter, phy, address, value);
    case kPagedMmd:
        return pagedWrite(plain, address);
    default:
        return plain.write(mmd, address, value);
    }
}

unsigned int ZR_API_MDIO_Read(unsigned int phy, unsigned int mmd, unsigned int address) {
    const unsigned adapter = HW_GetDefaultAdapter();
    const PlainAccess plain{adapter, phy};
    if (overClause22(adapter))
        return readOverClause22(static_cast<int>(phy), mmd, address);
    if (shouldDelegateRead(adapter, mmd, address) != 0)
        return readRegisterViaPifMailbox(adapter, phy, mmd, address);
    switch (mmd) {
    case kTgeMmd:
        return readTge(adapter, phy, address);
    case kWindowMmd:
        return windowRead(plain, address);
    case kSerdesMmd:
        return readSerdes(adapter, phy, address);
    case kPagedMmd:
        return pagedRead(plain, address);
    default:
        return plain.read(mmd, address);
    }
}

void HW_Write(unsigned int adapter, unsigned int phy, unsigned int mmd, unsigned int address,
              unsigned int value) {
    switch (mmd) {
    case kTgeMmd:
        return writeTge(adapter, phy, address, value);
    case kSerdesMmd:
        return writeSerdes(adapter, phy, address, value);
    case kWindowMmd: // reached through ZR_API_MDIO_Write() only
    case kPagedMmd:
        return;
    default:
        HW_Write_Abstracted(adapter, phy, mmd, address, value);
        HW_Logging_MDIOWrite(adapter, phy, mmd, address, value);
    }
}

unsigned int HW_Read(unsigned int adapter, unsigned int phy, unsigned int mmd, unsigned int address) {
    switch (mmd) {
    case kTgeMmd:
        return readTge(adapter, phy, address);
    case kSerdesMmd:
        return readSerdes(adapter, phy, address);
    case kWindowMmd: // reached through ZR_API_MDIO_Read() only
    case kPagedMmd:
        return 0;
    default:
        const unsigned value = HW_Read_Abstracted(adapter, phy, mmd, address);
        HW_Logging_MDIORead(adapter, phy, mmd, address, value);
        return value;
    }
}

void ZR_API_MDIO_Write_Default_PHY_ID(unsigned int mmd, unsigned int address, unsigned int value) {
    ZR_API_MDIO_Write(HW_GetDefault_PHY_ID(), mmd, address, value);
}

unsigned int ZR_API_MDIO_Read_Default_PHY_ID(unsigned int mmd, unsigned int address) {
    return ZR_API_MDIO_Read(HW_GetDefault_PHY_ID(), mmd, address);
}

void HW_Write_Default_PHY_ID(unsigned int mmd, unsigned int address, unsigned int value) {
    ZR_API_MDIO_Write_Default_PHY_ID(mmd, address, value);
}

unsigned int HW_Read_Default_PHY_ID(unsigned int mmd, unsigned int address) {
    return ZR_API_MDIO_Read_Default_PHY_ID(mmd, address);
}

void ZR_API_MDIO_Write_Multi(const unsigned int* phys, int count, unsigned int mmd, unsigned int address,
                             unsigned int value) {
    // The first two PHYs are on adapters 0 and 1, the others from 4 on: docs/limits.md, "Odd on purpose".
    for (int i = 0; i < count; ++i) {
        HW_SetDefaultAdapter(static_cast<unsigned>(i < 2 ? i : i + 2));
        ZR_API_MDIO_Write(phys[i], mmd, address, value);
    }
}
}
