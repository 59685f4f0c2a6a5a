// The keep-alive service: a live session, then the call.
#include "ov_sys/Interface/buses/KeepAlive.h"

#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"

namespace Orvane::KeepAlive {

KeepAlive::~KeepAlive() = default;

int KeepAlive::ping(SessionWrapper session) {
    return RPC::ping(session.usable());
}

PingRecord KeepAlive::getPingRecord(SessionWrapper session) {
    return RPC::getPingRecord(session.usable());
}

} // namespace Orvane::KeepAlive
