// The I2C service's calls.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <vector>

namespace Orvane {

class PhySession;

// All calls block for the answer, 2 s at most for each attempt and its recovery, and throw as DO_RPC. `bus`
// is the board's bus number, `address` the device's address on it. Reads return the bytes asked for: what the
// board sends beyond them is dropped, what it does not send is 0. Lists are sent with their own lengths; the
// caller keeps them. Any number of threads.
namespace I2C::RPC {

// Writes the bytes as they are.
ORVANE_API void write(PhySession& session, unsigned char bus, unsigned int address,
                      std::vector<unsigned char>& data);

// Of `length` the low 8 bits are sent, though the result has the full length.
ORVANE_API std::vector<unsigned char> read(PhySession& session, unsigned char bus, unsigned int address,
                                           unsigned char command, unsigned int length);
ORVANE_API std::vector<unsigned char> readReg(PhySession& session, unsigned char bus, unsigned int address,
                                              unsigned int reg, unsigned char regFormat, unsigned int length);

// Writes to several registers in one call: `data` holds the bytes of all, `lengths` how many belong to each.
// The second form sends `mask` with them.
ORVANE_API void blockWriteRegister(PhySession& session, std::vector<unsigned char> const& buses,
                                   std::vector<unsigned int> const& addresses,
                                   std::vector<unsigned int> const& regs, std::vector<unsigned char>& data,
                                   std::vector<unsigned int> const& lengths,
                                   std::vector<unsigned int> const& regFormats);
ORVANE_API void blockWriteMask(PhySession& session, std::vector<unsigned char> const& buses,
                               std::vector<unsigned int> const& addresses,
                               std::vector<unsigned int> const& regs, std::vector<unsigned char>& data,
                               std::vector<unsigned int> const& lengths,
                               std::vector<unsigned int> const& regFormats, unsigned char mask);

// The bytes of all reads, one behind the other: as many as the sum of `lengths` (32-bit, wrapping).
ORVANE_API std::vector<unsigned char>
blockReadRegister(PhySession& session, std::vector<unsigned char> const& buses,
                  std::vector<unsigned int> const& addresses, std::vector<unsigned int> const& regs,
                  std::vector<unsigned int> const& lengths, std::vector<unsigned int> const& regFormats);

} // namespace I2C::RPC
} // namespace Orvane
