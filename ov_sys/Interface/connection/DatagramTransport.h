// Calls by UDP: a datagram out, a datagram back.
#pragma once

#include "ov_sys/Interface/connection/CallTransport.h"

#include <sys/types.h>

namespace Orvane {

// Requests and replies are at most `kLargest` bytes, header included; a longer reply arrives cut and cannot
// be decoded. Nothing is repeated within kFirstRepeat; a call that waits longer sends its request again.
class DatagramTransport : public CallTransport {
public:
    static constexpr std::size_t kLargest = 8800;
    static constexpr std::chrono::seconds kFirstRepeat{15}; // doubled for each further repeat

    // `socket` is a datagram socket, connected so that it takes datagrams of its board only.
    explicit DatagramTransport(int socket) noexcept : socket_(socket) {}

    clnt_stat call(const CallMessage& message, const Deadline& deadline, rpc_err& error) noexcept override;
    bool isUsable() const noexcept override { return true; }

private:
    using Datagram = char[kLargest];

    void drain() const noexcept;
    bool send(const char* request, std::size_t length, const Deadline& deadline) const noexcept;
    ssize_t receive(char* buffer, const Deadline& deadline) const noexcept;
    clnt_stat await(const CallMessage& message, Datagram& reply, const Deadline& deadline,
                    rpc_err& error) const noexcept;

    int socket_;
};

} // namespace Orvane
