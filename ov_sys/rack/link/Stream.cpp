// Records out and in, as far as the socket takes and gives them without waiting.
#include "ov_sys/rack/link/Stream.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

namespace Orvane::RackLink {
namespace {

constexpr std::size_t kMark =
    4; // bytes before each fragment: its length, and in the top bit whether it is the last
constexpr std::uint32_t kLast = 0x80000000U;

bool later(int number) noexcept {
    return number == EAGAIN || number == EINTR;
}

} // namespace

bool Stream::open(const sockaddr_in& to) {
    close();
    socket_ = FileDescriptor(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket_)
        return false;
    const int on = 1;
    setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    // A peer that has gone without a word is found out while nobody asks it anything.
    const int idle = 2; // seconds
    const int interval = 1;
    const int probes = 5;
    setsockopt(socket_.get(), SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
    setsockopt(socket_.get(), IPPROTO_TCP, TCP_KEEPIDLE, &idle, sizeof idle);
    setsockopt(socket_.get(), IPPROTO_TCP, TCP_KEEPINTVL, &interval, sizeof interval);
    setsockopt(socket_.get(), IPPROTO_TCP, TCP_KEEPCNT, &probes, sizeof probes);
    connecting_ = true;
    sent_ = false;
    if (connect(socket_.get(), reinterpret_cast<const sockaddr*>(&to), sizeof to) == 0 ||
        errno == EINPROGRESS)
        return true;
    close();
    return false;
}

void Stream::close() {
    socket_.reset();
    connecting_ = false;
    std::string().swap(out_);
    std::string().swap(in_);
    std::string().swap(message_);
}

void Stream::send(const char* bytes, std::size_t length) {
    const std::uint32_t mark = htonl(kLast | static_cast<std::uint32_t>(length));
    out_.append(reinterpret_cast<const char*>(&mark), sizeof mark);
    out_.append(bytes, length);
    if (!connecting_)
        flush(); // what goes wrong here shows at the next step
}

bool Stream::connected() {
    if (!connecting_)
        return true;
    pollfd entry{socket_.get(), POLLOUT, 0};
    if (poll(&entry, 1, 0) <= 0)
        return true; // not yet
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR, &error, &size);
    connecting_ = false;
    return error == 0;
}

bool Stream::flush() {
    std::size_t done = 0;
    while (done < out_.size()) {
        const ssize_t sent =
            ::send(socket_.get(), out_.data() + done, out_.size() - done, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent < 0 && !later(errno))
            return false;
        if (sent < 0)
            break;
        done += static_cast<std::size_t>(sent);
        sent_ = true;
    }
    if (done == out_.size())
        std::string().swap(out_);
    else
        out_.erase(0, done);
    return true;
}

bool Stream::fill() {
    for (;;) {
        char bytes[8192];
        const ssize_t got = recv(socket_.get(), bytes, sizeof bytes, MSG_DONTWAIT);
        if (got == 0 || (got < 0 && !later(errno)))
            return false;
        if (got < 0)
            return true;
        in_.append(bytes, static_cast<std::size_t>(got));
        if (in_.size() > kLargestReply)
            return false;
        if (static_cast<std::size_t>(got) < sizeof bytes)
            return true;
    }
}

bool Stream::step() {
    if (!socket_)
        return false;
    const bool fine = connected() && (connecting_ || (flush() && fill()));
    if (!fine && in_.empty())
        close();
    else if (!fine)
        socket_.reset(); // what arrived is still to be taken
    return fine;
}

bool Stream::take(std::string& message) {
    while (in_.size() >= kMark) {
        std::uint32_t mark = 0;
        std::memcpy(&mark, in_.data(), sizeof mark);
        mark = ntohl(mark);
        const std::size_t length = mark & ~kLast;
        if (length > kLargestReply || message_.size() + length > kLargestReply) {
            close();
            return false;
        }
        if (in_.size() - kMark < length)
            return false;
        message_.append(in_, kMark, length);
        in_.erase(0, kMark + length);
        if (in_.empty())
            std::string().swap(in_);
        if ((mark & kLast) != 0) {
            message = std::exchange(message_, {});
            return true;
        }
    }
    return false;
}

} // namespace Orvane::RackLink
