#include "ov_sys/Interface/connection/DatagramTransport.h"

#include <algorithm>
#include <cerrno>
#include <netinet/in.h>
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

DatagramTransport::DatagramTransport(int socket) noexcept : socket_(socket) {
    // A queue of undeliverable requests would keep the socket "ready" for ever; a refusal is reported anyway.
    const int off = 0;
    setsockopt(socket_, IPPROTO_IP, IP_RECVERR, &off, sizeof off);
}

clnt_stat DatagramTransport::call(const CallMessage& message, const Deadline& deadline, rpc_err& error) {
    alignas(std::uint32_t) char request[kLargest];
    const std::size_t length = message.encodeTo(request, sizeof request);
    if (length == 0)
        return error.re_status = RPC_CANTENCODEARGS;
    drain();
    for (auto wait = kFirstRepeat;; wait *= 2) {
        if (!send(request, length, deadline))
            return fail(error, RPC_CANTSEND);
        const auto repeat = Deadline::Clock::now() + wait;
        if (deadline.end() <= repeat)
            return await(message, deadline, error);
        if (await(message, Deadline(repeat), error) != RPC_TIMEDOUT)
            return error.re_status;
    }
}

// Throws away late replies, and refusals, of earlier calls: a full queue would leave no room for the answer.
void DatagramTransport::drain() const noexcept {
    constexpr int kMost = 4096; // a flood must not keep the caller here
    char waste = 0;
    for (int i = 0; i < kMost; ++i)
        if (recv(socket_, &waste, sizeof waste, MSG_DONTWAIT) < 0 && (errno == EAGAIN || errno == EBADF))
            return;
}

bool DatagramTransport::send(const char* request, std::size_t length,
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
ssize_t DatagramTransport::receive(char* buffer, const Deadline& deadline) const noexcept {
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

clnt_stat DatagramTransport::await(const CallMessage& message, const Deadline& deadline,
                                   rpc_err& error) const {
    alignas(std::uint32_t) char reply[kLargest];
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

} // namespace Orvane
