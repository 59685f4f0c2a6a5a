// Messages written as a network capture, for programs that dissect captures.
#pragma once

#include <arpa/inet.h>
#include <cstdint>
#include <fstream>
#include <map>
#include <string>
#include <utility>

namespace OrvaneSim {

// One end of what is captured.
struct CapturedEnd {
    std::string address;
    std::uint16_t port;
};

// A capture of bare IPv4 packets, made up around messages that really went over a socket.
class PcapFile {
public:
    explicit PcapFile(const std::string& path) : file_(path, std::ios::binary) {
        constexpr std::uint32_t kRawIp = 101;
        put<std::uint32_t>(file_, 0xA1B2C3D4);
        put<std::uint16_t>(file_, 2);
        put<std::uint16_t>(file_, 4);
        for (const std::uint32_t word : {0U, 0U, 65535U, kRawIp})
            put<std::uint32_t>(file_, word);
    }

    void datagram(const CapturedEnd& from, const CapturedEnd& to, const std::string& message) {
        const auto size = static_cast<std::uint16_t>(8 + message.size());
        packet(from, to, 17, big16(from.port) + big16(to.port) + big16(size) + big16(0) + message);
    }

    // A piece of a stream, in order.
    void segment(const CapturedEnd& from, const CapturedEnd& to, const std::string& bytes) {
        std::uint32_t& sent = sent_[{from.port, to.port}];
        const std::uint32_t acknowledged = 1 + sent_[{to.port, from.port}];
        constexpr std::uint16_t kHeaderAndFlags = 0x5018; // five words, PSH and ACK
        const std::string header = big16(from.port) + big16(to.port) + big32(1 + sent) + big32(acknowledged) +
                                   big16(kHeaderAndFlags) + big16(65535) + big16(0) + big16(0);
        sent += static_cast<std::uint32_t>(bytes.size());
        packet(from, to, 6, header + bytes);
    }

    void close() { file_.close(); }

private:
    template <class Number>
    static void put(std::ostream& stream, Number number) {
        stream.write(reinterpret_cast<const char*>(&number), sizeof number);
    }
    static std::string big16(std::uint16_t number) {
        return {static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
    }
    static std::string big32(std::uint32_t number) {
        return big16(static_cast<std::uint16_t>(number >> 16)) +
               big16(static_cast<std::uint16_t>(number & 0xFFFF));
    }
    static std::string raw(const std::string& address) {
        in_addr number{};
        ::inet_pton(AF_INET, address.c_str(), &number);
        return {reinterpret_cast<const char*>(&number), sizeof number};
    }

    void packet(const CapturedEnd& from, const CapturedEnd& to, char protocol, const std::string& body) {
        const auto size = static_cast<std::uint16_t>(20 + body.size());
        const std::string bytes = big16(0x4500) + big16(size) + big32(0) + std::string{64, protocol} +
                                  big16(0) + raw(from.address) + raw(to.address) + body;
        const auto length = static_cast<std::uint32_t>(bytes.size());
        for (const std::uint32_t word : {++time_, 0U, length, length})
            put<std::uint32_t>(file_, word);
        file_ << bytes;
    }

    std::ofstream file_;
    std::uint32_t time_ = 0;
    std::map<std::pair<std::uint16_t, std::uint16_t>, std::uint32_t> sent_;
};

} // namespace OrvaneSim
