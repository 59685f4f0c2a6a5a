// The options of the socket, and the datagrams through it.
#include "ov_sys/rack/search/AnswerSocket.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"
#include "ov_sys/rack/link/Endpoint.h"

#include <cerrno>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <sys/socket.h>

namespace Orvane::RackSearch {
namespace {

namespace Protocol = DiscoveryProtocol;

template <class Value>
bool setOption(int socket, int level, int option, const Value& value) noexcept {
    return setsockopt(socket, level, option, &value, sizeof value) == 0;
}

in_addr_t group() noexcept {
    return inet_addr(Protocol::kGroup);
}

} // namespace

bool AnswerSocket::open() {
    constexpr int kBuffer = 4 << 20; // bytes; the system gives what it allows
    FileDescriptor made(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!made)
        return false;
    const sockaddr_in here = RackLink::endpoint(INADDR_ANY, Protocol::kPort);
    setOption(made.get(), SOL_SOCKET, SO_RCVBUF, kBuffer);
    if (!setOption(made.get(), SOL_SOCKET, SO_REUSEADDR, 1) ||
        bind(made.get(), reinterpret_cast<const sockaddr*>(&here), sizeof here) != 0)
        return false;
    ip_mreq membership{};
    membership.imr_multiaddr.s_addr = group();
    setOption(made.get(), IPPROTO_IP, IP_ADD_MEMBERSHIP, membership); // a host without a route has none
    socket_ = std::move(made);
    return true;
}

void AnswerSocket::ask() const {
    const FileDescriptor sender(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    ifaddrs* list = nullptr;
    if (!sender || getifaddrs(&list) != 0)
        return;
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(list, freeifaddrs);
    setOption(sender.get(), IPPROTO_IP, IP_MULTICAST_TTL, u_char{31});
    setOption(sender.get(), IPPROTO_IP, IP_MULTICAST_LOOP, u_char{0});
    const sockaddr_in to = RackLink::endpoint(group(), Protocol::kPort);
    const std::string request = Protocol::request({});
    for (const ifaddrs* one = list; one != nullptr; one = one->ifa_next) {
        if (one->ifa_addr == nullptr || one->ifa_addr->sa_family != AF_INET ||
            (one->ifa_flags & IFF_LOOPBACK) != 0)
            continue;
        sockaddr_in own{};
        std::memcpy(&own, one->ifa_addr, sizeof own);
        if (setOption(sender.get(), IPPROTO_IP, IP_MULTICAST_IF, own.sin_addr))
            sendto(sender.get(), request.data(), request.size(), MSG_NOSIGNAL,
                   reinterpret_cast<const sockaddr*>(&to), sizeof to);
    }
}

std::optional<Answer> AnswerSocket::receive() const {
    for (;;) {
        char text[Protocol::kReplyLimit];
        sockaddr_in from{};
        socklen_t size = sizeof from;
        const ssize_t length =
            recvfrom(socket_.get(), text, sizeof text, 0, reinterpret_cast<sockaddr*>(&from), &size);
        if (length >= 0)
            return Answer{from.sin_addr.s_addr, std::string(text, static_cast<std::size_t>(length))};
        if (errno != EINTR)
            return std::nullopt;
    }
}

} // namespace Orvane::RackSearch
