// The name of a port: board serial number, colon, port number.
#pragma once

#include <string>

namespace Orvane::RackCore {

struct PortName {
    std::string board; // upper case
    unsigned port = 0; // 0 to 19: ten MDIO ports, ten I2C buses

    // Throws Failure (InvalidArgument) of `operation` for anything else.
    static PortName parse(const std::string& name, const char* operation);
    // ASCII letters only.
    static std::string upper(std::string text);
};

} // namespace Orvane::RackCore
