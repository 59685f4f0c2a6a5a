// Datagrams that leave or arrive together: those of one length and one peer go through the system in one go.
#pragma once

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <netinet/in.h>
#include <netinet/udp.h>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace Orvane {

// Sends in the order of add(). A datagram that the system does not take is one that got lost. What waits when
// it ends does not leave. One thread.
class DatagramTrain {
public:
    // Takes the room that it will need; throws std::bad_alloc.
    DatagramTrain() { bytes_.reserve(kRoom); }

    // Keeps a copy that leaves with others, by leave() at the latest; until then the socket must stay open.
    void add(int socket, const sockaddr_in& to, const char* bytes, std::size_t length) noexcept {
        if (!fits(socket, to, length))
            leave();
        if (length > kRoom)
            return sendAlone(socket, to, bytes, length);
        if (count_++ == 0) {
            socket_ = socket;
            to_ = to;
            each_ = length;
        }
        bytes_.insert(bytes_.end(), bytes, bytes + length);
    }

    // Sends what waits. Never blocks.
    void leave() noexcept {
        if (count_ > 1 && !sendTogether())
            for (std::size_t at = 0; at < bytes_.size(); at += each_)
                sendAlone(socket_, to_, bytes_.data() + at, std::min(each_, bytes_.size() - at));
        else if (count_ == 1)
            sendAlone(socket_, to_, bytes_.data(), bytes_.size());
        bytes_.clear();
        count_ = 0;
    }

private:
    // What one call of the system takes; in bytes and in datagrams.
    static constexpr std::size_t kRoom = 60000;
    static constexpr std::size_t kMost = 64;

    // All but the last are of one length.
    bool fits(int socket, const sockaddr_in& to, std::size_t length) const noexcept {
        return count_ > 0 && count_ < kMost && socket == socket_ && length > 0 && length <= each_ &&
               bytes_.size() == count_ * each_ && bytes_.size() + length <= kRoom &&
               to.sin_port == to_.sin_port && to.sin_addr.s_addr == to_.sin_addr.s_addr;
    }

    template <class Send>
    static bool taken(const Send& send) noexcept {
        ssize_t sent = 0;
        do
            sent = send();
        while (sent < 0 && errno == EINTR);
        return sent >= 0;
    }

    static void sendAlone(int socket, const sockaddr_in& to, const char* bytes, std::size_t length) noexcept {
        taken([&] {
            return sendto(socket, bytes, length, MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&to),
                          sizeof to);
        });
    }

    // An older system would take the train for one long datagram.
    static bool isKnown(int socket) noexcept {
        int length = 0;
        socklen_t size = sizeof length;
        return getsockopt(socket, IPPROTO_UDP, UDP_SEGMENT, &length, &size) == 0;
    }

    // False when the system cuts none of this length: it would not fit a packet of the network.
    bool sendTogether() noexcept {
        static const bool known = isKnown(socket_);
        if (!known)
            return false;
        const auto each = static_cast<std::uint16_t>(each_);
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof each)] = {};
        iovec all{bytes_.data(), bytes_.size()};
        msghdr message{};
        message.msg_name = &to_;
        message.msg_namelen = sizeof to_;
        message.msg_iov = &all;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        cmsghdr* const length = CMSG_FIRSTHDR(&message);
        length->cmsg_level = IPPROTO_UDP;
        length->cmsg_type = UDP_SEGMENT;
        length->cmsg_len = CMSG_LEN(sizeof each);
        std::memcpy(CMSG_DATA(length), &each, sizeof each);
        return taken([&] { return sendmsg(socket_, &message, MSG_NOSIGNAL); });
    }

    std::vector<char> bytes_;
    std::size_t count_ = 0;
    std::size_t each_ = 0;
    int socket_ = -1;
    sockaddr_in to_{};
};

// Datagrams that arrived together, one after the other. One thread.
class ArrivedTrain {
public:
    // Has the system hand over together what comes together on the socket: whoever receives there has to
    // expect it from now on. An older system does not.
    static void expect(int socket) noexcept {
        const int yes = 1;
        setsockopt(socket, IPPROTO_UDP, UDP_GRO, &yes, sizeof yes);
    }

    // May throw std::bad_alloc.
    ArrivedTrain() : room_(new char[kRoom]) {}

    // Takes what has arrived, in place of what was there; false, and nothing there, when nothing has. Blocks
    // if the socket does.
    bool take(int socket) noexcept {
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
        iovec all{room_.get(), kRoom};
        msghdr message{};
        message.msg_name = &from_;
        message.msg_namelen = sizeof from_;
        message.msg_iov = &all;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        ssize_t length = 0;
        do
            length = recvmsg(socket, &message, 0);
        while (length < 0 && errno == EINTR);
        left_ = length < 0 ? 0 : static_cast<std::size_t>(length);
        next_ = room_.get();
        each_ = left_;
        empty_ = length == 0;
        for (cmsghdr* one = CMSG_FIRSTHDR(&message); length > 0 && one != nullptr;
             one = CMSG_NXTHDR(&message, one))
            if (one->cmsg_level == IPPROTO_UDP && one->cmsg_type == UDP_GRO)
                each_ = lengthIn(*one);
        return length >= 0;
    }

    // The next one's bytes, which may be none, good until take() and the caller's to change; false when there
    // is none left.
    bool next(char*& bytes, std::size_t& length) noexcept {
        if (left_ == 0 && !std::exchange(empty_, false))
            return false;
        bytes = next_;
        length = std::min(each_, left_);
        next_ += length;
        left_ -= length;
        return true;
    }

    const sockaddr_in& from() const noexcept { return from_; }

private:
    static constexpr std::size_t kRoom = 65536; // more than the system joins

    std::size_t lengthIn(const cmsghdr& told) const noexcept {
        int length = 0;
        std::memcpy(&length, CMSG_DATA(&told), sizeof length);
        return length > 0 ? static_cast<std::size_t>(length) : left_;
    }

    std::unique_ptr<char[]> room_;
    char* next_ = nullptr;
    std::size_t left_ = 0; // bytes
    std::size_t each_ = 0;
    bool empty_ = false; // a datagram of no bytes
    sockaddr_in from_{};
};

} // namespace Orvane
