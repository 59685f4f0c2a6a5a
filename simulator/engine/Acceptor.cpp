// Accepting of connections.
#include "simulator/engine/Acceptor.h"

#include <cerrno>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace OrvaneSim {
namespace {

constexpr std::chrono::milliseconds kPause{100};

} // namespace

Acceptor::Acceptor(EventLoop& loop, const sockaddr_in& point, Accepted accepted)
    : loop_(loop),
      accepted_(std::move(accepted)),
      listener_(openTcpListener(point)),
      watch_(loop.watch(listener_.get(), EPOLLIN, [this](std::uint32_t) { accept(); })) {}

void Acceptor::accept() {
    Orvane::FileDescriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (socket) {
        accepted_(std::move(socket));
        return;
    }
    if (errno != EMFILE && errno != ENFILE)
        return;
    watch_.setEvents(0);
    loop_.after(kPause, life_, [this] { watch_.setEvents(EPOLLIN); });
}

} // namespace OrvaneSim
