// Plain sockets of the host side, for what no client library would send.
#pragma once

#include "simulator/engine/Sockets.h"

#include <arpa/inet.h>
#include <array>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <vector>

namespace OrvaneSim {

// A socket with bounded waits.
class RawSocket {
public:
    // A datagram socket bound to `port` on every address (0 for any), or a connected stream.
    static RawSocket datagram(std::uint16_t port) {
        RawSocket socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        setOption(socket.descriptor_, SOL_SOCKET, SO_REUSEADDR, 1);
        const sockaddr_in point = endPoint("0.0.0.0", port);
        EXPECT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&point), sizeof point), 0);
        return socket;
    }
    static RawSocket stream(const std::string& address, std::uint16_t port) {
        RawSocket socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const sockaddr_in point = endPoint(address, port);
        EXPECT_EQ(::connect(socket.get(), reinterpret_cast<const sockaddr*>(&point), sizeof point), 0);
        return socket;
    }

    int get() const { return descriptor_.get(); }

    void send(const std::string& bytes) {
        EXPECT_EQ(::send(get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(bytes.size()));
    }
    void sendTo(const std::string& bytes, const std::string& address, std::uint16_t port) {
        const sockaddr_in point = endPoint(address, port);
        EXPECT_EQ(::sendto(get(), bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&point),
                           sizeof point),
                  static_cast<ssize_t>(bytes.size()));
    }

    // What arrives next, empty at the end of a stream. Fails the test after ten seconds.
    std::string receive(std::string* sender = nullptr) {
        std::array<char, 70000> room;
        EXPECT_TRUE(readable(10000)) << "nothing came";
        sockaddr_in from{};
        socklen_t size = sizeof from;
        const ssize_t count = ::recvfrom(get(), room.data(), room.size(), MSG_DONTWAIT,
                                         reinterpret_cast<sockaddr*>(&from), &size);
        if (sender)
            *sender = addressText(from);
        return count > 0 ? std::string(room.data(), static_cast<std::size_t>(count)) : std::string();
    }

    // Everything up to the end of a stream.
    std::string receiveAll() {
        std::string all;
        for (std::string piece = receive(); !piece.empty(); piece = receive())
            all += piece;
        return all;
    }

    bool readable(int milliseconds) {
        pollfd wanted{get(), POLLIN, 0};
        return ::poll(&wanted, 1, milliseconds) == 1;
    }

private:
    explicit RawSocket(int descriptor) : descriptor_(descriptor) {}
    Orvane::FileDescriptor descriptor_;
};

// Big-endian words, as XDR has them.
inline std::string words(const std::vector<std::uint32_t>& values) {
    std::string bytes;
    for (const std::uint32_t value : values) {
        const std::uint32_t raw = htonl(value);
        bytes.append(reinterpret_cast<const char*>(&raw), sizeof raw);
    }
    return bytes;
}

inline std::vector<std::uint32_t> wordsOf(const std::string& bytes) {
    std::vector<std::uint32_t> values;
    for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) {
        std::uint32_t raw = 0;
        bytes.copy(reinterpret_cast<char*>(&raw), sizeof raw, i);
        values.push_back(ntohl(raw));
    }
    return values;
}

} // namespace OrvaneSim
