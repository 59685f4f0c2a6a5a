// Datagrams and connections of one served address.
#include "simulator/engine/RpcServer.h"

#include "simulator/engine/RpcConnection.h"

#include <algorithm>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace OrvaneSim {
namespace {

constexpr std::size_t kMostPeers = 4;

bool sameEnd(const sockaddr_in& one, const sockaddr_in& other) {
    return one.sin_port == other.sin_port && one.sin_addr.s_addr == other.sin_addr.s_addr;
}

} // namespace

bool RpcServer::Client::operator==(const Client& other) const {
    return connection == other.connection && sameEnd(peer, other.peer);
}

RpcServer::RpcServer(EventLoop& loop, const std::string& address, std::uint16_t port, RpcHandler& handler)
    : loop_(loop),
      handler_(handler),
      address_(address),
      udp_(openUdp(endPoint(address, port))),
      udpWatch_(loop.watch(udp_.get(), EPOLLIN, [this](std::uint32_t) { receiveDatagrams(); })),
      acceptor_(loop, endPoint(address, port),
                [this](Orvane::FileDescriptor socket) { addConnection(std::move(socket)); }) {
    Orvane::ArrivedTrain::expect(udp_.get());
}

RpcServer::~RpcServer() {
    loop_.departures().leave(); // while the socket is open
}

std::uint16_t RpcServer::port(Transport transport) const {
    return transport == Transport::Udp ? localPort(udp_) : acceptor_.port();
}

// Has a request served and its reply sent, at once or when it is there.
void RpcServer::answer(RpcCall& call, const Client& client) {
    lastTransaction_ = call.header().transaction;
    if (call.reply().empty())
        handler_.answer(call);
    if (call.later())
        call.later()->sendBy([this, life = std::weak_ptr<const char>(life_), client,
                              delivery = call.delivery](std::string_view reply) {
            if (!life.expired())
                deliver(client, reply, delivery);
        });
    deliver(client, call.reply(), call.delivery);
}

void RpcServer::deliver(const Client& client, std::string_view reply, const Delivery& delivery) {
    if (reply.empty() || delivery.copies == 0)
        return;
    if (delivery.isPlain()) {
        transmit(client, reply, delivery);
        return;
    }
    if (delivery.delay.count() == 0) {
        bendAndSend(client, std::string(reply), delivery);
        return;
    }
    loop_.after(delivery.delay, life_, [this, client, reply = std::string(reply), delivery] {
        bendAndSend(client, reply, delivery);
    });
}

void RpcServer::bendAndSend(const Client& client, std::string reply, const Delivery& delivery) {
    if (delivery.change)
        delivery.change(reply);
    if (delivery.hold.count() > 0)
        hold(client, std::move(reply), delivery);
    else
        transmit(client, reply, delivery);
}

void RpcServer::hold(const Client& client, std::string reply, const Delivery& delivery) {
    const std::uint64_t number = ++lastHeld_;
    held_.push_back({client, std::move(reply), delivery, number});
    loop_.after(delivery.hold, life_, [this, number] {
        releaseHeld([number](const Held& held) { return held.number == number; });
    });
}

// Sends the held replies that are due, the oldest first.
void RpcServer::releaseHeld(const std::function<bool(const Held&)>& due) {
    std::list<Held> released;
    for (auto held = held_.begin(); held != held_.end();) {
        const auto next = std::next(held);
        if (due(*held))
            released.splice(released.end(), held_, held);
        held = next;
    }
    for (const Held& held : released)
        transmit(held.client, held.reply, held.delivery);
}

// Lets a reply leave, and those behind it that waited for it.
void RpcServer::transmit(const Client& client, std::string_view reply, const Delivery& delivery) {
    if (client.connection != 0) {
        const auto found = connections_.find(client.connection);
        if (found != connections_.end())
            transmitOver(*found->second, reply, delivery);
        // Whoever serves the connection may be further up the stack.
        if (found != connections_.end() && !found->second->isOpen())
            loop_.after({}, life_, [this, id = client.connection] { connections_.erase(id); });
    } else if (!delivery.cutAfter) {
        for (int i = 0; i < delivery.copies; ++i)
            sendDatagram(client.peer, reply, delivery.otherPort);
    }
    if (!held_.empty())
        releaseHeld([&client](const Held& held) { return held.client == client; });
}

