// What may be written back to a register.
#pragma once

#include "tools/orvane/names/KnownMaps.h"

#include <cstdint>

namespace OrvaneTool {

// How a value that was read is brought back.
struct Restoring {
    std::uint32_t written =
        0; // nothing else happens by it: bits that ones clear, or that clear themselves, are 0
    std::uint32_t mask = 0; // the bits that are to hold it afterwards; 0: the register is left alone
};

// All of a register that no map has. Of others, what is plainly read and written; nothing of those that have
// side effects.
Restoring restoring(const Asked& asked, std::uint32_t value);

} // namespace OrvaneTool
