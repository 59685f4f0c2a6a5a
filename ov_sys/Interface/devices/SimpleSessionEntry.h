// The session of one PHY on a device, and the register accesses made through it.
#pragma once

#include "ov_sys/Interface/buses/MdioAsync.h"
#include "ov_sys/Interface/devices/KelSmbProto.h"
#include "ov_sys/Interface/devices/SmbusAccess.h"
#include "ov_sys/Interface/foundation/Export.h"

#include <memory>
#include <vector>

namespace Orvane {

class PhySession;

// A port of 9 or less is an MDIO port; from 10 on it is an SMBus port, its I2C bus being the port less 10
// (low 8 bits). Accesses block for the board's answer, 2 s at most for each attempt and its recovery, and
// throw what the MDIO and I2C services throw. Threads may share an entry for single accesses on an MDIO port;
// a block is filled and executed by one thread.
class ORVANE_API SimpleSessionEntry {
public:
    int phyId;                             // MDIO address of the PHY, or its device address on an SMBus port
    int port;                              // the device's port
    std::unique_ptr<PhySession> session;   // closed with the entry
    std::vector<unsigned int> smbResults;  // reads of the current block on an SMBus port
    std::vector<unsigned int> blockResult; // values of the last block execution
    MDIO::MdioAsync async;                 // queue of the current block on an MDIO port

    // Takes ownership of `openSession`, which is closed when the entry is destroyed.
    SimpleSessionEntry(PhySession* openSession, int phyId, int port);
    ~SimpleSessionEntry();
    SimpleSessionEntry(const SimpleSessionEntry&) = delete;
    SimpleSessionEntry& operator=(const SimpleSessionEntry&) = delete;

    // Clause 45: MMD in bits 16 to 20, register in bits 0 to 15. A read gives the board's word, unmasked.
    unsigned read_16bit_c45(unsigned long address);
    void write_16bit_c45(unsigned long address, unsigned data);

    // Clause 22. On an SMBus port reported on the standard error stream and refused with
    // Exceptions::Standard.
    unsigned read_16bit_c22(unsigned long reg);
    void write_16bit_c22(unsigned long reg, unsigned data);

    // 32-bit registers; the protocol matters on an SMBus port only.
    unsigned read_32bit(unsigned long address, KelSmbProto proto);
    void write_32bit(unsigned long address, unsigned data, KelSmbProto proto);

    // 32-bit registers at the PHY's address register; refused on an SMBus port like Clause 22.
    unsigned read_32bit_preincrement_address();
    unsigned read_32bit_current_address();
    void write_32bit_preincrement_address(unsigned data);
    void write_32bit_current_address(unsigned data);

    // Add to the current block. On an SMBus port they are carried out at once, the 32-bit ones as Paged16.
    void addBlockRead_16bit(unsigned long address);
    void addBlockRead_32bit(unsigned long address);
    void addBlockWrite_16bit(unsigned long address, unsigned data);
    void addBlockWrite_32bit(unsigned long address, unsigned data);

    // Execute the block as Clause 45, Clause 22 or 32-bit extension frames and return the values of its reads
    // in order. The vector belongs to the entry and keeps its content until the next execution.
    std::vector<unsigned>* executeBlock();
    std::vector<unsigned>* executeBlock_c22();
    std::vector<unsigned>* executeBlock_c22_32bit();

private:
    bool onMdio() const;
    SmbusAccess smbus() const;
    void refuseOnSmbus(const char* message) const;
    void refuseClause22OnSmbus() const;
    void refuseAddressRegisterOnSmbus() const;
    template <class Execute>
    std::vector<unsigned>* finishBlock(Execute execute);
};

// The owner is the device; whoever else holds one keeps it from being freed when it is closed.
using SharedSessions = std::vector<std::shared_ptr<SimpleSessionEntry>>;

} // namespace Orvane
