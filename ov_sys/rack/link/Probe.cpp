// A question by TCP, sent and answered without waiting.
#include "ov_sys/rack/link/Probe.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"

#include <cerrno>
#include <sys/socket.h>

namespace Orvane::RackLink {

namespace Protocol = DiscoveryProtocol;

Probe::Probe(const sockaddr_in& whom)
    : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    if (socket_ && connect(socket_.get(), reinterpret_cast<const sockaddr*>(&whom), sizeof whom) != 0 &&
        errno != EINPROGRESS)
        socket_.reset();
}

pollfd Probe::watch() const noexcept {
    return {socket_.get(), static_cast<short>(asked_ ? POLLIN : POLLOUT), 0};
}

// False when nobody can be asked.
bool Probe::ask() {
    pollfd entry{socket_.get(), POLLOUT, 0};
    if (asked_ || poll(&entry, 1, 0) <= 0)
        return true;
    const std::string request = Protocol::request({});
    // A fresh connection takes these few bytes at once, or is none.
    asked_ = send(socket_.get(), request.data(), request.size(), MSG_NOSIGNAL) ==
             static_cast<ssize_t>(request.size());
    return asked_;
}

// The answer ends with its connection.
Probe::State Probe::step() {
    if (!socket_ || !ask())
        return State::Failed;
    while (asked_) {
        char text[Protocol::kReplyLimit];
        const ssize_t got = recv(socket_.get(), text, sizeof text, 0);
        if (got < 0 && (errno == EAGAIN || errno == EINTR))
            break;
        if (got <= 0)
            return answer_.empty() ? State::Failed : State::Answered;
        answer_.append(text, static_cast<std::size_t>(got));
        if (answer_.size() > Protocol::kReplyLimit)
            return State::Failed;
    }
    return State::Waiting;
}

} // namespace Orvane::RackLink
