// The programs of a board as the rack counts and addresses them.
#pragma once

#include "ov_sys/Interface/rpc_protocol/Programs.h"

#include <cstddef>
#include <cstdint>

namespace Orvane::RackLink {

enum class Program : std::uint8_t { Setup, I2c, Mdio, Jtag, Gpio, KeepAlive, Adc, Thermal, PortMapper };

constexpr std::size_t kPrograms = 9;

constexpr std::size_t indexOf(Program program) noexcept {
    return static_cast<std::size_t>(program);
}

// Program number on the wire. The services' numbers are consecutive, in the order above.
constexpr std::uint32_t numberOf(Program program) noexcept {
    constexpr std::uint32_t kPortMapper = 100000;
    return program == Program::PortMapper ? kPortMapper
                                          : static_cast<std::uint32_t>(Programs::Setup + indexOf(program));
}

constexpr std::uint32_t versionOf(Program program) noexcept {
    return program == Program::PortMapper ? 2 : static_cast<std::uint32_t>(Programs::Version);
}

// As counters and failures name it.
constexpr const char* nameOf(Program program) noexcept {
    constexpr const char* kNames[kPrograms] = {"setup",     "i2c", "mdio",    "jtag",   "gpio",
                                               "keepAlive", "adc", "thermal", "portmap"};
    return kNames[indexOf(program)];
}

// Setup and ADC speak TCP, all others UDP.
constexpr bool overStream(Program program) noexcept {
    return program == Program::Setup || program == Program::Adc;
}

} // namespace Orvane::RackLink
