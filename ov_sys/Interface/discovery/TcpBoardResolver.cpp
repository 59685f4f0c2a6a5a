// One probe: connect, ask, read until the board closes or its time is over.
#include "ov_sys/Interface/discovery/TcpBoardResolver.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"
#include "ov_sys/Interface/foundation/Deadline.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Sockets.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <utility>

namespace Orvane {

namespace {

constexpr int kConnectPauseMs = 10;
constexpr std::chrono::milliseconds kReadTime{80};

// Long enough for the system to find out by itself that an address on the local network is not taken.
constexpr std::chrono::seconds kSilenceLimit{5};

// Makes one transfer that does not block (so that no signal interrupts it) as soon as `socket` is ready for
// `event`, however many signals are handled until then. False, with a line that tells the cause, when it
// failed or the silence limit passed.
template <class Transfer>
bool transfer(const char* name, int socket, short event, ssize_t& count, Transfer once) {
    const Deadline deadline = Deadline::after(kSilenceLimit);
    do {
        const bool ready = deadline.waitFor(socket, event);
        count = ready ? once() : -1;
        if (!ready)
            errno = ETIMEDOUT;
    } while (count < 0 && errno == EAGAIN && !deadline.passed());
    if (count < 0)
        Diagnostics::error(name, " failed with error: ", get_last_error());
    return count >= 0;
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
    const int flags = fcntl(socket, F_GETFL); // without a socket all ones, and then the next call fails, too
    return fcntl(socket, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK) == 0;
}

bool TcpBoardResolver::waitSocketConnect(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return true;
}

void TcpBoardResolver::Search() {
    socket = create_tcp_socket();
    if (socket < 0)
        return;
    enableBlocking(false);
    connect_socket(socket, address.c_str(), port);
    enableBlocking(true);
    if (!waitSocketConnect(kConnectPauseMs))
        return;

    ssize_t count = 0;
    const auto sendRequest = [this] {
        return ::send(socket, request.data(), request.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    };
    if (!transfer("send", socket, POLLOUT, count, sendRequest))
        return;

    char text[DiscoveryProtocol::kReplyLimit + 1] = {};
    const auto receiveSome = [&] { return recv(socket, text, DiscoveryProtocol::kReplyLimit, MSG_DONTWAIT); };
    const Deadline end = Deadline::after(kReadTime);
    do
        transfer("recv", socket, POLLIN, count, receiveSome);
    while (count > 0 && !end.passed());

    reply = text;
    close_socket(socket);
    socket = -1;
}

void TcpBoardResolver::resolveBoardPorts() {
    Search();
}

} // namespace Orvane
