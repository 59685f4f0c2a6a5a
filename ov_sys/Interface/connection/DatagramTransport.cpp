// Calls by UDP: what came late is drained, what is not the answer is passed over.
#include "ov_sys/Interface/connection/DatagramTransport.h"

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>

namespace Orvane {
namespace {

clnt_stat fail(rpc_err& error, clnt_stat status) noexcept {
    error.re_errno = errno;
    return error.re_status = status;
}

bool tryAgain(int number) noexcept {
    return number == EAGAIN || number == EINTR;
}

} // namespace

// Throws away late replies, and refusals, of earlier calls: a full queue would leave no room for the answer.
inline void DatagramTransport::drain() const noexcept {
    constexpr int kMost = 4096; // a flood must not keep the caller here
    char waste = 0;
    for (int i = 0; i < kMost; ++i)
        if (recv(socket_, &waste, sizeof waste, MSG_DONTWAIT) < 0 && (errno == EAGAIN || errno == EBADF))
            return;
}

inline bool DatagramTransport::send(const char* request, std::size_t length,
                                    const Deadline& deadline) const noexcept {
    bool refusedBefore = false;
    for (;;) {
        if (::send(socket_, request, length, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0)
            return true;
        if (errno == ECONNREFUSED && !refusedBefore) { // of an earlier request; this one was not sent
            refusedBefore = true;
            continue;
        }
        if (!tryAgain(errno) || !deadline.waitFor(socket_, POLLOUT))
            return false;
    }
}

// The length of the next datagram, -1 with errno, or ETIMEDOUT.
inline ssize_t DatagramTransport::receive(char* buffer, const Deadline& deadline) const noexcept {
    for (;;) {
        if (!deadline.waitFor(socket_, POLLIN)) {
            errno = ETIMEDOUT;
            return -1;
        }
        const ssize_t length = recv(socket_, buffer, kLargest, MSG_DONTWAIT);
        if (length >= 0 || !tryAgain(errno))
            return length;
    }
}

inline clnt_stat DatagramTransport::await(const CallMessage& message, Datagram& reply,
                                          const Deadline& deadline, rpc_err& error) const noexcept {
    for (;;) {
        const ssize_t length = receive(reply, deadline);
        if (length < 0)
            return fail(error, errno == ETIMEDOUT ? RPC_TIMEDOUT : RPC_CANTRECV);
        if (message.isAnsweredBy(reply, static_cast<std::size_t>(length)))
            return message.decodeFrom(reply, static_cast<std::size_t>(length), error);
        if (deadline.passed()) { // foreign datagrams may keep coming
            errno = ETIMEDOUT;
            return fail(error, RPC_TIMEDOUT);
        }
    }
}

clnt_stat DatagramTransport::call(const CallMessage& message, const Deadline& deadline,
                                  rpc_err& error) noexcept {
    alignas(std::uint32_t)
        Datagram datagram; // of request and reply in turn: a session's thread keeps what its stack once was
    drain();
    for (auto wait = kFirstRepeat;; wait *= 2) {
        const std::size_t length = message.encodeTo(datagram, sizeof datagram);
        if (length == 0)
            return error.re_status = RPC_CANTENCODEARGS;
        if (!send(datagram, length, deadline))
            return fail(error, RPC_CANTSEND);
        const auto repeat = Deadline::Clock::now() + wait;
        if (deadline.end() <= repeat)
            return await(message, datagram, deadline, error);
        if (await(message, datagram, Deadline(repeat), error) != RPC_TIMEDOUT)
            return error.re_status;
    }
}

} // namespace Orvane
