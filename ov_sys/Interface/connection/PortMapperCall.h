// The question to a board's port mapper at which port a program is.
#pragma once

#include "ov_sys/Interface/connection/CallMessage.h"

#include <cstdint>
#include <netinet/in.h>

#include <rpc/pmap_prot.h> // needs rpc.h before it

namespace Orvane {

// One such question, to be carried by any transport to port kPort; stays where it was made. Throws nothing.
class PortMapperCall {
public:
    static constexpr std::uint16_t kPort = PMAPPORT;

    // A transaction id: different for each look-up of a thread, and hardly ever the same in two.
    static std::uint32_t newId() noexcept;

    // `id` is the call's transaction id, `protocol` IPPROTO_UDP or IPPROTO_TCP.
    PortMapperCall(std::uint32_t id, unsigned long program, unsigned long version, int protocol) noexcept;
    PortMapperCall(const PortMapperCall&) = delete;
    PortMapperCall& operator=(const PortMapperCall&) = delete;

    const CallMessage& message() const noexcept { return message_; }

    bool asksFor(unsigned long program, unsigned long version, int protocol) const noexcept;

    // After a successful call: the port in host order, 0 when the program is not registered or what the port
    // mapper named is no port.
    std::uint16_t port() const noexcept { return port_ > UINT16_MAX ? 0 : static_cast<std::uint16_t>(port_); }

private:
    pmap wanted_;
    u_int port_ = 0;
    CallMessage message_;
};

} // namespace Orvane
