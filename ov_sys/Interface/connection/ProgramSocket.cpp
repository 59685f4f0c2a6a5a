// The look-up at the port mapper and the connection, each until its deadline.
#include "ov_sys/Interface/connection/ProgramSocket.h"

#include "ov_sys/Interface/connection/DatagramTransport.h"
#include "ov_sys/Interface/connection/PortMapperCall.h"
#include "ov_sys/Interface/connection/PortsAhead.h"
#include "ov_sys/Interface/connection/StreamTransport.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

namespace Orvane {
namespace {

bool fail(const rpc_err& error) noexcept {
    rpc_createerr.cf_stat = error.re_status;
    rpc_createerr.cf_error = error;
    return false;
}

bool fail(clnt_stat status, int number = 0) noexcept {
    rpc_err error{};
    error.re_status = status;
    error.re_errno = number;
    return fail(error);
}

bool chooseKind(const std::string& protocol, ProgramPlace& place) noexcept {
    place.overStream = protocol == "tcp";
    return place.overStream || protocol == "udp" || fail(RPC_UNKNOWNPROTO);
}

bool resolve(const std::string& host, sockaddr_in& board) noexcept {
    board = {};
    board.sin_family = AF_INET;
    if (inet_aton(host.c_str(), &board.sin_addr) != 0)
        return true;
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM; // one entry for each address
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0)
        return fail(RPC_UNKNOWNHOST);
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> list(found, &freeaddrinfo);
    board.sin_addr = reinterpret_cast<const sockaddr_in*>(list->ai_addr)->sin_addr;
    return true;
}

// 0, or the errno of what went wrong.
int connectWithin(int fd, const sockaddr_in& address, const Deadline& deadline) noexcept {
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return 0;
    if (errno != EINPROGRESS)
        return errno;
    if (!deadline.waitFor(fd, POLLOUT))
        return ETIMEDOUT;
    int error = 0;
    socklen_t length = sizeof error;
    getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length);
    return error;
}

clnt_stat askByStream(int socket, const PortMapperCall& call, const Deadline& deadline,
                      rpc_err& error) noexcept {
    return StreamTransport(socket).call(call.message(), deadline, error);
}

clnt_stat askByDatagram(int socket, const PortMapperCall& call, const Deadline& deadline,
                        rpc_err& error) noexcept {
    constexpr std::chrono::milliseconds kEach{500};
    DatagramTransport transport(socket);
    do
        transport.call(call.message(), Deadline(std::min(deadline.end(), Deadline::Clock::now() + kEach)),
                       error);
    while (error.re_status == RPC_TIMEDOUT && !deadline.passed());
    return error.re_status;
}

// Stores the port that the port mapper names as the port of the place.
bool findPort(unsigned long program, unsigned long version, const Deadline& deadline,
              ProgramPlace& place) noexcept {
    const int protocol = place.overStream ? IPPROTO_TCP : IPPROTO_UDP;
    const std::uint16_t known = PortsAhead::portOf(place.address.sin_addr, program, version, protocol);
    if (known != 0) {
        place.address.sin_port = htons(known);
        return true;
    }
    ProgramPlace mapper = place;
    mapper.address.sin_port = htons(PortMapperCall::kPort);
    const FileDescriptor socket = openSocket(mapper, deadline);
    if (!socket)
        return fail(RPC_SYSTEMERROR, errno);
    const PortMapperCall call(PortMapperCall::newId(), program, version, protocol);
    rpc_err error{};
    const auto ask = place.overStream ? askByStream : askByDatagram;
    if (ask(socket.get(), call, deadline, error) != RPC_SUCCESS)
        return fail(error);
    place.address.sin_port = htons(call.port());
    return call.port() != 0 || fail(RPC_PROGNOTREGISTERED);
}

} // namespace

ProgramSocket openProgram(const std::string& host, unsigned long program, unsigned long version,
                          const std::string& protocol) noexcept {
    constexpr std::chrono::seconds kPatience{2};
    ProgramSocket opened{};
    if (!chooseKind(protocol, opened.place) || !resolve(host, opened.place.address))
        return opened;
    const Deadline deadline = Deadline::after(kPatience);
    if (!findPort(program, version, deadline, opened.place))
        return opened;
    opened.socket = openSocket(opened.place, deadline);
    if (!opened.socket)
        fail(RPC_SYSTEMERROR, errno);
    return opened;
}

FileDescriptor openSocket(const ProgramPlace& place, const Deadline& deadline) noexcept {
    const int kind = place.overStream ? SOCK_STREAM : SOCK_DGRAM;
    FileDescriptor socket(::socket(AF_INET, kind | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket)
        return socket;
    const int number = connectWithin(socket.get(), place.address, deadline);
    if (number != 0)
        socket.reset();
    errno = number;
    return socket;
}

} // namespace Orvane
