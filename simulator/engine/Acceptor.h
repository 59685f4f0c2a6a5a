// Accepts TCP connections at one end point.
#pragma once

#include "simulator/engine/EventLoop.h"
#include "simulator/engine/Sockets.h"

#include <functional>

namespace OrvaneSim {

// A listening socket; connections are refused once it is destroyed. When the process has no descriptor left,
// connections wait until it has. Belongs to the loop's thread.
class Acceptor {
public:
    // Receives each connected socket, non-blocking.
    using Accepted = std::function<void(Orvane::FileDescriptor socket)>;

    // `loop` must outlive the acceptor. Throws std::system_error.
    Acceptor(EventLoop& loop, const sockaddr_in& point, Accepted accepted);

    // The port listened at, in host byte order.
    std::uint16_t port() const { return localPort(listener_); }

private:
    void accept();

    EventLoop& loop_;
    Accepted accepted_;
    Orvane::FileDescriptor listener_;
    EventLoop::Watch watch_;
    EventLoop::Life life_ = EventLoop::makeLife();
};

} // namespace OrvaneSim
