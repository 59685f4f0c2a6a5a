// The MDIO service of a board: registers of the PHYs behind its MDIO ports.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <vector>

namespace Orvane {
namespace MDIO {

// Stateless; any number of threads. Every method throws Exceptions::InvalidSession for a null or invalid
// session before anything is sent, and otherwise does, blocks and throws as the function of the same name in
// RPCMDIO.h. Of addresses given as unsigned long the low 32 bits count. The caller's lists are never changed,
// and each list travels in one call.
class ORVANE_API MDIO {
public:
    // One register, as Clause 45, Clause 22 or 32-bit extension; without an address at the PHY's address
    // register.
    unsigned int read(SessionWrapper session, unsigned long address);
    void write(SessionWrapper session, unsigned long address, unsigned int data);
    unsigned int read_c22(SessionWrapper session, unsigned long address);
    void write_c22(SessionWrapper session, unsigned long address, unsigned int data);
    unsigned int read_c22_zrExt32(SessionWrapper session, unsigned int address);
    void write_c22_zrExt32(SessionWrapper session, unsigned int address, unsigned int data);
    unsigned int read_preinc_c22_zrExt32(SessionWrapper session);
    unsigned int read_curraddr_c22_zrExt32(SessionWrapper session);
    void write_preinc_c22_zrExt32(SessionWrapper session, unsigned int data);
    void write_curraddr_c22_zrExt32(SessionWrapper session, unsigned int data);

    // The port itself: flush it, switch single-wire mode, set the number of preamble bits.
    void flush(SessionWrapper session);
    void setSingleWire(SessionWrapper session, bool on);
    void setPreambleCount(SessionWrapper session, unsigned int count);

    // Many registers in one call: a list, or runs of writes and reads in turn.
    std::vector<unsigned int> blockRead(SessionWrapper session, std::vector<unsigned int> const& addresses);
    void blockWrite(SessionWrapper session, std::vector<unsigned int> const& addresses,
                    std::vector<unsigned int> const& data);
    std::vector<unsigned int> mixedBlock(SessionWrapper session,
                                         std::vector<unsigned int> const& writeAddresses,
                                         std::vector<unsigned int> const& writeData,
                                         std::vector<unsigned int> const& readAddresses,
                                         std::vector<unsigned int> const& runs);
    std::vector<unsigned int> mixedBlock_c22(SessionWrapper session,
                                             std::vector<unsigned int> const& writeAddresses,
                                             std::vector<unsigned int> const& writeData,
                                             std::vector<unsigned int> const& readAddresses,
                                             std::vector<unsigned int> const& runs);
    std::vector<unsigned int> mixedBlock_c22_32bit(SessionWrapper session,
                                                   std::vector<unsigned int> const& writeAddresses,
                                                   std::vector<unsigned int> const& writeData,
                                                   std::vector<unsigned int> const& readAddresses,
                                                   std::vector<unsigned int> const& runs);
};

} // namespace MDIO

// The facade for every caller.
extern ORVANE_API MDIO::MDIO mdio;

} // namespace Orvane
