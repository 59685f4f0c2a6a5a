// The register accesses of HWInterface.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"

namespace Orvane {
namespace {

unsigned long packed(unsigned mmd, unsigned reg) {
    return (mmd & 0xFFU) << 16U | (reg & 0xFFFFU);
}

unsigned int* firstOf(std::vector<unsigned>& values) {
    return values.empty() ? nullptr : values.data();
}

constexpr const char* kBoardAdvice = " ATTEMPTED: You need to use a BoardControl function instead. Raw fpga "
                                     "reads/writes don't make sense. Address = ";

[[noreturn]] void refuseBoardRead(unsigned address) {
    Diagnostics::error("BOARD READ", kBoardAdvice, address);
    throw Exceptions::Standard("Interface Error.");
}

[[noreturn]] void refuseBoardWrite(unsigned address, unsigned long long data) {
    Diagnostics::error("BOARD WRITE", kBoardAdvice, address, ", data = ", data);
    throw Exceptions::Standard("Interface Error.");
}

} // namespace

// ---- Clause 45 ----

void HWInterface::writeAdapter(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg, unsigned data) {
    resolve(adapter, phyId)->write_16bit_c45(packed(mmd, reg), data);
}

void HWInterface::write(unsigned phyId, unsigned mmd, unsigned reg, unsigned data) {
    writeAdapter(defaultAdapter_, phyId, mmd, reg, data);
}

unsigned HWInterface::readAdapter(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg) {
    return resolve(adapter, phyId)->read_16bit_c45(packed(mmd, reg));
}

unsigned HWInterface::read(unsigned phyId, unsigned mmd, unsigned reg) {
    return readAdapter(defaultAdapter_, phyId, mmd, reg);
}

// ---- Clause 22 ----

void HWInterface::writeAdapter_c22(unsigned adapter, unsigned phyId, unsigned reg, unsigned data) {
    resolve(adapter, phyId)->write_16bit_c22(reg, data);
}

void HWInterface::write_c22(unsigned phyId, unsigned reg, unsigned data) {
    writeAdapter_c22(defaultAdapter_, phyId, reg, data);
}

unsigned HWInterface::readAdapter_c22(unsigned adapter, unsigned phyId, unsigned reg) {
    return resolve(adapter, phyId)->read_16bit_c22(reg);
}

unsigned HWInterface::read_c22(unsigned phyId, unsigned reg) {
    return readAdapter_c22(defaultAdapter_, phyId, reg);
}

// ---- Queued Clause 45 ----

void HWInterface::blockWriteAdapter(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg,
                                    unsigned data) {
    resolve(adapter, phyId)->addBlockWrite_16bit(packed(mmd, reg), data);
}

void HWInterface::blockWrite(unsigned phyId, unsigned mmd, unsigned reg, unsigned data) {
    blockWriteAdapter(defaultAdapter_, phyId, mmd, reg, data);
}

void HWInterface::blockReadAdapter(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg) {
    resolve(adapter, phyId)->addBlockRead_16bit(packed(mmd, reg));
}

void HWInterface::blockRead(unsigned phyId, unsigned mmd, unsigned reg) {
    blockReadAdapter(defaultAdapter_, phyId, mmd, reg);
}

// ---- 32-bit registers ----

void HWInterface::write32Adapter(unsigned adapter, unsigned phyId, unsigned address, unsigned data) {
    resolve(adapter, phyId)->write_32bit(address, data, deviceAt(adapter).getKelSmbProto());
}

void HWInterface::write32(unsigned phyId, unsigned address, unsigned data) {
    write32Adapter(defaultAdapter_, phyId, address, data);
}

unsigned HWInterface::read32Adapter(unsigned adapter, unsigned phyId, unsigned address) {
    return resolve(adapter, phyId)->read_32bit(address, deviceAt(adapter).getKelSmbProto());
}

unsigned HWInterface::read32(unsigned phyId, unsigned address) {
    return read32Adapter(defaultAdapter_, phyId, address);
}

void HWInterface::blockWrite32Adapter(unsigned adapter, unsigned phyId, unsigned address, unsigned data) {
    resolve(adapter, phyId)->addBlockWrite_32bit(address, data);
}

void HWInterface::blockWrite32(unsigned phyId, unsigned address, unsigned data) {
    blockWrite32Adapter(defaultAdapter_, phyId, address, data);
}

void HWInterface::blockRead32Adapter(unsigned adapter, unsigned phyId, unsigned address) {
    resolve(adapter, phyId)->addBlockRead_32bit(address);
}

void HWInterface::blockRead32(unsigned phyId, unsigned address) {
    blockRead32Adapter(defaultAdapter_, phyId, address);
}

// ---- 64-bit registers ----

void HWInterface::write64Adapter(unsigned, unsigned, unsigned, unsigned long long) {}

void HWInterface::write64(unsigned, unsigned, unsigned long long) {}

unsigned long long HWInterface::read64Adapter(unsigned, unsigned, unsigned) {
    return ~0ULL;
}

unsigned long long HWInterface::read64(unsigned phyId, unsigned address) {
    return read64Adapter(defaultAdapter_, phyId, address);
}

void HWInterface::blockWrite64Adapter(unsigned, unsigned, unsigned, unsigned long long) {}

void HWInterface::blockWrite64(unsigned, unsigned, unsigned long long) {}

void HWInterface::blockRead64Adapter(unsigned, unsigned, unsigned) {}

void HWInterface::blockRead64(unsigned, unsigned) {}

// ---- The address register of the 32-bit extension ----

unsigned HWInterface::read32AdapterPreincrementAddress(unsigned adapter, unsigned phyId) {
    return resolve(adapter, phyId)->read_32bit_preincrement_address();
}

unsigned HWInterface::read32PreincrementAddress(unsigned phyId) {
    return read32AdapterPreincrementAddress(defaultAdapter_, phyId);
}

void HWInterface::write32AdapterPreincrementAddress(unsigned adapter, unsigned phyId, unsigned data) {
    resolve(adapter, phyId)->write_32bit_preincrement_address(data);
}

void HWInterface::write32PreincrementAddress(unsigned phyId, unsigned data) {
    write32AdapterPreincrementAddress(defaultAdapter_, phyId, data);
}

unsigned HWInterface::read32AdapterCurrentAddress(unsigned adapter, unsigned phyId) {
    return resolve(adapter, phyId)->read_32bit_current_address();
}

unsigned HWInterface::read32CurrentAddress(unsigned phyId) {
    return read32AdapterCurrentAddress(defaultAdapter_, phyId);
}

void HWInterface::write32AdapterCurrentAddress(unsigned adapter, unsigned phyId, unsigned data) {
    resolve(adapter, phyId)->write_32bit_current_address(data);
}

void HWInterface::write32CurrentAddress(unsigned phyId, unsigned data) {
    write32AdapterCurrentAddress(defaultAdapter_, phyId, data);
}

// ---- Blocks ----

std::vector<unsigned>& HWInterface::executeBlock(unsigned adapter, unsigned phyId, MDIO::MDIO_clause frames) {
    const auto entry = resolve(adapter, phyId);
    std::vector<unsigned>* values = nullptr;
    switch (frames) {
    case MDIO::CLAUSE_22:
        values = entry->executeBlock_c22();
        break;
    case MDIO::CLAUSE_22_32BIT:
        values = entry->executeBlock_c22_32bit();
        break;
    case MDIO::CLAUSE_45:
    default:
        values = entry->executeBlock();
    }
    blockQueueSize = static_cast<unsigned>(values->size());
    return *values;
}

unsigned int* HWInterface::blockOperationExecuteAdapter(unsigned adapter, unsigned phyId) {
    return firstOf(executeBlock(adapter, phyId, MDIO::CLAUSE_45));
}

unsigned int* HWInterface::blockOperationExecute(unsigned phyId) {
    return blockOperationExecuteAdapter(defaultAdapter_, phyId);
}

unsigned int* HWInterface::blockOperationExecuteAdapter_c22(unsigned adapter, unsigned phyId) {
    return firstOf(executeBlock(adapter, phyId, MDIO::CLAUSE_22));
}

unsigned int* HWInterface::blockOperationExecute_c22(unsigned phyId) {
    return blockOperationExecuteAdapter_c22(defaultAdapter_, phyId);
}

unsigned int* HWInterface::blockOperationExecuteAdapter_c22_ZrExt32(unsigned adapter, unsigned phyId) {
    return firstOf(executeBlock(adapter, phyId, MDIO::CLAUSE_22_32BIT));
}

unsigned int* HWInterface::blockOperationExecute_c22_ZrExt32(unsigned phyId) {
    return blockOperationExecuteAdapter_c22_ZrExt32(defaultAdapter_, phyId);
}

// ---- Refused board accesses ----

void HWInterface::boardWrite(unsigned address, unsigned data) {
    refuseBoardWrite(address, data);
}

void HWInterface::boardWriteAdapter(unsigned, unsigned address, unsigned data) {
    refuseBoardWrite(address, data);
}

unsigned HWInterface::boardRead(unsigned address) {
    refuseBoardRead(address);
}

unsigned HWInterface::boardReadAdapter(unsigned, unsigned address) {
    refuseBoardRead(address);
}

void HWInterface::boardWrite32(unsigned address, unsigned data) {
    refuseBoardWrite(address, data);
}

void HWInterface::boardWrite32Adapter(unsigned, unsigned address, unsigned data) {
    refuseBoardWrite(address, data);
}

unsigned HWInterface::boardRead32(unsigned address) {
    refuseBoardRead(address);
}

unsigned HWInterface::boardRead32Adapter(unsigned, unsigned address) {
    refuseBoardRead(address);
}

void HWInterface::boardWrite64(unsigned address, unsigned long long data) {
    refuseBoardWrite(address, data);
}

void HWInterface::boardWrite64Adapter(unsigned, unsigned address, unsigned long long data) {
    refuseBoardWrite(address, data);
}

unsigned long long HWInterface::boardRead64(unsigned address) {
    refuseBoardRead(address);
}

unsigned long long HWInterface::boardRead64Adapter(unsigned, unsigned address) {
    refuseBoardRead(address);
}

} // namespace Orvane
