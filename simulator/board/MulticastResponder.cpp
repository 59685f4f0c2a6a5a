// The discovery group's socket.
#include "simulator/board/MulticastResponder.h"

#include "simulator/network/PrivateNetwork.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <system_error>

namespace OrvaneSim {
namespace {

constexpr const char* kGroup = "239.255.255.38";
constexpr std::size_t kRepliesAtOnce = 64;
constexpr std::chrono::milliseconds kReplyGap{2};

Orvane::FileDescriptor openGroupSocket() {
    Orvane::FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    setOption(socket, SOL_SOCKET, SO_REUSEADDR, 1);
    // Bound to the group, not to any address: what a host receives on the same port is not for boards.
    const sockaddr_in point = endPoint(kGroup, kDiscoveryPort);
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&point), sizeof point) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot bind the discovery socket");
    return socket;
}

} // namespace

MulticastResponder::MulticastResponder(EventLoop& loop)
    : loop_(loop),
      socket_(openGroupSocket()),
      watch_(loop.watch(socket_.get(), EPOLLIN, [this](std::uint32_t) { receive(); })) {
    for (const int interface : PrivateNetwork::boardInterfaces())
        join({}, interface);
}

void MulticastResponder::join(const in_addr& address, int interface) {
    ip_mreqn request{};
    request.imr_multiaddr = endPoint(kGroup, 0).sin_addr;
    request.imr_address = address;
    request.imr_ifindex = interface;
    // Boards of one interface share its membership; an interface without multicast leaves its boards to be
    // reached by address only.
    ::setsockopt(socket_.get(), IPPROTO_IP, IP_ADD_MEMBERSHIP, &request, sizeof request);
}

void MulticastResponder::add(const std::string& address, DiscoveryResponder& discovery, FaultQueue& faults) {
    while (receive()) { // what was sent before was not for this board
    }
    const sockaddr_in source = endPoint(address, 0);
    members_[address] = {source, &discovery, &faults};
    if (!PrivateNetwork::entered())
        join(source.sin_addr, 0);
}

void MulticastResponder::remove(const std::string& address) {
    members_.erase(address);
}

// Takes one datagram; false when there is none.
bool MulticastResponder::receive() {
    std::vector<char>& room = loop_.scratch();
    sockaddr_in requester{};
    socklen_t size = sizeof requester;
    const ssize_t count = ::recvfrom(socket_.get(), room.data(), room.size(), 0,
                                     reinterpret_cast<sockaddr*>(&requester), &size);
    if (count < 0)
        return false;
    const auto word = discoveryWord({room.data(), static_cast<std::size_t>(count)});
    if (!word)
        return true;
    requester.sin_port = htons(kDiscoveryPort);
    const bool idle = replies_.empty();
    for (auto& [address, member] : members_) {
        DiscoveryResponder::Replies replies = member.discovery->repliesTo(*word, *member.faults);
        for (std::string& text : replies.texts)
            queue({member.source, requester, std::move(text)}, replies.delay);
    }
    if (idle)
        sendSome();
    return true;
}

void MulticastResponder::queue(Reply reply, std::chrono::milliseconds delay) {
    if (delay.count() == 0)
        return replies_.push_back(std::move(reply));
    loop_.after(delay, life_, [this, late = std::move(reply)] { send(late); });
}

void MulticastResponder::sendSome() {
    for (std::size_t i = 0; i < kRepliesAtOnce && !replies_.empty(); ++i) {
        send(replies_.front());
        replies_.pop_front();
    }
    if (!replies_.empty())
        loop_.after(kReplyGap, life_, [this] { sendSome(); });
}

void MulticastResponder::send(const Reply& reply) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): only read
    iovec part{const_cast<char*>(reply.text.data()), reply.text.size()};
    sockaddr_in destination = reply.requester;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(in_pktinfo))> control{};
    msghdr message{};
    message.msg_name = &destination;
    message.msg_namelen = sizeof destination;
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = IPPROTO_IP;
    header->cmsg_type = IP_PKTINFO;
    header->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
    in_pktinfo source{};
    source.ipi_spec_dst = reply.source.sin_addr;
    std::memcpy(CMSG_DATA(header), &source, sizeof source);
    // A reply that the kernel does not take is lost, as any datagram may be.
    ::sendmsg(socket_.get(), &message, MSG_NOSIGNAL);
}

} // namespace OrvaneSim
