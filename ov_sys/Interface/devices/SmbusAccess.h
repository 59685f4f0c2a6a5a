// Register accesses to a PHY that sits on a board's I2C bus.
#pragma once

#include "ov_sys/Interface/devices/KelSmbProto.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <initializer_list>

namespace Orvane {

// One PHY as seen by one access. Each access takes several I2C transfers, which are not one step to the
// board: callers that share a PHY serialise themselves. Blocks and throws as the I2C service.
class SmbusAccess {
public:
    // `device` is the PHY's address on the board's I2C bus number `bus`.
    SmbusAccess(SessionWrapper session, unsigned char bus, unsigned int device)
        : session_(session), bus_(bus), device_(device) {}

    // 16-bit registers; the address has the MMD in bits 16 to 20 and the register in bits 0 to 15.
    unsigned int read16(unsigned long address) const;
    void write16(unsigned long address, unsigned int data) const;

    // 32-bit registers. An unknown protocol sends nothing and reads 0.
    unsigned int read32(unsigned long address, KelSmbProto protocol) const;
    void write32(unsigned long address, unsigned int data, KelSmbProto protocol) const;

private:
    void selectRegister16(unsigned long address) const;
    void selectRegister32Paged(unsigned long address) const;
    void send(std::initializer_list<unsigned long> frame) const;
    unsigned int readWord(unsigned int command) const;

    SessionWrapper session_;
    unsigned char bus_;
    unsigned int device_;
};

} // namespace Orvane
