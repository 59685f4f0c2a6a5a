// Datagrams out and in, whatever signals interrupt.
#include "ov_sys/rack/link/DatagramSocket.h"

#include <cerrno>
#include <sys/socket.h>

namespace Orvane::RackLink {

bool DatagramSocket::open() noexcept {
    if (!socket_)
        socket_ = FileDescriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    return static_cast<bool>(socket_);
}

bool DatagramSocket::send(const char* bytes, std::size_t length, const sockaddr_in& to) const noexcept {
    ssize_t sent = 0;
    do
        sent = sendto(socket_.get(), bytes, length, MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&to),
                      sizeof to);
    while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

ssize_t DatagramSocket::receive(char* buffer, std::size_t capacity, sockaddr_in& from) const noexcept {
    for (;;) {
        socklen_t size = sizeof from;
        const ssize_t length =
            recvfrom(socket_.get(), buffer, capacity, 0, reinterpret_cast<sockaddr*>(&from), &size);
        if (length >= 0 || errno != EINTR)
            return length;
    }
}

} // namespace Orvane::RackLink
