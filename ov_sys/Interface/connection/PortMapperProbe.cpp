#include "ov_sys/Interface/connection/PortMapperProbe.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <poll.h>
#include <rpc/rpc.h>
#include <sys/socket.h>
#include <unistd.h>

#include <rpc/pmap_prot.h> // needs rpc.h before it

namespace Orvane {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kLimit{2000};
constexpr int kProbeSends = 4; // one each half second: a single lost datagram is not a dead board

class Socket {
public:
    explicit Socket(int type) noexcept : fd_(socket(AF_INET, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {}
    ~Socket() {
        if (fd_ >= 0)
            close(fd_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int fd() const noexcept { return fd_; }

private:
    int fd_;
};

bool fail(clnt_stat reason, int error) noexcept {
    rpc_createerr.cf_stat = RPC_PMAPFAILURE;
    rpc_createerr.cf_error.re_status = reason;
    rpc_createerr.cf_error.re_errno = error;
    return false;
}

bool waitFor(int fd, short events, Clock::time_point deadline) noexcept {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd entry{fd, events, 0};
        const int ready = poll(&entry, 1, left > 0 ? static_cast<int>(left) : 0);
        if (ready > 0)
            return true;
        if (ready == 0 || errno != EINTR)
            return false;
    }
}

int pendingError(int fd) noexcept {
    int error = 0;
    socklen_t length = sizeof error;
    getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length);
    return error;
}

bool probeStream(int fd, const sockaddr_in& address) noexcept {
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return true;
    if (errno != EINPROGRESS)
        return fail(RPC_CANTSEND, errno);
    if (!waitFor(fd, POLLOUT, Clock::now() + kLimit))
        return fail(RPC_TIMEDOUT, ETIMEDOUT);
    const int error = pendingError(fd);
    return error == 0 || fail(RPC_CANTSEND, error);
}

// A call of the port mapper's null procedure: id, CALL, RPC version 2, program, version, procedure, no
// credentials, no verifier.
std::array<std::uint32_t, 10> nullCall(std::uint32_t id) noexcept {
    return {htonl(id),
            htonl(CALL),
            htonl(RPC_MSG_VERSION),
            htonl(static_cast<std::uint32_t>(PMAPPROG)),
            htonl(static_cast<std::uint32_t>(PMAPVERS)),
            htonl(NULLPROC),
            0,
            0,
            0,
            0};
}

bool probeDatagram(int fd, const sockaddr_in& address) noexcept {
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return fail(RPC_CANTSEND, errno);
    const auto call = nullCall(static_cast<std::uint32_t>(Clock::now().time_since_epoch().count()));
    const auto start = Clock::now();
    for (int sent = 1; sent <= kProbeSends; ++sent) {
        if (send(fd, call.data(), sizeof call, MSG_NOSIGNAL) < 0)
            return fail(RPC_CANTSEND, errno);
        const auto deadline = start + kLimit * sent / kProbeSends;
        while (waitFor(fd, POLLIN, deadline)) {
            std::uint32_t id = 0;
            if (recv(fd, &id, sizeof id, 0) < 0)
                return fail(RPC_CANTRECV, errno);
            if (id == call[0])
                return true;
        }
    }
    return fail(RPC_TIMEDOUT, ETIMEDOUT);
}

} // namespace

bool probePortMapper(const std::string& host, const std::string& protocol) noexcept {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(PMAPPORT);
    if (inet_aton(host.c_str(), &address.sin_addr) == 0)
        return true; // a name, which the RPC library resolves
    const bool datagram = protocol == "udp";
    const Socket probe(datagram ? SOCK_DGRAM : SOCK_STREAM);
    if (probe.fd() < 0)
        return fail(RPC_CANTSEND, errno);
    return datagram ? probeDatagram(probe.fd(), address) : probeStream(probe.fd(), address);
}

} // namespace Orvane
