// The records of the keep-alive service's calls, filled and read.
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"

#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/Stopwatch.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

namespace Orvane::KeepAlive {

int RPC::ping(PhySession& session) {
    const Stopwatch stopwatch;
    Simple_Result result{};
    DO_RPC_VALIDATION(pingkeepalive_1, ID_Param{session.pingIdentityWord()}, &result, session,
                      BoardConnection::KEEPALIVE);
    return static_cast<int>(stopwatch.elapsedMs());
}

PingRecord RPC::getPingRecord(PhySession& session) {
    return Setup::RPC::getPingRecord(session);
}

} // namespace Orvane::KeepAlive
