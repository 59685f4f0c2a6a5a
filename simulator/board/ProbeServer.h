// Answers TCP probes at a board's address.
#pragma once

#include "simulator/board/Discovery.h"
#include "simulator/engine/Acceptor.h"
#include "simulator/engine/EventLoop.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvaneSim {

// Reads a discovery request from each connection, answers as the board does and closes. Belongs to the
// loop's thread.
class ProbeServer {
public:
    // Listens at dotted `address`; the three others must outlive the server. Throws std::system_error.
    ProbeServer(EventLoop& loop, const std::string& address, DiscoveryResponder& discovery,
                FaultQueue& faults);

private:
    struct Connection {
        Orvane::FileDescriptor socket;
        std::string request;
        std::vector<std::string> pieces;
        std::size_t sent = 0;
        EventLoop::Watch watch;
    };
    void addConnection(Orvane::FileDescriptor socket);
    void receive(std::uint64_t id);
    void sendPiece(std::uint64_t id);

    EventLoop& loop_;
    DiscoveryResponder& discovery_;
    FaultQueue& faults_;
    std::unordered_map<std::uint64_t, Connection> connections_;
    std::uint64_t lastConnection_ = 0;
    Acceptor acceptor_;
    EventLoop::Life life_ = EventLoop::makeLife();
};

} // namespace OrvaneSim
