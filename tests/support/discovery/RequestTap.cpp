// A socket on the link itself, which takes whatever passes.
#include "tests/support/discovery/RequestTap.h"

#include <arpa/inet.h>
#include <cstring>
#include <gtest/gtest.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <netinet/ip.h>
#include <netinet/udp.h>
#include <poll.h>
#include <sys/socket.h>

namespace OrvaneTest {

namespace {

constexpr int kGenerousMs = 10'000;

std::string dotted(in_addr_t address) {
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

} // namespace

RequestTap::RequestTap(const std::string& interface, int port)
    : socket_(socket(AF_PACKET, SOCK_DGRAM, 0)), port_(port) {
    sockaddr_ll at{};
    at.sll_family = AF_PACKET;
    at.sll_protocol = htons(ETHERTYPE_IP);
    at.sll_ifindex = static_cast<int>(if_nametoindex(interface.c_str()));
    EXPECT_EQ(bind(socket_.get(), reinterpret_cast<const sockaddr*>(&at), sizeof at), 0);
}

Datagram RequestTap::next() {
    Datagram datagram{};
    EXPECT_TRUE(readDatagram(kGenerousMs, datagram)) << "no datagram arrived";
    return datagram;
}

bool RequestTap::more(int timeoutMs) {
    Datagram datagram{};
    return readDatagram(timeoutMs, datagram);
}

bool RequestTap::readDatagram(int timeoutMs, Datagram& datagram) {
    pollfd watched = {socket_.get(), POLLIN, 0};
    while (poll(&watched, 1, timeoutMs) == 1) {
        char packet[2048];
        const ssize_t size = recv(socket_.get(), packet, sizeof packet, 0);
        iphdr ip{};
        udphdr udp{};
        if (size < static_cast<ssize_t>(sizeof ip + sizeof udp))
            continue;
        std::memcpy(&ip, packet, sizeof ip);
        if (ip.protocol != IPPROTO_UDP)
            continue;
        const std::size_t header = ip.ihl * std::size_t{4};
        std::memcpy(&udp, packet + header, sizeof udp);
        if (ntohs(udp.uh_dport) != port_)
            continue;
        datagram = {dotted(ip.saddr), dotted(ip.daddr), ntohs(udp.uh_dport), ip.ttl,
                    std::string(packet + header + sizeof udp, ntohs(udp.uh_ulen) - sizeof udp)};
        return true;
    }
    return false;
}

} // namespace OrvaneTest
