#include "ov_sys/Interface/discovery/TcpBoardResolver.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Sockets.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <utility>

namespace Orvane {

namespace {

constexpr int kConnectPauseMs = 10;
constexpr std::chrono::milliseconds kReadTime{80};

// Long enough for the system to find out by itself that an address on the local network is not taken.
constexpr timeval kSilenceLimit = {5, 0};

void limitSilence(int socket) {
    setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &kSilenceLimit, sizeof kSilenceLimit);
    setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &kSilenceLimit, sizeof kSilenceLimit);
}

// Repeats a transfer that a signal handler cut short. False, with a line that tells the cause, when it
// failed.
template <class Transfer>
bool transfer(const char* name, ssize_t& count, Transfer once) {
    do
        count = once();
    while (count < 0 && errno == EINTR);
    if (count >= 0)
        return true;
    // The silence limit ran out.
    if (errno == EAGAIN)
        errno = ETIMEDOUT;
    Diagnostics::error(name, " failed with error: ", get_last_error());
    return false;
}

} // namespace

TcpBoardResolver::TcpBoardResolver(std::string address_, int port_, std::string boardType_)
    : boardType(std::move(boardType_)),
      address(std::move(address_)),
      port(port_),
      request(DiscoveryProtocol::request(boardType)) {}

TcpBoardResolver::~TcpBoardResolver() {
    close_socket(socket);
}

bool TcpBoardResolver::enableBlocking(bool blocking) {
    const int flags = fcntl(socket, F_GETFL);
    if (flags < 0)
        return false;
    return fcntl(socket, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK) == 0;
}

bool TcpBoardResolver::waitSocketConnect(int milliseconds) {
    poll(nullptr, 0, std::max(milliseconds, 0));
    return true;
}

void TcpBoardResolver::Search() {
    socket = create_tcp_socket();
    if (socket < 0)
        return;
    limitSilence(socket);
    enableBlocking(false);
    connect_socket(socket, address.c_str(), port);
    enableBlocking(true);
    if (!waitSocketConnect(kConnectPauseMs))
        return;

    ssize_t count = 0;
    if (!transfer("send", count,
                  [this] { return ::send(socket, request.data(), request.size(), MSG_NOSIGNAL); }))
        return;

    char text[DiscoveryProtocol::kReplyLimit + 1] = {};
    const auto start = std::chrono::system_clock::now();
    do
        transfer("recv", count, [&] { return recv(socket, text, DiscoveryProtocol::kReplyLimit, 0); });
    while (count > 0 && std::chrono::system_clock::now() - start < kReadTime);

    reply = text;
    close_socket(socket);
    socket = -1;
}

void TcpBoardResolver::resolveBoardPorts() {
    Search();
}

} // namespace Orvane
