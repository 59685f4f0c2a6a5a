// Opening of the boards' sockets.
#include "simulator/engine/Sockets.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/socket.h>
#include <system_error>

namespace OrvaneSim {
namespace {

constexpr int kListenBacklog = 128;

// The socket interface takes every kind of address through one base type.
const sockaddr* generic(const sockaddr_in& point) {
    return reinterpret_cast<const sockaddr*>(&point);
}

Orvane::FileDescriptor openBound(int type, const sockaddr_in& point) {
    const auto fail = [&](const char* what) {
        throw std::system_error(errno, std::generic_category(),
                                std::string(what) + (type == SOCK_DGRAM ? " UDP " : " TCP ") +
                                    addressText(point) + ":" + std::to_string(ntohs(point.sin_port)));
    };
    Orvane::FileDescriptor socket(::socket(AF_INET, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket)
        fail("cannot open");
    // A restarted board listens at once, whatever connections of its former life still linger. Two boards may
    // not share a UDP port, so datagram sockets go without.
    if (type == SOCK_STREAM)
        setOption(socket, SOL_SOCKET, SO_REUSEADDR, 1);
    if (::bind(socket.get(), generic(point), sizeof point) != 0)
        fail("cannot bind");
    if (type == SOCK_STREAM && ::listen(socket.get(), kListenBacklog) != 0)
        fail("cannot listen on");
    return socket;
}

} // namespace

sockaddr_in endPoint(const std::string& address, std::uint16_t port) {
    sockaddr_in point{};
    point.sin_family = AF_INET;
    point.sin_port = htons(port);
    if (::inet_pton(AF_INET, address.c_str(), &point.sin_addr) != 1)
        throw std::invalid_argument("not an IPv4 address: \"" + address + "\"");
    return point;
}

std::string addressText(const sockaddr_in& point) {
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &point.sin_addr, text.data(), text.size());
    return text.data();
}

Orvane::FileDescriptor openUdp(const sockaddr_in& point) {
    return openBound(SOCK_DGRAM, point);
}

Orvane::FileDescriptor openTcpListener(const sockaddr_in& point) {
    return openBound(SOCK_STREAM, point);
}

std::uint16_t localPort(const Orvane::FileDescriptor& socket) {
    sockaddr_in point{};
    socklen_t size = sizeof point;
    if (::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&point), &size) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot read a socket's port");
    return ntohs(point.sin_port);
}

void setOption(const Orvane::FileDescriptor& socket, int level, int option, int value) {
    if (::setsockopt(socket.get(), level, option, &value, sizeof value) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot set a socket option");
}

void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = limit.rlim_max;
    // Failing leaves the limit as it was; opening sockets then reports what is missing.
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace OrvaneSim
