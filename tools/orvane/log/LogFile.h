// Transaction logs of the library.
#pragma once

#include "tools/orvane/board/RegisterAddress.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvaneTool {

// One access of a register, in the place of its record in the log. A queued read has its value when the block
// that it was in was executed.
struct LoggedAccess {
    unsigned adapter = 0;
    unsigned phy = 0;
    Register reg; // of Clause 45, or of the 32-bit space
    bool write = false;
    bool queued = false;
    int digits = 4; // hexadecimal digits of the value: 4, 8 or 16
    std::optional<std::uint64_t> value;

    std::string valueText() const; // 0x0A5C; "-" without a value
};

struct LogFile {
    std::vector<LoggedAccess> accesses;
    std::size_t configurationAccesses = 0; // of the configuration space, which names no PHY
    std::size_t strayValues = 0;           // of queued reads that are not in the log
    std::vector<std::string> notes;        // lines that are no records: the user's own
};

// Takes the text of a log apart: MDIO records, which are lines, and those of the 32- and 64-bit spaces, which
// run together. Nothing is an error: what is no record is a note.
LogFile parseLog(std::string_view text);

// The log in a file. Throws Failure when it cannot be read.
LogFile readLog(const std::string& path);

} // namespace OrvaneTool
