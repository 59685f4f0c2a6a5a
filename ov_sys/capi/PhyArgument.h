// The signed PHY argument of the ZR_API_ and HW_API_ functions.
#pragma once

#include "ov_sys/capi/Globals.h"

namespace Orvane {

// What a PHY argument names.
struct PhyTarget {
    unsigned adapter;
    unsigned phy;
};

// A negative argument carries the adapter in bits 16 to 30 and the PHY id in bits 0 to 15; any other is a PHY
// id on the default adapter.
inline PhyTarget phyTarget(int phyArg) {
    const auto word = static_cast<unsigned>(phyArg);
    if (phyArg < 0)
        return {word >> 16U & 0x7FFFU, word & 0xFFFFU};
    return {theInterface().defaultAdapter_, word};
}

} // namespace Orvane
