// Serves ONC RPC requests at one address, over UDP and TCP.
#pragma once

#include "simulator/engine/Acceptor.h"
#include "simulator/engine/EventLoop.h"
#include "simulator/engine/RpcCall.h"
#include "simulator/engine/Sockets.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace OrvaneSim {

// Answers requests; called on the loop's thread.
class RpcHandler {
public:
    virtual ~RpcHandler() = default;
    // Serves one request and leaves its reply, or none, in `call`. Not called for requests that no handler
    // can serve, such as one of another RPC version.
    virtual void answer(RpcCall& call) = 0;
};

class RpcConnection;

// A UDP socket, a TCP listener and its connections. Everything is refused once it is destroyed. Belongs to
// the loop's thread.
class RpcServer {
public:
    // Serves at dotted `address`; port 0 lets the kernel choose one for each transport. `loop` and `handler`
    // must outlive the server. Throws std::system_error when a socket cannot be had.
    RpcServer(EventLoop& loop, const std::string& address, std::uint16_t port, RpcHandler& handler);
    ~RpcServer();
    RpcServer(const RpcServer&) = delete;
    RpcServer& operator=(const RpcServer&) = delete;

    // The port served on a transport, in host byte order.
    std::uint16_t port(Transport transport) const;

    // Whom the newest datagrams came from, the last first; at most four.
    const std::vector<sockaddr_in>& recentPeers() const { return recentPeers_; }
    // Transaction id of the last request, 0 before the first.
    std::uint32_t lastTransaction() const { return lastTransaction_; }

    // Sends a datagram as it is, from the served port or from another one of the same address. One that the
    // kernel does not take is lost, as any datagram may be.
    void sendDatagram(const sockaddr_in& peer, std::string_view bytes, bool otherPort);

private:
    using Life = std::weak_ptr<const char>; // an answer may end the server
    // Where a reply goes: to a datagram's sender or, when `connection` is not 0, over that connection.
    struct Client {
        sockaddr_in peer{};
        std::uint64_t connection = 0;
        bool operator==(const Client& other) const;
    };
    // A reply that waits for the client's next one.
    struct Held {
        Client client;
        std::string reply;
        Delivery delivery;
        std::uint64_t number;
    };
    void receiveDatagrams();
    void answerArrivals(const Life& life);
    void answerDatagram(std::string_view bytes, const sockaddr_in& from);
    void putOff(std::string_view bytes, const sockaddr_in& from);
    void answerPutOffLater();
    void answerPutOff();
    void rememberPeer(const sockaddr_in& peer);
    void addConnection(Orvane::FileDescriptor socket);
    void serveConnection(std::uint64_t id, std::uint32_t events);
    bool answerRecord(std::uint64_t id, std::string_view record);
    void answer(RpcCall& call, const Client& client);
    void deliver(const Client& client, std::string_view reply, const Delivery& delivery);
    void bendAndSend(const Client& client, std::string reply, const Delivery& delivery);
    void hold(const Client& client, std::string reply, const Delivery& delivery);
    void releaseHeld(const std::function<bool(const Held&)>& due);
    void transmit(const Client& client, std::string_view reply, const Delivery& delivery);
    void transmitOver(RpcConnection& connection, std::string_view reply, const Delivery& delivery);

    EventLoop& loop_;
    RpcHandler& handler_;
    std::string address_;
    Orvane::FileDescriptor udp_;
    Orvane::FileDescriptor otherUdp_; // opened when first needed
    EventLoop::Watch udpWatch_;
    Acceptor acceptor_;
    std::unordered_map<std::uint64_t, std::unique_ptr<RpcConnection>> connections_;
    std::uint64_t lastConnection_ = 0;
    std::vector<sockaddr_in> recentPeers_;
    std::uint32_t lastTransaction_ = 0;
    std::list<Held> held_;
    std::uint64_t lastHeld_ = 0;
    bool gathers_ = false;                                   // replies wait for those behind them
    std::deque<std::pair<sockaddr_in, std::string>> putOff_; // requests that came with one already answered
    EventLoop::Life life_ = EventLoop::makeLife();
};

} // namespace OrvaneSim
