// Register accesses of one session, over MDIO or SMBus as its port has it.
#pragma once

#include "ov_sys/rack/link/Drive.h"
#include "ov_sys/rack/values/Batch.h"
#include "ov_sys/rack/values/SmbusProtocol.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Orvane::RackAccess {

// Ports from here on are SMBus ports, of I2C bus port - 10.
constexpr unsigned kFirstSmbusPort = 10;

// One way to a PHY's registers. Everything has been checked before; nothing throws but std::bad_alloc and
// what a session's hook throws.
struct Target {
    RackLink::BoardLink& link;
    RackLink::Session& session;
    SmbusProtocol smbus;

    bool overSmbus() const noexcept { return session.port >= kFirstSmbusPort; }
    RackLog::Place place() const noexcept { return link.place(session); }
};

// Why this PHY has no such register, as a sentence; empty when it has. `value`: to be written.
std::string objection(const Target& target, const RegisterAddress& address, std::uint32_t value = 0);

RackLink::Trouble read(const Target& target, const RegisterAddress& address, std::uint32_t& value,
                       RackLink::Limits& limits);
RackLink::Trouble write(const Target& target, const RegisterAddress& address, std::uint32_t value,
                        RackLink::Limits& limits);
// Stores what became of each operation; stops at the first failure and returns it, its operation in `failed`.
RackLink::Trouble run(const Target& target, const std::vector<Batch::Operation>& operations,
                      std::vector<OperationOutcome>& outcomes, std::size_t& failed, RackLink::Limits& limits);

// Of an access that was not done. `sent`: whether any part of it was.
OperationOutcome outcomeOf(RackLink::Trouble trouble, bool sent) noexcept;

} // namespace Orvane::RackAccess
