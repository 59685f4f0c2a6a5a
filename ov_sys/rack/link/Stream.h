// A TCP connection to one program of a board, for those that speak no UDP.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <cstddef>
#include <netinet/in.h>
#include <poll.h>
#include <string>

namespace Orvane::RackLink {

// Never blocks and raises no signal. One thread at a time; may throw std::bad_alloc. Idle, it holds no
// buffers.
class Stream {
public:
    // A longer reply ends the connection.
    static constexpr std::size_t kLargestReply = std::size_t{64} << 20U;

    // Begins to connect, in place of a former connection; false when that fails at once.
    bool open(const sockaddr_in& to);
    void close();
    bool isOpen() const noexcept { return static_cast<bool>(socket_); }
    // Open, and the other side has taken the connection.
    bool isConnected() const noexcept { return isOpen() && !connecting_; }
    // Whether anything left over the connection, which may have ended since.
    bool hasSent() const noexcept { return sent_; }
    int descriptor() const noexcept { return socket_.get(); }
    // What poll() should wait for.
    short events() const noexcept {
        return static_cast<short>(connecting_ || !out_.empty() ? POLLIN | POLLOUT : POLLIN);
    }

    // One RPC message, which leaves as the connection allows.
    void send(const char* bytes, std::size_t length);
    // Writes and reads what is possible. False when the connection has ended; it is then closed.
    bool step();
    // Moves the next whole message to `message`; false when there is none.
    bool take(std::string& message);

private:
    bool connected();
    bool flush();
    bool fill();

    FileDescriptor socket_;
    bool connecting_ = false;
    bool sent_ = false;
    std::string out_;     // not yet written, record marks included
    std::string in_;      // read and not yet part of a whole message
    std::string message_; // fragments of the message that is coming
};

} // namespace Orvane::RackLink
