// One TCP connection carrying ONC RPC records.
#pragma once

#include "simulator/engine/EventLoop.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace OrvaneSim {

// Joins the fragments of incoming records and sends replies as one fragment each. While the peer does not
// take its replies, its requests are left unread. Belongs to the loop's thread.
class RpcConnection {
public:
    // Takes over a connected non-blocking socket; `ready` is called whenever `transfer` has something to do.
    RpcConnection(EventLoop& loop, Orvane::FileDescriptor socket, EventLoop::Ready ready);

    // Reads or writes what is possible.
    void transfer(std::uint32_t events);

    // The next whole record, valid until the next call on this object; none while more has to arrive.
    std::optional<std::string_view> nextRecord();

    // Queues one record `copies` times.
    void send(std::string_view record, int copies);

    // Queues the first `bytes` bytes of a record. The connection then ends or, when half open, stays without
    // carrying anything any more.
    void sendCut(std::string_view record, std::size_t bytes, bool halfOpen);

    // Sends one record byte by byte, `gap` apart; what is queued meanwhile follows in the same way.
    void trickle(std::string_view record, std::chrono::milliseconds gap);

    // False once the peer has gone or sent what is no record; the connection is then to be destroyed.
    bool isOpen() const { return open_; }

private:
    void receive();
    void queue(std::string_view bytes);
    void drip();
    void flush();

    EventLoop& loop_;
    Orvane::FileDescriptor socket_;
    bool open_ = true;
    std::string unread_; // received, not yet joined
    std::string record_; // fragments joined so far
    bool recordGiven_ = false;
    std::string unsent_;
    std::string trickling_; // to become unsent_ byte by byte
    std::chrono::milliseconds trickleGap_{0};
    bool mute_ = false;
    EventLoop::Watch watch_;
    EventLoop::Life life_ = EventLoop::makeLife();
};

} // namespace OrvaneSim
