// Serves ONC RPC requests at one address, over UDP and TCP.
#pragma once

#include "simulator/engine/Acceptor.h"
#include "simulator/engine/EventLoop.h"
#include "simulator/engine/RpcCall.h"
#include "simulator/engine/Sockets.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace OrvaneSim {

/// Answers requests; called on the loop's thread.
class RpcHandler {
public:
    virtual ~RpcHandler() = default;
    /// Serves one request and leaves its reply, or none, in `call`. Not called for requests that no handler
    /// can serve, such as one of another RPC version.
    virtual void answer(RpcCall& call) = 0;
};

class RpcConnection;

/// A UDP socket, a TCP listener and its connections. Everything is refused once it is destroyed. Belongs to
/// the loop's thread.
class RpcServer {
public:
    /// Serves at dotted `address`; port 0 lets the kernel choose one for each transport. `loop` and `handler`
    /// must outlive the server. Throws std::system_error when a socket cannot be had.
    RpcServer(EventLoop& loop, const std::string& address, std::uint16_t port, RpcHandler& handler);
    ~RpcServer();
    RpcServer(const RpcServer&) = delete;
    RpcServer& operator=(const RpcServer&) = delete;

    /// The port served on a transport, in host byte order.
    std::uint16_t port(Transport transport) const;

private:
    void receiveDatagram();
    void sendDatagrams(const sockaddr_in& peer, std::string_view reply, int copies);
    void addConnection(FileDescriptor socket);
    void serveConnection(std::uint64_t id, std::uint32_t events);
    bool answerRecord(std::uint64_t id, RpcConnection& connection, std::string_view record);
    void sendRecord(std::uint64_t id, std::string_view reply, int copies);
    void answer(RpcCall& call);
    std::function<void(std::string_view)> guarded(std::function<void(std::string_view)> send);
    void postpone(const RpcCall& call, std::function<void(std::string_view reply, int copies)> send);

    EventLoop& loop_;
    RpcHandler& handler_;
    FileDescriptor udp_;
    EventLoop::Watch udpWatch_;
    Acceptor acceptor_;
    std::unordered_map<std::uint64_t, std::unique_ptr<RpcConnection>> connections_;
    std::uint64_t lastConnection_ = 0;
    EventLoop::Life life_ = EventLoop::makeLife();
};

} // namespace OrvaneSim
