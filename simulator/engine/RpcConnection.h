// One TCP connection carrying ONC RPC records.
#pragma once

#include "simulator/engine/EventLoop.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace OrvaneSim {

/// Joins the fragments of incoming records and sends replies as one fragment each. While the peer does not
/// take its replies, its requests are left unread. Belongs to the loop's thread.
class RpcConnection {
public:
    /// Takes over a connected non-blocking socket; `ready` is called whenever `transfer` has something to do.
    RpcConnection(EventLoop& loop, FileDescriptor socket, EventLoop::Ready ready);

    /// Reads or writes what is possible.
    void transfer(std::uint32_t events);

    /// The next whole record, valid until the next call on this object; none while more has to arrive.
    std::optional<std::string_view> nextRecord();

    /// Queues one record `copies` times.
    void send(std::string_view record, int copies);

    /// False once the peer has gone or sent what is no record; the connection is then to be destroyed.
    bool isOpen() const { return open_; }

private:
    void receive();
    void flush();

    EventLoop& loop_;
    FileDescriptor socket_;
    bool open_ = true;
    std::string unread_; // received, not yet joined
    std::string record_; // fragments joined so far
    bool recordGiven_ = false;
    std::string unsent_;
    EventLoop::Watch watch_;
};

} // namespace OrvaneSim
