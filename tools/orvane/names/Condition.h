// What a register or field is waited to be.
#pragma once

#include "tools/orvane/names/KnownMaps.h"

#include <cstdint>
#include <string>

namespace OrvaneTool {

// AN.STATUS.LINK==1, 1.0x0005>=0x10, CHIP.CONTROL.SPEED!='10 Mb/s': a register or field, one of == != < <= >
// >=, and a number or the name of a choice.
struct Condition {
    enum class Relation { Equal, Unequal, Below, BelowOrEqual, Above, AboveOrEqual };

    std::string text; // as written
    Asked asked;
    Relation relation = Relation::Equal;
    std::uint64_t value = 0;

    // Throws UsageError.
    static Condition parse(const std::string& text, const KnownMaps& maps, Space space);
    // For the value of the register.
    bool holds(std::uint32_t held) const;
};

} // namespace OrvaneTool
