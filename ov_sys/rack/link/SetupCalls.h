// The calls that a link makes of its own: where a program is, and a session's opening, pings and closing.
#pragma once

#include "ov_sys/rack/link/Session.h"
#include "ov_sys/rack/link/TypedCall.h"

#include <rpc/pmap_prot.h> // needs rpc.h, which comes with TypedCall.h, before it

namespace Orvane::RackLink {

// Asks the port mapper for the port of a program.
class LookUpCall : public Call {
public:
    explicit LookUpCall(Program of) noexcept;

    std::size_t encode(char* buffer, std::size_t capacity) override;
    Trouble decode(char* reply, std::size_t length) override;

    const Program wanted;
    // 0: the board does not run the program.
    std::uint16_t port() const noexcept { return static_cast<std::uint16_t>(port_); }

private:
    CallMessage message() noexcept;

    pmap argument_{};
    u_int port_ = 0;
};

// Opens `target` and stores what the board gave it.
class OpenCall : public TypedCall<Open_Param, Open_Result> {
public:
    explicit OpenCall(Session& which) noexcept;

    Session& target;

protected:
    Trouble check() override;
};

// Closes a session on the board. The session word is that of the call.
class CloseCall : public TypedCall<Close_Param, Simple_Result> {
public:
    explicit CloseCall(Session& which) noexcept;
};

// Tells the board that a session is alive.
class PingCall : public TypedCall<ID_Param, Simple_Result> {
public:
    explicit PingCall(Session& which) noexcept;
};

} // namespace Orvane::RackLink
