// What can be wrong with a board's indirect register paths.
#pragma once

#include <cstdint>

namespace OrvaneSim {

// Settings for every PHY of a board; as they stand, all goes well.
struct PathTroubles {
    static constexpr std::uint32_t kForever = 0xFFFFFFFF;

    // How often the mailbox's status reads busy (0) before a command is done.
    std::uint32_t mailboxBusyReads = 0;
    // Status that a mailbox command ends with: 1 done, 2 error; one that does not end in 1 is not executed.
    std::uint32_t mailboxStatus = 1;
    // Status of the SerDes bridge after an access: bit 1000 (hexadecimal) says that the low four bits are an
    // error code, 0 for none; a write that ends in an error is not executed.
    std::uint32_t bridgeStatus = 0x1000;
    // How often the MMD 10 window's command register reads busy before a fetch is done.
    std::uint32_t windowBusyReads = 0;
};

} // namespace OrvaneSim
