#include "ov_sys/rack/link/SetupCalls.h"

#include <cerrno>
#include <cstdarg>

namespace Orvane::RackLink {
namespace {

bool_t xdrMapping(XDR* stream, ...) {
    va_list arguments;
    va_start(arguments, stream);
    auto* mapping = va_arg(arguments, pmap*);
    va_end(arguments);
    return xdr_pmap(stream, mapping);
}

constexpr std::uint32_t number(Programs::SetupProcedure procedure) noexcept {
    return static_cast<std::uint32_t>(procedure);
}

} // namespace

LookUpCall::LookUpCall(Program of) noexcept
    : Call(Program::PortMapper, PMAPPROC_GETPORT, Effect::Reads), wanted(of) {
    argument_.pm_prog = numberOf(wanted);
    argument_.pm_vers = versionOf(wanted);
    argument_.pm_prot = overStream(wanted) ? IPPROTO_TCP : IPPROTO_UDP;
}

CallMessage LookUpCall::message() noexcept {
    return {id,
            {numberOf(program), versionOf(program), procedure},
            xdrMapping,
            &argument_,
            xdrProcedure<u_int>,
            &port_};
}

std::size_t LookUpCall::encode(char* buffer, std::size_t capacity) {
    return message().encodeTo(buffer, capacity);
}

Trouble LookUpCall::decode(char* reply, std::size_t length) {
    rpc_err error{};
    if (const Trouble bad = troubleOf(message().decodeFrom(reply, length, error)))
        return bad;
    return port_ <= 0xFFFF ? Trouble{} : Trouble{FailureKind::BadReply};
}

OpenCall::OpenCall(Session& which) noexcept
    : TypedCall(Program::Setup, number(Programs::SetupProcedure::OpenConnection), Effect::Reads),
      target(which) {
    const Access::Mode mode = target.access.mode;
    argument.sessionId = target.key != 0 ? target.key : target.access.key;
    argument.byte1 = mode == Access::Mode::Exclusive ? 1 : 0;
    argument.byte2 = mode == Access::Mode::Simple ? 1 : 0;
    argument.byte3 = mode == Access::Mode::Exclusive ? 1 : 0; // not shared
    argument.int1 = static_cast<int>(target.port);
    argument.int2 = static_cast<int>(target.phy);
}

Trouble OpenCall::check() {
    target.id = result.word1 & 0xFFU;
    target.key = static_cast<std::uint16_t>(result.sessionId);
    target.sequence = static_cast<std::uint16_t>(result.word3 + 1); // opening counts as a call
    target.pings = 0;
    return {};
}

CloseCall::CloseCall(Session& which) noexcept
    : TypedCall(Program::Setup, number(Programs::SetupProcedure::CloseConnection), Effect::Alone) {
    session = &which;
    argument.int1 = which.key;
}

PingCall::PingCall(Session& which) noexcept
    : TypedCall(Program::KeepAlive, static_cast<std::uint32_t>(Programs::KeepAliveProcedure::Ping),
                Effect::Reads) {
    session = &which;
    isPing = true;
}

} // namespace Orvane::RackLink
