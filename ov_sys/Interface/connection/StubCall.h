// One call of a client stub through an RPC client.
#pragma once

#include "ov_sys/Interface/connection/HandleTurn.h"
#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/connection/RPCHandle.h"

#include <optional>

namespace Orvane {

// Marks a client busy for as long as it lives.
class BusyMark {
public:
    explicit BusyMark(RPCClient& client) : client_(client) { client_.setBusy(true); }
    ~BusyMark() { client_.setBusy(false); }
    BusyMark(const BusyMark&) = delete;
    BusyMark& operator=(const BusyMark&) = delete;

private:
    RPCClient& client_;
};

// Calls `stub` on `handle` when it is this thread's turn, and blocks until the answer or the handle's
// time-out. No handle counts as a request that could not be sent.
template <class Param, class Result>
clnt_stat callOnHandle(clnt_stat (*stub)(Param, Result, CLIENT*), const Param& param, Result result,
                       RPCHandle* handle) {
    return handle == nullptr ? RPC_CANTSEND : stub(param, result, handle->get());
}

// The same on the handle that `client` has when it is this thread's turn, the client being marked busy
// meanwhile. `wanted` is asked after other threads' calls came first: no status means that it said no and
// that nothing was sent.
template <class Param, class Result, class Wanted>
std::optional<clnt_stat> callStubIf(Wanted wanted, clnt_stat (*stub)(Param, Result, CLIENT*),
                                    const Param& param, Result result, RPCClient& client) {
    const BusyMark busy(client);
    const HandleTurn turn(client);
    if (turn.waited() && !wanted())
        return std::nullopt;
    return callOnHandle(stub, param, result, turn.handle());
}

// The same unconditionally.
template <class Param, class Result>
clnt_stat callStub(clnt_stat (*stub)(Param, Result, CLIENT*), const Param& param, Result result,
                   RPCClient& client) {
    return *callStubIf([] { return true; }, stub, param, result, client);
}

} // namespace Orvane
