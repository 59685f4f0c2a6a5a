// What a search for boards found.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Orvane {

// A board that answered.
struct FoundBoard {
    std::string serial;          // upper case, printable ASCII without blanks
    std::string address;         // dotted IPv4
    std::vector<unsigned> ports; // ascending; opened as "SERIAL:PORT"
    std::string kind;            // the word that its answer begins with: what sort of board it is
};

// Plain values.
struct Discovery {
    std::vector<FoundBoard> boards; // by serial number, then address
    std::size_t malformed = 0;      // different answers that name no port as they should
};

} // namespace Orvane
