// The question to the port mapper, coded by libtirpc's routines.
#include "ov_sys/Interface/connection/PortMapperCall.h"

#include "ov_sys/Interface/foundation/Deadline.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"

#include <cstdarg>

namespace Orvane {
namespace {

bool_t xdrWanted(XDR* stream, ...) {
    va_list arguments;
    va_start(arguments, stream);
    auto* wanted = va_arg(arguments, struct pmap*);
    va_end(arguments);
    return xdr_pmap(stream, wanted);
}

} // namespace

std::uint32_t PortMapperCall::newId() noexcept {
    return static_cast<std::uint32_t>(Deadline::Clock::now().time_since_epoch().count());
}

PortMapperCall::PortMapperCall(std::uint32_t id, unsigned long program, unsigned long version,
                               int protocol) noexcept
    : wanted_{program, version, static_cast<u_long>(protocol), 0},
      message_(id, {PMAPPROG, PMAPVERS, PMAPPROC_GETPORT}, xdrWanted, &wanted_, xdrProcedure<u_int>, &port_) {
}

bool PortMapperCall::asksFor(unsigned long program, unsigned long version, int protocol) const noexcept {
    return wanted_.pm_prog == program && wanted_.pm_vers == version &&
           wanted_.pm_prot == static_cast<u_long>(protocol);
}

} // namespace Orvane
