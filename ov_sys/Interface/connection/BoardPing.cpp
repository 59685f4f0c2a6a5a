// The ping through a client's handle, or beside a call that holds it.
#include "ov_sys/Interface/connection/BoardPing.h"

#include "ov_sys/Interface/connection/StubCall.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/Stopwatch.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

namespace Orvane {
namespace {

clnt_stat pingBeside(RPCHandle& handle, int value, int* result) {
    const std::shared_ptr<RPCHandle> second = handle.another();
    return callOnHandle(ping_1, value, result, second.get());
}

// A call that is under way, such as a long remote command, does not hold the ping up if the board takes a
// second connection meanwhile.
clnt_stat ping(const std::shared_ptr<RPCHandle>& handle, int value, int* result) {
    HandleTurn turn(std::shared_ptr<RPCHandle>(handle), std::try_to_lock);
    if (!turn.held() && pingBeside(*handle, value, result) == RPC_SUCCESS)
        return RPC_SUCCESS;
    turn.wait();
    handle->mend();
    return callOnHandle(ping_1, value, result, handle.get());
}

} // namespace

void DO_RPC_BOARD_PING(int value, int* result, RPCClient* client) {
    const std::shared_ptr<RPCHandle> handle = client->pin();
    if (!handle) {
        Diagnostics::error("Pinging board terminated. Invalid Setup RPC client");
        throw Exceptions::InvalidRPCClient(client->name);
    }
    const BusyMark busy(*client);
    const clnt_stat status = ping(handle, value, result);
    if (status != RPC_SUCCESS) {
        Diagnostics::error("Ping returned: ", static_cast<int>(status));
        throw Exceptions::DeviceConnection();
    }
}

int pingBoard(RPCClient& setupClient) {
    constexpr int kPingValue = 123;
    const Stopwatch stopwatch;
    int answer = 0;
    DO_RPC_BOARD_PING(kPingValue, &answer, &setupClient);
    return static_cast<int>(stopwatch.elapsedMs());
}

} // namespace Orvane
