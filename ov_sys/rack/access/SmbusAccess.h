// Registers of a PHY behind an I2C bus of the board.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"

namespace Orvane::RackAccess {

// Several transfers each, under one turn of the board. As in RegisterAccess.h.
RackLink::Trouble readOverSmbus(const Target& target, const RegisterAddress& address, std::uint32_t& value,
                                RackLink::Limits& limits);
RackLink::Trouble writeOverSmbus(const Target& target, const RegisterAddress& address, std::uint32_t value,
                                 RackLink::Limits& limits);

} // namespace Orvane::RackAccess
