// Datagrams and connections of one served address.
#include "simulator/engine/RpcServer.h"

#include "simulator/engine/RpcConnection.h"

#include <sys/epoll.h>
#include <sys/socket.h>

namespace OrvaneSim {

RpcServer::RpcServer(EventLoop& loop, const std::string& address, std::uint16_t port, RpcHandler& handler)
    : loop_(loop),
      handler_(handler),
      udp_(openUdp(endPoint(address, port))),
      udpWatch_(loop.watch(udp_.get(), EPOLLIN, [this](std::uint32_t) { receiveDatagram(); })),
      acceptor_(loop, endPoint(address, port),
                [this](FileDescriptor socket) { addConnection(std::move(socket)); }) {}

RpcServer::~RpcServer() = default;

std::uint16_t RpcServer::port(Transport transport) const {
    return transport == Transport::Udp ? localPort(udp_) : acceptor_.port();
}

void RpcServer::answer(RpcCall& call) {
    if (call.reply().empty())
        handler_.answer(call);
}

/// Has the reply sent after the call's delay, if the server lives until then.
void RpcServer::postpone(const RpcCall& call, std::function<void(std::string_view reply, int copies)> send) {
    loop_.after(call.delivery.delay, life_,
                [reply = std::string(call.reply()), copies = call.delivery.copies, send = std::move(send)] {
                    send(reply, copies);
                });
}

/// Wraps a way of sending so that it does nothing once the server is gone.
std::function<void(std::string_view)> RpcServer::guarded(std::function<void(std::string_view)> send) {
    return [life = std::weak_ptr<const char>(life_), send = std::move(send)](std::string_view reply) {
        if (!life.expired())
            send(reply);
    };
}

void RpcServer::receiveDatagram() {
    std::vector<char>& room = loop_.scratch();
    sockaddr_in peer{};
    socklen_t peerSize = sizeof peer;
    const ssize_t count =
        ::recvfrom(udp_.get(), room.data(), room.size(), 0, reinterpret_cast<sockaddr*>(&peer), &peerSize);
    if (count < 0)
        return; // a pending error of the socket, or nothing there any more
    RpcCall call({room.data(), static_cast<std::size_t>(count)}, Transport::Udp);
    if (!call.isRequest())
        return;
    answer(call);
    if (call.later())
        call.later()->sendBy(
            guarded([this, peer](std::string_view reply) { sendDatagrams(peer, reply, 1); }));
    if (call.delivery.delay.count() == 0)
        sendDatagrams(peer, call.reply(), call.delivery.copies);
    else
        postpone(call,
                 [this, peer](std::string_view reply, int copies) { sendDatagrams(peer, reply, copies); });
}

void RpcServer::sendDatagrams(const sockaddr_in& peer, std::string_view reply, int copies) {
    if (reply.empty())
        return;
    // A reply that the kernel does not take is lost, as any datagram may be.
    for (int i = 0; i < copies; ++i)
        ::sendto(udp_.get(), reply.data(), reply.size(), MSG_NOSIGNAL,
                 reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
}

void RpcServer::addConnection(FileDescriptor socket) {
    const std::uint64_t id = ++lastConnection_;
    connections_.emplace(
        id, std::make_unique<RpcConnection>(
                loop_, std::move(socket), [this, id](std::uint32_t events) { serveConnection(id, events); }));
}

void RpcServer::serveConnection(std::uint64_t id, std::uint32_t events) {
    RpcConnection& connection = *connections_.at(id);
    connection.transfer(events);
    bool open = connection.isOpen();
    while (open) {
        const auto record = connection.nextRecord();
        if (!record)
            break;
        open = answerRecord(id, connection, *record);
    }
    if (!open || !connection.isOpen())
        connections_.erase(id);
}

bool RpcServer::answerRecord(std::uint64_t id, RpcConnection& connection, std::string_view record) {
    RpcCall call(record, Transport::Tcp);
    if (!call.isRequest())
        return false;
    answer(call);
    if (call.delivery.closeConnection)
        return false;
    if (call.later())
        call.later()->sendBy(guarded([this, id](std::string_view reply) { sendRecord(id, reply, 1); }));
    if (call.reply().empty())
        return true;
    if (call.delivery.delay.count() == 0)
        connection.send(call.reply(), call.delivery.copies);
    else
        postpone(call, [this, id](std::string_view reply, int copies) { sendRecord(id, reply, copies); });
    return true;
}

void RpcServer::sendRecord(std::uint64_t id, std::string_view reply, int copies) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    found->second->send(reply, copies);
    if (!found->second->isOpen())
        connections_.erase(found);
}

} // namespace OrvaneSim
