// One request that a board decoded.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace OrvaneSim {

/// A request as it came over the wire. A plain value, to be copied freely.
struct Request {
    std::string program; ///< "setup", "mdio", "i2c", "jtag", "gpio", "keepAlive", "adc", "thermal", "portmap"
    std::string procedure; ///< name of the client stub without its version, e.g. "mdio_read"
    unsigned programNumber = 0;
    unsigned version = 0;
    unsigned procedureNumber = 0;
    std::string transport; ///< "udp" or "tcp"

    /// The argument's members in wire order. A bare number is {"value": n}; characters are one text, byte and
    /// word lists are arrays. Decoded at each call.
    nlohmann::ordered_json arguments() const {
        return describe ? describe(bytes) : nlohmann::ordered_json::object();
    }

    std::string bytes; ///< the encoded argument
    /// Decodes `bytes`; null for a procedure without argument.
    nlohmann::ordered_json (*describe)(std::string_view bytes) = nullptr;
};

} // namespace OrvaneSim
