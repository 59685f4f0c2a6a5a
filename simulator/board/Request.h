// One request that a board decoded.
#pragma once

#include <string>
#include <string_view>

namespace OrvaneSim {

// A request as it came over the wire. A plain value, to be copied freely.
struct Request {
    std::string program;   // "setup", "mdio", "i2c", "jtag", "gpio", "keepAlive", "adc", "thermal", "portmap"
    std::string procedure; // name of the client stub without its version, e.g. "mdio_read"
    unsigned programNumber = 0;
    unsigned version = 0;
    unsigned procedureNumber = 0;
    std::string transport; // "udp" or "tcp"

    // The argument's members in wire order, as JSON text without blanks:
    // {"handle":257,"addresses":[1966081]}. A bare number is {"value":n}; characters are one text (bytes
    // that are no UTF-8 become U+FFFD), byte and word lists are arrays. Decoded at each call.
    // <orvane/lab_json.h> gives the same as a value.
    std::string arguments() const { return describe ? describe(bytes) : "{}"; }

    std::string bytes; // the encoded argument
    // Shows `bytes`; null for a request that no board has seen.
    std::string (*describe)(std::string_view bytes) = nullptr;
};

} // namespace OrvaneSim
