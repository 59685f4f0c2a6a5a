// The JTAG service: a live session, then the call.
#include "ov_sys/Interface/buses/JTAG.h"

#include "ov_sys/Interface/buses/rpc/RPCJTAG.h"

#include <utility>

namespace Orvane::JTAG {

JTAG::~JTAG() = default;

int JTAG::maxBytes(SessionWrapper session) {
    return RPC::maxBytes(session.usable());
}

std::vector<std::string> JTAG::shiftMulti(SessionWrapper session, std::vector<std::string> first,
                                          std::vector<std::string> second, std::vector<std::string> third) {
    return RPC::shiftMulti(session.usable(), std::move(first), std::move(second), std::move(third));
}

std::string JTAG::shift(SessionWrapper session, std::string first, std::string second, std::string third) {
    return RPC::shift(session.usable(), std::move(first), std::move(second), std::move(third));
}

} // namespace Orvane::JTAG
