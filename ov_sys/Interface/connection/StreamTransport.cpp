// Calls by TCP: a record is sent whole, and received mark by mark until the deadline.
#include "ov_sys/Interface/connection/StreamTransport.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <poll.h>
#include <sys/socket.h>

namespace Orvane {
namespace {

constexpr std::uint32_t kLastFragment = 0x80000000U;

clnt_stat fail(rpc_err& error, clnt_stat status, int number) noexcept {
    error.re_errno = number;
    return error.re_status = status;
}

bool tryAgain(int number) noexcept {
    return number == EAGAIN || number == EINTR;
}

// Memory for `more` bytes behind those that are there, at least doubled each time.
bool makeRoom(std::vector<char>& bytes, std::size_t more) noexcept {
    const std::size_t needed = bytes.size() + more;
    try {
        if (needed > bytes.capacity())
            bytes.reserve(std::max(needed, 2 * bytes.capacity()));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

bool StreamTransport::isUsable() const noexcept {
    pollfd entry{socket_, POLLRDHUP, 0};
    return !broken_ && poll(&entry, 1, 0) == 0;
}

clnt_stat StreamTransport::call(const CallMessage& message, const Deadline& deadline,
                                rpc_err& error) noexcept {
    if (broken_)
        return fail(error, RPC_CANTSEND, EPIPE);
    if (sendRequest(message, deadline, error) != RPC_SUCCESS)
        return error.re_status;
    return awaitReply(message, deadline, error);
}

clnt_stat StreamTransport::sendRequest(const CallMessage& message, const Deadline& deadline,
                                       rpc_err& error) noexcept {
    std::uint32_t mark = 0;
    const std::size_t room = message.size();
    const std::unique_ptr<char[]> request(new (std::nothrow) char[sizeof mark + room]);
    if (!request)
        return fail(error, RPC_CANTENCODEARGS, ENOMEM);
    const std::size_t length = message.encodeTo(request.get() + sizeof mark, room);
    if (length == 0 || length >= kLastFragment)
        return error.re_status = RPC_CANTENCODEARGS;
    mark = htonl(kLastFragment | static_cast<std::uint32_t>(length));
    std::memcpy(request.get(), &mark, sizeof mark);
    const std::size_t total = sizeof mark + length;
    for (std::size_t done = 0; done < total;) {
        const ssize_t part = send(socket_, request.get() + done, total - done, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (part >= 0)
            done += static_cast<std::size_t>(part);
        else if (!tryAgain(errno))
            return giveUp(error, RPC_CANTSEND, errno);
        else if (deadline.passed() || !deadline.waitFor(socket_, POLLOUT)) // a peer that does not read
            return done == 0 ? fail(error, RPC_CANTSEND, ETIMEDOUT) : giveUp(error, RPC_CANTSEND, ETIMEDOUT);
    }
    return error.re_status = RPC_SUCCESS;
}

clnt_stat StreamTransport::awaitReply(const CallMessage& message, const Deadline& deadline,
                                      rpc_err& error) noexcept {
    for (;;) {
        if (receiveRecord(deadline, error) != RPC_SUCCESS)
            return error.re_status;
        const bool own = message.isAnsweredBy(record_.data(), record_.size());
        if (own)
            message.decodeFrom(record_.data(), record_.size(), error);
        forgetRecord();
        if (own)
            return error.re_status;
    }
}

// Goes on with the record until its last fragment has come.
clnt_stat StreamTransport::receiveRecord(const Deadline& deadline, rpc_err& error) noexcept {
    for (;;) {
        if (markBytes_ < sizeof mark_ && receiveMark(deadline, error) != RPC_SUCCESS)
            return error.re_status;
        while (fragmentBytes_ > 0) {
            char chunk[16384];
            std::size_t length = std::min(fragmentBytes_, sizeof chunk);
            if (length > kLargest - record_.size())
                return giveUp(error, RPC_CANTDECODERES, EMSGSIZE);
            if (!makeRoom(record_, length)) // nothing is lost: the next call goes on with the record
                return fail(error, RPC_CANTDECODERES, ENOMEM);
            if (receiveSome(chunk, length, deadline, error) != RPC_SUCCESS)
                return error.re_status;
            record_.insert(record_.end(), chunk, chunk + length);
            fragmentBytes_ -= length;
        }
        markBytes_ = 0;
        if ((ntohl(mark_) & kLastFragment) != 0)
            return error.re_status = RPC_SUCCESS;
    }
}

clnt_stat StreamTransport::receiveMark(const Deadline& deadline, rpc_err& error) noexcept {
    while (markBytes_ < sizeof mark_) {
        std::size_t length = sizeof mark_ - markBytes_;
        if (receiveSome(reinterpret_cast<char*>(&mark_) + markBytes_, length, deadline, error) != RPC_SUCCESS)
            return error.re_status;
        markBytes_ += length;
    }
    fragmentBytes_ = ntohl(mark_) & ~kLastFragment;
    return error.re_status;
}

// Reads up to `length` bytes, of which there is at least one, and stores how many came.
clnt_stat StreamTransport::receiveSome(char* buffer, std::size_t& length, const Deadline& deadline,
                                       rpc_err& error) noexcept {
    for (;;) {
        if (deadline.passed() || !deadline.waitFor(socket_, POLLIN))
            return fail(error, RPC_TIMEDOUT, ETIMEDOUT);
        const ssize_t part = recv(socket_, buffer, length, MSG_DONTWAIT);
        if (part > 0) {
            length = static_cast<std::size_t>(part);
            return error.re_status = RPC_SUCCESS;
        }
        if (part == 0)
            return giveUp(error, RPC_CANTRECV, ECONNRESET);
        if (!tryAgain(errno))
            return giveUp(error, RPC_CANTRECV, errno);
    }
}

clnt_stat StreamTransport::giveUp(rpc_err& error, clnt_stat status, int number) noexcept {
    broken_ = true;
    forgetRecord();
    return fail(error, status, number);
}

// Gives large memory back; what small replies need stays.
void StreamTransport::forgetRecord() noexcept {
    constexpr std::size_t kKept = 65536;
    record_.clear();
    if (record_.capacity() > kKept)
        std::vector<char>().swap(record_);
    markBytes_ = 0;
    fragmentBytes_ = 0;
}

} // namespace Orvane
