// The MDIO service's calls.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <vector>

namespace Orvane {

class PhySession;

namespace MDIO {

// Frame format of a mixed block; a fixed type, so that any number is a legal value.
enum MDIO_clause : int { CLAUSE_45 = 0, CLAUSE_22 = 1, CLAUSE_22_32BIT = 2 };

// All calls block for the answer, 2 s at most for each attempt and its recovery, and throw as DO_RPC. Clause
// 45 and Clause 22 addresses have the register in bits 0 to 15 and the MMD in bits 16 to 20; the session puts
// its PHY and port into bits 24 to 31, whatever the caller passed there. The 32-bit extension sends the
// caller's address as it is. Any number of threads.
namespace RPC {

// One register. The value is the board's 32-bit word, unmasked. Aborts when the board answers with another
// number of values than one.
ORVANE_API unsigned int read(PhySession& session, unsigned int address);
ORVANE_API unsigned int read_c22(PhySession& session, unsigned int address);
ORVANE_API unsigned int read_c22_zrExt32(PhySession& session, unsigned int address);
ORVANE_API void write(PhySession& session, unsigned int address, unsigned int data);
ORVANE_API void write_c22(PhySession& session, unsigned int address, unsigned int data);
ORVANE_API void write_c22_zrExt32(PhySession& session, unsigned int address, unsigned int data);

// The 32-bit extension at the PHY's address register, incremented first or as it stands.
ORVANE_API unsigned int read_preinc_c22_zrExt32(PhySession& session);
ORVANE_API unsigned int read_curraddr_c22_zrExt32(PhySession& session);
ORVANE_API void write_preinc_c22_zrExt32(PhySession& session, unsigned int data);
ORVANE_API void write_curraddr_c22_zrExt32(PhySession& session, unsigned int data);

// The port itself: flush it, switch single-wire mode.
ORVANE_API void flush(PhySession& session);
ORVANE_API void setSingleWire(PhySession& session, bool on);
// Aborts when the board echoes another count.
ORVANE_API void setPreambleCount(PhySession& session, unsigned int count);

// A list of registers in one call. blockRead() aborts when the board answers with another number of values,
// blockWrite() when the lists differ in length.
ORVANE_API std::vector<unsigned int> blockRead(PhySession& session, std::vector<unsigned int> addresses);
ORVANE_API void blockWrite(PhySession& session, std::vector<unsigned int> addresses,
                           std::vector<unsigned int> const& data);

// Writes and reads in one call. `runs` are the lengths of the runs in which the board executes them: writes,
// reads, writes and so on, a run of 0 being allowed. Returns one value for each read address, 0 where the
// board sent none. Aborts when there are not as many data words as write addresses.
ORVANE_API std::vector<unsigned int> mixedBlock(PhySession& session, std::vector<unsigned int> writeAddresses,
                                                std::vector<unsigned int> const& writeData,
                                                std::vector<unsigned int> readAddresses,
                                                std::vector<unsigned int> const& runs);
ORVANE_API std::vector<unsigned int> mixedBlock_c22(PhySession& session,
                                                    std::vector<unsigned int> writeAddresses,
                                                    std::vector<unsigned int> const& writeData,
                                                    std::vector<unsigned int> readAddresses,
                                                    std::vector<unsigned int> const& runs);
ORVANE_API std::vector<unsigned int> mixedBlock_c22_32bit(PhySession& session,
                                                          std::vector<unsigned int> writeAddresses,
                                                          std::vector<unsigned int> const& writeData,
                                                          std::vector<unsigned int> readAddresses,
                                                          std::vector<unsigned int> const& runs);

// A mixed block whose addresses are sent as they are. An unknown clause is reported on the standard error
// stream and gives zeros without a call.
ORVANE_API std::vector<unsigned int>
mixedBlockExecute(PhySession& session, std::vector<unsigned int> writeAddresses,
                  std::vector<unsigned int> const& writeData, std::vector<unsigned int> readAddresses,
                  std::vector<unsigned int> const& runs, MDIO_clause clause);

} // namespace RPC
} // namespace MDIO
} // namespace Orvane
