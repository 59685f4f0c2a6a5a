// One call of a client stub through an RPC client.
#pragma once

#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/connection/RPCHandle.h"

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

// The same on the handle that `client` has at this moment, the client being marked busy meanwhile.
template <class Param, class Result>
clnt_stat callStub(clnt_stat (*stub)(Param, Result, CLIENT*), const Param& param, Result result,
                   RPCClient& client) {
    const BusyMark busy(client);
    return callOnHandle(stub, param, result, client.pin().get());
}

} // namespace Orvane
