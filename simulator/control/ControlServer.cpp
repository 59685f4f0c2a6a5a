// The serving end of the control socket.
#include "simulator/control/ControlSocket.h"

#include "simulator/control/LocalSocket.h"

#include <cerrno>
#include <cstdlib>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneSim {
namespace {

constexpr std::size_t kLongestLine = std::size_t{1} << 20;

// Removes the socket at `path`; false when something else is there, which stays.
bool removeSocket(const std::string& path) {
    struct stat found {};
    if (::lstat(path.c_str(), &found) != 0)
        return true;
    return S_ISSOCK(found.st_mode) && ::unlink(path.c_str()) == 0;
}

Orvane::FileDescriptor listenAt(const std::string& path) {
    if (connectLocal(path))
        throw std::runtime_error("another lab is controlled through " + path);
    const sockaddr_un place = localPlace(path);
    Orvane::FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!removeSocket(path)) // left over: nobody serves it
        throw std::runtime_error("cannot make the control socket " + path + ": there is a file of that name");
    const mode_t mask = ::umask(0077);
    const int bound = ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place);
    const int error = errno;
    ::umask(mask);
    if (bound != 0 || ::listen(socket.get(), 16) != 0)
        throw std::system_error(bound != 0 ? error : errno, std::generic_category(),
                                "cannot make the control socket " + path);
    return socket;
}

} // namespace

std::string defaultControlPath() {
    return localFolders().front() + "/" + kLocalPrefix + std::to_string(::getpid()) + kLocalSuffix;
}

ControlServer::ControlServer(Lab& lab, std::string path)
    : control_(lab), path_(std::move(path)), listener_(listenAt(path_)) {
    loop_.call(
        [this] { watch_ = loop_.watch(listener_.get(), EPOLLIN, [this](std::uint32_t) { accept(); }); });
}

// NOLINTNEXTLINE(bugprone-exception-escape): a loop that takes no more calls is past help
ControlServer::~ControlServer() {
    loop_.call([this] {
        watch_ = {};
        connections_.clear();
    });
    loop_.stop();
    removeSocket(path_);
}

void ControlServer::accept() {
    Orvane::FileDescriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket)
        return;
    const std::uint64_t id = ++lastConnection_;
    Connection& connection = connections_[id];
    connection.socket = std::move(socket);
    connection.watch = loop_.watch(connection.socket.get(), EPOLLIN,
                                   [this, id](std::uint32_t events) { serve(id, events); });
}

void ControlServer::receive(Connection& connection, bool& open) {
    std::vector<char>& room = loop_.scratch();
    const ssize_t count = ::recv(connection.socket.get(), room.data(), room.size(), 0);
    if (count <= 0) {
        open = count < 0 && (errno == EAGAIN || errno == EINTR);
        return;
    }
    connection.received.append(room.data(), static_cast<std::size_t>(count));
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = connection.received.find('\n', begin)) != std::string::npos;
         begin = end + 1)
        connection.unsent += control_.answer(connection.received.substr(begin, end - begin)) + "\n";
    connection.received.erase(0, begin);
    open = connection.received.size() <= kLongestLine;
}

void ControlServer::serve(std::uint64_t id, std::uint32_t events) {
    Connection& connection = connections_.at(id);
    bool open = true;
    if ((events & ~static_cast<std::uint32_t>(EPOLLOUT)) != 0)
        receive(connection, open);
    while (open && !connection.unsent.empty()) {
        const ssize_t count =
            ::send(connection.socket.get(), connection.unsent.data(), connection.unsent.size(), MSG_NOSIGNAL);
        if (count < 0) {
            open = errno == EAGAIN || errno == EINTR;
            break;
        }
        connection.unsent.erase(0, static_cast<std::size_t>(count));
    }
    if (open)
        connection.watch.setEvents(connection.unsent.empty() ? EPOLLIN : EPOLLOUT);
    else
        connections_.erase(id);
}

} // namespace OrvaneSim
