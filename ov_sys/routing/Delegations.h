// Which registers of a PHY are left to its firmware.
#pragma once

namespace Orvane::Routing {

// What is asked of the firmware, by its mailbox, rather than reached by another path. A plain value.
struct Delegations {
    bool readClasses = true; // reads of NEC and DEC registers of MMD 31, which are plain otherwise
    bool writePaged = true;  // writes to MMD 28, by pages otherwise
    bool readPaged = true;   // reads of MMD 28, by pages otherwise
    bool tge = true;         // MMD 11, by the TGE's indirect registers otherwise
    bool serdes = true;      // MMD 27, by the SerDes bridge otherwise
};

} // namespace Orvane::Routing
