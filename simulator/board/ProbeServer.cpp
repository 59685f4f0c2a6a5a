// TCP probes: one request, one answer, end.
#include "simulator/board/ProbeServer.h"

#include <cerrno>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace OrvaneSim {
namespace {

// Apart enough for the receiver to take the pieces one by one.
constexpr std::chrono::milliseconds kPieceGap{5};
constexpr std::size_t kLongestRequest = 4096;

} // namespace

ProbeServer::ProbeServer(EventLoop& loop, const std::string& address, DiscoveryResponder& discovery,
                         FaultQueue& faults)
    : loop_(loop),
      discovery_(discovery),
      faults_(faults),
      acceptor_(loop, endPoint(address, kDiscoveryPort),
                [this](Orvane::FileDescriptor s) { addConnection(std::move(s)); }) {}

void ProbeServer::addConnection(Orvane::FileDescriptor socket) {
    const std::uint64_t id = ++lastConnection_;
    setOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
    Connection& connection = connections_[id];
    connection.socket = std::move(socket);
    connection.watch =
        loop_.watch(connection.socket.get(), EPOLLIN, [this, id](std::uint32_t) { receive(id); });
}

void ProbeServer::receive(std::uint64_t id) {
    Connection& connection = connections_.at(id);
    std::vector<char>& room = loop_.scratch();
    const ssize_t count = ::recv(connection.socket.get(), room.data(), room.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0 || connection.request.size() > kLongestRequest) {
        connections_.erase(id);
        return;
    }
    connection.request.append(room.data(), static_cast<std::size_t>(count));
    const auto word = discoveryWord(connection.request);
    if (!word)
        return; // more of the request may come
    auto replies = discovery_.probeReplyTo(*word, faults_);
    if (!replies)
        return;
    connection.pieces = std::move(replies->texts);
    if (replies->delay.count() == 0)
        sendPiece(id);
    else
        loop_.after(replies->delay, life_, [this, id] { sendPiece(id); });
}

void ProbeServer::sendPiece(std::uint64_t id) {
    const auto found = connections_.find(id);
    if (found == connections_.end())
        return;
    Connection& connection = found->second;
    if (connection.sent < connection.pieces.size()) {
        const std::string& piece = connection.pieces[connection.sent++];
        // A fresh connection takes these few bytes at once; one that does not is as good as broken.
        ::send(connection.socket.get(), piece.data(), piece.size(), MSG_NOSIGNAL);
    }
    if (connection.sent == connection.pieces.size()) {
        connections_.erase(found);
        return;
    }
    loop_.after(kPieceGap, life_, [this, id] { sendPiece(id); });
}

} // namespace OrvaneSim
