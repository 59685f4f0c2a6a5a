// Calls by TCP: records of marked fragments, one after the other, on one connection.
#pragma once

#include "ov_sys/Interface/connection/CallTransport.h"

#include <vector>

namespace Orvane {

// A reply that comes after its call has given up is dropped when a later call finds it. A stream on which a
// request was sent in part, or whose record is too long, is of no more use: every later call fails with
// RPC_CANTSEND.
class StreamTransport : public CallTransport {
public:
    // Longest reply that is taken, in bytes. Memory is taken for what arrives, not for what a mark announces.
    static constexpr std::size_t kLargest = 64U << 20U;

    // `socket` is a connected stream socket.
    explicit StreamTransport(int socket) noexcept : socket_(socket) {}

    clnt_stat call(const CallMessage& message, const Deadline& deadline, rpc_err& error) noexcept override;
    bool isUsable() const noexcept override;

private:
    clnt_stat sendRequest(const CallMessage& message, const Deadline& deadline, rpc_err& error) noexcept;
    clnt_stat awaitReply(const CallMessage& message, const Deadline& deadline, rpc_err& error) noexcept;
    clnt_stat receiveRecord(const Deadline& deadline, rpc_err& error) noexcept;
    clnt_stat receiveMark(const Deadline& deadline, rpc_err& error) noexcept;
    clnt_stat receiveSome(char* buffer, std::size_t& length, const Deadline& deadline,
                          rpc_err& error) noexcept;
    clnt_stat giveUp(rpc_err& error, clnt_stat status, int number) noexcept;
    void forgetRecord() noexcept;

    int socket_;
    bool broken_ = false;
    // What has come of a record so far; it outlasts the call that gave up waiting for the rest.
    std::vector<char> record_;
    std::uint32_t mark_ = 0;
    std::size_t markBytes_ = 0;     // of the fragment's mark, 0 to 4
    std::size_t fragmentBytes_ = 0; // still to come
};

} // namespace Orvane
