// How 32-bit registers are reached over SMBus.
#pragma once

namespace Orvane {

// The ways of boards to 32 bits over a bus of bytes.
enum class SmbusProtocol {
    Paged16,  // by 16-bit page commands
    Direct32, // address and data in one transfer
};

} // namespace Orvane
