// The messages between the programs, and the sockets that carry them.
#include "ov_sys/rack/search/Sharing.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <utility>

namespace Orvane::RackSearch {
namespace {

// An abstract name: it belongs to a network namespace, as the port of the answers does, and leaves no file
// behind.
constexpr char kName[] = "\0orvane-search-1";
constexpr std::size_t kNameLength = sizeof kName - 1;
// A message: the address that an answer came from, then its text. Alone, the address 0 is a sign of life.
constexpr std::size_t kHead = sizeof(in_addr_t);

socklen_t nameInto(sockaddr_un& place) noexcept {
    place.sun_family = AF_UNIX;
    std::memcpy(place.sun_path, kName, kNameLength);
    return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + kNameLength);
}

FileDescriptor newSocket() noexcept {
    return FileDescriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

std::string messageOf(const Answer& answer) {
    std::string message(kHead, '\0');
    std::memcpy(message.data(), &answer.from, kHead);
    return message + answer.text;
}

} // namespace

bool Speaker::open() {
    constexpr int kBacklog = 4096;
    sockaddr_un name{};
    const socklen_t size = nameInto(name);
    FileDescriptor made = newSocket();
    if (!made || bind(made.get(), reinterpret_cast<const sockaddr*>(&name), size) != 0 ||
        listen(made.get(), kBacklog) != 0)
        return false;
    socket_ = std::move(made);
    return true;
}

void Speaker::tell(const Answer& answer) {
    if (isOpen())
        messages_.push_back(messageOf(answer));
}

void Speaker::beat() {
    const std::string message = messageOf({0, {}});
    for (const Audience& one : audience_) // who does not read now has something to read
        ::send(one.socket.get(), message.data(), message.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
}

void Speaker::admit() {
    constexpr std::size_t kMost = 2048; // descriptors that strangers may take
    while (FileDescriptor listener{accept4(socket_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC)})
        if (audience_.size() < kMost)
            audience_.push_back({std::move(listener), 0});
}

// False when the listener has gone.
bool Speaker::send(Audience& one) const {
    for (; one.told < messages_.size(); ++one.told) {
        const std::string& message = messages_[one.told];
        if (::send(one.socket.get(), message.data(), message.size(), MSG_DONTWAIT | MSG_NOSIGNAL) < 0)
            return errno == EAGAIN || errno == EINTR;
    }
    return true;
}

bool Speaker::step() {
    if (!isOpen())
        return true;
    admit();
    bool all = true;
    const auto gone = [&](Audience& one) {
        const bool lives = send(one);
        all = all && (!lives || one.told == messages_.size());
        return !lives;
    };
    audience_.erase(std::remove_if(audience_.begin(), audience_.end(), gone), audience_.end());
    return all;
}

bool Listener::open() {
    sockaddr_un name{};
    const socklen_t size = nameInto(name);
    FileDescriptor made = newSocket();
    if (!made || connect(made.get(), reinterpret_cast<const sockaddr*>(&name), size) != 0)
        return false;
    socket_ = std::move(made);
    return true;
}

Listener::Heard Listener::hear(Answer& answer) {
    char message[kHead + DiscoveryProtocol::kReplyLimit];
    const ssize_t length = recv(socket_.get(), message, sizeof message, 0);
    if (length < 0)
        return errno == EAGAIN || errno == EINTR ? Heard::Nothing : Heard::End;
    if (length < static_cast<ssize_t>(kHead))
        return Heard::End;
    std::memcpy(&answer.from, message, kHead);
    answer.text.assign(message + kHead, static_cast<std::size_t>(length) - kHead);
    return answer.from == 0 ? Heard::Beat : Heard::Answer;
}

} // namespace Orvane::RackSearch
