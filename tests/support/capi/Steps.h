// A sequence of plain logged accesses to one PHY, as it is seen on the wire and in the log.
#pragma once

#include "tests/support/capi/FlatInterface.h"

#include <string>
#include <vector>

namespace OrvaneTest {

struct Step {
    bool write;
    unsigned mmd;
    unsigned reg;
    unsigned value; // written or read
};

constexpr Step wrote(unsigned mmd, unsigned reg, unsigned value) {
    return {true, mmd, reg, value};
}

constexpr Step read(unsigned mmd, unsigned reg, unsigned value) {
    return {false, mmd, reg, value};
}

using Steps = std::vector<Step>;

Steps operator+(Steps first, const Steps& second);

std::vector<std::string> framesOf(const Frame& phy, const Steps& steps);

// What a register holds that is read by a path, and two paths that write 0x1234 to register 0x10.
constexpr unsigned kFound = 0xC045;
inline const Steps kBridgeWrite{wrote(30, 0xA110, 1), wrote(30, 0xA104, 0x10), wrote(30, 0xA105, 0x1234),
                                read(30, 0xA111, 0x1000)};
inline const Steps kTgeWrite{wrote(29, 0xC204, 0x1234), wrote(29, 0xC203, 0x8010)};

// The log of the steps with this adapter and PHY number.
std::string logOf(unsigned adapter, unsigned phy, const Steps& steps);

// A command to the firmware's mailbox that is done at the first status read.
Steps mailboxWrite(unsigned mmd, unsigned address, unsigned value);
Steps mailboxRead(unsigned mmd, unsigned address, unsigned value);

} // namespace OrvaneTest
