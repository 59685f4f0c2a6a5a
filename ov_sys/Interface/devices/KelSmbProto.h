// How 32-bit registers are reached over SMBus.
#pragma once

namespace Orvane {

// A fixed type, so that any number is a legal value; with an unknown one 32-bit SMBus accesses do nothing.
enum KelSmbProto : int {
    Paged16 = 0, // 16-bit page, address and data commands
    Direct32 = 1 // a 4-byte address and 4 data bytes in one transfer
};

} // namespace Orvane
