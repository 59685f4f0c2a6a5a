// The name of a port: board serial number, colon, port number.
#pragma once

#include "ov_sys/rack/values/Trouble.h"

#include <optional>
#include <string>

namespace Orvane::RackLink {

struct PortName {
    std::string board; // upper case
    unsigned port = 0; // 0 to 19: ten MDIO ports, ten I2C buses

    // Nothing for a text that is no port's name.
    static std::optional<PortName> read(const std::string& name);
    // Throws Failure (InvalidArgument) of `operation` for anything else.
    static PortName parse(const std::string& name, const char* operation);
    // ASCII letters only.
    static std::string upper(std::string text);
};

// The failure of a search for a board, or for all of them when `wanted` names none.
Failure notFound(Trouble trouble, const char* operation, const PortName& wanted);

} // namespace Orvane::RackLink