void RpcServer::transmitOver(RpcConnection& connection, std::string_view reply, const Delivery& delivery) {
    if (delivery.otherPort)
        return;
    if (delivery.cutAfter)
        connection.sendCut(reply, *delivery.cutAfter, delivery.halfOpen);
    else if (delivery.trickle.count() > 0)
        connection.trickle(reply, delivery.trickle);
    else
        connection.send(reply, delivery.copies);
}

void RpcServer::rememberPeer(const sockaddr_in& peer) {
    if (!recentPeers_.empty() && sameEnd(recentPeers_.front(), peer))
        return;
    const auto known = std::find_if(recentPeers_.begin(), recentPeers_.end(),
                                    [&](const sockaddr_in& recent) { return sameEnd(recent, peer); });
    if (known != recentPeers_.end())
        recentPeers_.erase(known);
    else if (recentPeers_.size() == kMostPeers)
        recentPeers_.pop_back();
    recentPeers_.insert(recentPeers_.begin(), peer);
}

// The first is answered at once, and then together what came with it or meanwhile. What a request does to the
// board, such as ending it, comes before the request behind it.
void RpcServer::receiveDatagrams() {
    constexpr int kMost = 32;
    const Life life = life_;
    for (int i = 0; i < kMost && !life.expired() && putOff_.empty() && !loop_.isWanted(); ++i) {
        if (!loop_.arrivals().take(udp_.get()))
            break; // nothing there any more, or a pending error of the socket
        answerArrivals(life);
    }
    if (life.expired())
        return;
    gathers_ = false;
    loop_.departures().leave();
}

void RpcServer::answerArrivals(const Life& life) {
    const sockaddr_in from = loop_.arrivals().from();
    char* bytes = nullptr;
    std::size_t length = 0;
    while (!life.expired() && loop_.arrivals().next(bytes, length)) {
        if (!putOff_.empty() || loop_.isWanted()) {
            putOff({bytes, length}, from);
        } else {
            answerDatagram({bytes, length}, from);
            if (!life.expired())
                gathers_ = true;
        }
    }
}

void RpcServer::putOff(std::string_view bytes, const sockaddr_in& from) {
    if (putOff_.empty())
        answerPutOffLater();
    putOff_.emplace_back(from, bytes);
}

void RpcServer::answerPutOffLater() {
    loop_.post([this, life = Life(life_)] {
        if (!life.expired())
            answerPutOff();
    });
}

void RpcServer::answerPutOff() {
    const Life life = life_;
    do {
        const auto [from, bytes] = std::move(putOff_.front());
        putOff_.pop_front();
        answerDatagram(bytes, from);
    } while (!life.expired() && !putOff_.empty() && !loop_.isWanted());
    if (!life.expired() && !putOff_.empty())
        answerPutOffLater();
}

void RpcServer::answerDatagram(std::string_view bytes, const sockaddr_in& from) {
    RpcCall call(bytes, Transport::Udp);
    if (!call.isRequest())
        return;
    rememberPeer(from);
    Client client;
    client.peer = from;
    answer(call, client);
}

void RpcServer::sendDatagram(const sockaddr_in& peer, std::string_view bytes, bool otherPort) {
    if (otherPort && !otherUdp_)
        otherUdp_ = openUdp(endPoint(address_, 0));
    loop_.departures().add(otherPort ? otherUdp_.get() : udp_.get(), peer, bytes.data(), bytes.size());
    if (!gathers_)
        loop_.departures().leave();
}

void RpcServer::addConnection(Orvane::FileDescriptor socket) {
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
        open = answerRecord(id, *record);
    }
    if (!open || !connection.isOpen())
        connections_.erase(id);
}

bool RpcServer::answerRecord(std::uint64_t id, std::string_view record) {
    RpcCall call(record, Transport::Tcp);
    if (!call.isRequest())
        return false;
    Client client;
    client.connection = id;
    answer(call, client);
    return !call.delivery.closeConnection;
}

} // namespace OrvaneSim
