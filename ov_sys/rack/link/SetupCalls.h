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

// Opens a session, with a key in any case unless it is a simple one.
class OpenCall : public TypedCall<Open_Param, Open_Result> {
public:
    explicit OpenCall(Session& which) noexcept;

    // Stores what the board gave.
    void grant(Session& receiver) const noexcept;

    Session* target; // null: it has ended meanwhile
};

// Asks the board what it has to add to the refusal of a session.
class ErrorCall : public TypedCall<Simple_Param, Get_Error_Result> {
public:
    // `call` waits for the session that was refused, for that reason.
    ErrorCall(Call& call, Trouble reason) noexcept;

    // The answer's byte, in the upper half, and word; 0 when the board says nothing.
    std::uint64_t said() const noexcept;

    Call& refused;
    const Trouble why;
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
