// Replies that a test makes up byte by byte, for what no board would send of itself.
#pragma once

#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/connection/RPCHandle.h"
#include "tests/support/rpc_protocol/WireBytes.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace OrvaneTest {

// While one lives, nothing that is called through the client's handle is sent: each call decodes the next of
// the replies' results, and fails when there is none left. At most one at a time, for calls of one thread.
// Connects the client when it is not connected yet.
class CannedReplies {
public:
    CannedReplies(Orvane::RPCClient& client, std::vector<WireBytes> results)
        : handle_(connected(client)),
          former_(handle_->get()->cl_ops),
          operations_(*former_),
          results_(std::move(results)) {
        operations_.cl_call = answer;
        handle_->get()->cl_ops = &operations_;
        current_ = this;
    }
    ~CannedReplies() {
        handle_->get()->cl_ops = former_;
        current_ = nullptr;
    }
    CannedReplies(const CannedReplies&) = delete;
    CannedReplies& operator=(const CannedReplies&) = delete;

    std::size_t calls = 0;

private:
    static std::shared_ptr<Orvane::RPCHandle> connected(Orvane::RPCClient& client) {
        if (client.client == nullptr)
            client.update();
        return client.pin();
    }

    static clnt_stat answer(CLIENT*, rpcproc_t, xdrproc_t, void*, xdrproc_t decode, void* result, timeval) {
        CannedReplies& self = *current_;
        if (self.calls == self.results_.size())
            return RPC_CANTRECV;
        DecodeStream stream(self.results_[self.calls++]);
        return decode(stream.get(), result) ? RPC_SUCCESS : RPC_CANTDECODERES;
    }

    static inline CannedReplies* current_ = nullptr;
    std::shared_ptr<Orvane::RPCHandle> handle_;
    CLIENT::clnt_ops* former_;
    CLIENT::clnt_ops operations_;
    std::vector<WireBytes> results_;
};

} // namespace OrvaneTest
