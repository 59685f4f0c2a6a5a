// How a session wants to be opened on its board.
#pragma once

namespace Orvane {

// Copied by value into the session. The flags are 0 or 1.
struct MdioExclusive {
    int phyAddress;           // MDIO address of the PHY; its low 5 bits go into every MDIO address
    unsigned int deviceIndex; // port number of the device; its low 3 bits go into every MDIO address
    unsigned char simple;     // opened in simple mode
    unsigned char exclusive;  // opened in exclusive mode
    unsigned char shared;     // other sessions may use the same MDIO port
    unsigned short key;       // exclusive-access key; the board's after a successful open
    unsigned char reserved;   // 0
};

} // namespace Orvane
