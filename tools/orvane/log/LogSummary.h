// What a transaction log says of each register.
#pragma once

#include "tools/orvane/log/LogFile.h"

#include <vector>

namespace OrvaneTool {

// A register of a PHY on an adapter, with its accesses in order (places in LogFile::accesses).
struct RegisterHistory {
    unsigned adapter = 0;
    unsigned phy = 0;
    Register reg;
    std::vector<std::size_t> accesses;
    std::size_t reads = 0;
    std::size_t writes = 0;
    std::size_t changes = 0;       // reads whose value was not that of the read before
    std::uint64_t changedBits = 0; // bits that differed in any of them
    std::string first;             // first and last value that was read, "-" when there is none
    std::string last;
};

// Every register of the log, by adapter, PHY, space and address.
std::vector<RegisterHistory> historiesOf(const LogFile& log);

} // namespace OrvaneTool
