// The records of those calls, and what is checked of the answers.
#include "ov_sys/rack/link/SetupCalls.h"

#include <cerrno>
#include <cstdarg>
#include <random>

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

// Any but 0, which would be none.
std::uint16_t makeKey() {
    std::random_device source;
    return static_cast<std::uint16_t>(1 + source() % 0xFFFF);
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
      target(&which) {
    const Access::Mode mode = which.access.mode;
    if (which.chosenKey == 0 && mode != Access::Mode::Simple)
        which.chosenKey = makeKey();
    argument.sessionId = which.key != 0          ? which.key
                         : which.access.key != 0 ? which.access.key
                                                 : which.chosenKey;
    argument.byte1 = mode == Access::Mode::Exclusive ? 1 : 0;
    argument.byte2 = mode == Access::Mode::Simple ? 1 : 0;
    argument.byte3 = mode == Access::Mode::Exclusive ? 1 : 0; // not shared
    argument.int1 = static_cast<int>(which.port);
    argument.int2 = static_cast<int>(which.phy);
}

void OpenCall::grant(Session& receiver) const noexcept {
    receiver.id = result.word1 & 0xFFU;
    receiver.key = static_cast<std::uint16_t>(result.sessionId);
    receiver.sequence = static_cast<std::uint16_t>(result.word3 + 1); // opening counts as a call
    receiver.pings = 0;
}

ErrorCall::ErrorCall(Call& call, Trouble reason) noexcept
    : TypedCall(Program::Setup, number(Programs::SetupProcedure::GetErrorMessage), Effect::Reads),
      refused(call),
      why(reason) {
    argument.value = static_cast<u_int>(reason.code());
}

std::uint64_t ErrorCall::said() const noexcept {
    return std::uint64_t{result.byte1} << 32U | static_cast<std::uint32_t>(result.int1);
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
    room = 128;
}

} // namespace Orvane::RackLink
