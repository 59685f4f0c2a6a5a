// The cables of the private network carry packets from the moment it has been entered.
#include "simulator/network/PrivateNetwork.h"

#include "tests/support/simulator/RawSocket.h"

#include <gtest/gtest.h>
#include <optional>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace OrvaneSim {
namespace {

constexpr const char* kGroup = "239.255.255.38";
constexpr std::uint16_t kPort = 12345;

// A socket of the board side that hears the group.
RawSocket groupMember() {
    PrivateNetwork::joinBoardSide();
    RawSocket member = RawSocket::datagram(kPort);
    ip_mreqn request{};
    request.imr_multiaddr = endPoint(kGroup, 0).sin_addr;
    request.imr_ifindex = PrivateNetwork::boardInterfaces().front();
    EXPECT_EQ(::setsockopt(member.get(), IPPROTO_IP, IP_ADD_MEMBERSHIP, &request, sizeof request), 0);
    return member;
}

bool firstPacketArrives() {
    PrivateNetwork::enter({});
    std::optional<RawSocket> member;
    std::thread([&member] { member = groupMember(); }).join(); // which leaves this thread on the host side
    RawSocket::datagram(0).sendTo("first", kGroup, kPort);
    return member->readable(1000);
}

// A process can enter one private network only: forks one for each, many at a time, since it takes a busy
// kernel to lose a packet. Returns how many of the packets arrived.
int arrivalsIn(int networks) {
    constexpr int kAtOnce = 12;
    int running = 0;
    int arrived = 0;
    const auto collect = [&] {
        int status = 1;
        arrived += ::wait(&status) > 0 && status == 0 ? 1 : 0;
        --running;
    };
    for (int i = 0; i < networks; ++i) {
        if (::fork() == 0)
            ::_exit(firstPacketArrives() ? 0 : 1);
        if (++running == kAtOnce)
            collect();
    }
    while (running > 0)
        collect();
    return arrived;
}

TEST(PrivateNetwork, ThatHasBeenEnteredCarriesItsFirstPacket) {
    EXPECT_EQ(arrivalsIn(600), 600);
}

} // namespace
} // namespace OrvaneSim
