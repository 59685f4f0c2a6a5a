#include "ov_sys/Interface/connection/ProgramLookup.h"

#include "ov_sys/Interface/connection/DatagramTransport.h"
#include "ov_sys/Interface/connection/StreamTransport.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"

#include <cerrno>
#include <cstdarg>
#include <poll.h>
#include <sys/socket.h>

#include <rpc/pmap_prot.h> // needs rpc.h before it

namespace Orvane {
namespace {

constexpr CallMessage::Target kGetPort{PMAPPROG, PMAPVERS, PMAPPROC_GETPORT};

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

bool_t xdrWanted(XDR* stream, ...) {
    va_list arguments;
    va_start(arguments, stream);
    auto* wanted = va_arg(arguments, struct pmap*);
    va_end(arguments);
    return xdr_pmap(stream, wanted);
}

// Different for each look-up of a thread, and hardly ever the same in two.
std::uint32_t newId() noexcept {
    return static_cast<std::uint32_t>(Deadline::Clock::now().time_since_epoch().count());
}

sockaddr_in mapperOf(sockaddr_in board) noexcept {
    board.sin_port = htons(PMAPPORT);
    return board;
}

bool take(u_int port, sockaddr_in& board) noexcept {
    board.sin_port = htons(static_cast<std::uint16_t>(port));
    return board.sin_port != 0 || fail(RPC_PROGNOTREGISTERED);
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

} // namespace

FileDescriptor openStream(const sockaddr_in& board, const Deadline& deadline) noexcept {
    FileDescriptor stream(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const int number = stream ? connectWithin(stream.get(), board, deadline) : errno;
    if (number != 0) {
        fail(RPC_SYSTEMERROR, number);
        stream.reset();
    }
    return stream;
}

bool findByDatagram(unsigned long program, unsigned long version, sockaddr_in& board) {
    constexpr int kSends = 4;
    constexpr std::chrono::milliseconds kEach{500};
    const sockaddr_in mapper = mapperOf(board);
    const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!socket || connect(socket.get(), reinterpret_cast<const sockaddr*>(&mapper), sizeof mapper) != 0)
        return fail(RPC_SYSTEMERROR, errno);
    pmap wanted{program, version, IPPROTO_UDP, 0};
    u_int port = 0;
    const CallMessage message(newId(), kGetPort, xdrWanted, &wanted, xdrProcedure<u_int>, &port);
    DatagramTransport transport(socket.get());
    rpc_err error{};
    for (int sent = 1; sent <= kSends; ++sent)
        if (transport.call(message, Deadline::after(kEach), error) != RPC_TIMEDOUT)
            break;
    return error.re_status == RPC_SUCCESS ? take(port, board) : fail(error);
}

bool findByStream(unsigned long program, unsigned long version, const Deadline& deadline,
                  sockaddr_in& board) {
    const FileDescriptor mapper = openStream(mapperOf(board), deadline);
    if (!mapper)
        return false;
    pmap wanted{program, version, IPPROTO_TCP, 0};
    u_int port = 0;
    const CallMessage message(newId(), kGetPort, xdrWanted, &wanted, xdrProcedure<u_int>, &port);
    rpc_err error{};
    const clnt_stat status = StreamTransport(mapper.get()).call(message, deadline, error);
    return status == RPC_SUCCESS ? take(port, board) : fail(error);
}

} // namespace Orvane
