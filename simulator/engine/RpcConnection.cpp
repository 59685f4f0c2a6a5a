// Record marking on one TCP connection.
#include "simulator/engine/RpcConnection.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kLastFragment = 0x80000000U;
constexpr std::size_t kMarkBytes = sizeof(std::uint32_t);
constexpr std::size_t kLargestRecord = std::size_t{4} << 20;

bool wouldBlock() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

std::uint32_t markAt(const std::string& bytes) {
    std::uint32_t mark = 0;
    std::memcpy(&mark, bytes.data(), sizeof mark);
    return ntohl(mark);
}

std::uint32_t markOf(std::string_view record) {
    return htonl(kLastFragment | static_cast<std::uint32_t>(record.size()));
}

} // namespace

RpcConnection::RpcConnection(EventLoop& loop, Orvane::FileDescriptor socket, EventLoop::Ready ready)
    : loop_(loop), socket_(std::move(socket)), watch_(loop.watch(socket_.get(), EPOLLIN, std::move(ready))) {}

void RpcConnection::transfer(std::uint32_t events) {
    if ((events & EPOLLOUT) != 0)
        flush();
    if (open_ && unsent_.empty() && (events & (EPOLLIN | EPOLLHUP | EPOLLERR)) != 0)
        receive();
    else if ((events & (EPOLLHUP | EPOLLERR)) != 0)
        open_ = false;
}

void RpcConnection::receive() {
    std::vector<char>& room = loop_.scratch();
    const ssize_t count = ::recv(socket_.get(), room.data(), room.size(), 0);
    if (count > 0 && mute_)
        return;
    if (count > 0)
        unread_.append(room.data(), static_cast<std::size_t>(count));
    else if (count == 0 || !wouldBlock())
        open_ = false;
}

std::optional<std::string_view> RpcConnection::nextRecord() {
    if (recordGiven_) {
        record_.clear();
        recordGiven_ = false;
    }
    while (open_ && !mute_ && unread_.size() >= kMarkBytes) {
        const std::uint32_t mark = markAt(unread_);
        const std::size_t length = mark & ~kLastFragment;
        if (record_.size() + length > kLargestRecord) {
            open_ = false;
            break;
        }
        if (unread_.size() - kMarkBytes < length)
            break;
        record_.append(unread_, kMarkBytes, length);
        unread_.erase(0, kMarkBytes + length);
        if ((mark & kLastFragment) != 0) {
            recordGiven_ = true;
            return record_;
        }
    }
    return std::nullopt;
}

void RpcConnection::queue(std::string_view bytes) {
    (trickling_.empty() ? unsent_ : trickling_).append(bytes);
}

void RpcConnection::send(std::string_view record, int copies) {
    if (mute_)
        return;
    const std::uint32_t mark = markOf(record);
    for (int i = 0; i < copies; ++i) {
        queue({reinterpret_cast<const char*>(&mark), sizeof mark});
        queue(record);
    }
    flush();
}

void RpcConnection::sendCut(std::string_view record, std::size_t bytes, bool halfOpen) {
    if (mute_)
        return;
    const std::uint32_t mark = markOf(record);
    unsent_.append(reinterpret_cast<const char*>(&mark), sizeof mark);
    unsent_.append(record.substr(0, bytes));
    flush(); // a few bytes, which a connection takes at once
    mute_ = true;
    trickling_.clear();
    if (!halfOpen)
        open_ = false;
}

void RpcConnection::trickle(std::string_view record, std::chrono::milliseconds gap) {
    if (mute_)
        return;
    const int yes = 1; // a byte must not wait for the next one
    ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    const std::uint32_t mark = markOf(record);
    const bool idle = trickling_.empty();
    trickling_.append(reinterpret_cast<const char*>(&mark), sizeof mark);
    trickling_.append(record);
    trickleGap_ = gap;
    if (idle)
        drip();
}

void RpcConnection::drip() {
    if (trickling_.empty())
        return;
    unsent_.push_back(trickling_.front());
    trickling_.erase(0, 1);
    flush();
    loop_.after(trickleGap_, life_, [this] { drip(); });
}

void RpcConnection::flush() {
    while (open_ && !unsent_.empty()) {
        const ssize_t count = ::send(socket_.get(), unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
        if (count >= 0)
            unsent_.erase(0, static_cast<std::size_t>(count));
        else if (wouldBlock())
            break;
        else
            open_ = false;
    }
    watch_.setEvents(unsent_.empty() ? EPOLLIN : EPOLLOUT);
}

} // namespace OrvaneSim
