// The multicast resolver's construction, sockets and requests.
#include "ov_sys/Interface/discovery/MulticastBoardResolver.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "simulator/network/Netlink.h"
#include "tests/support/discovery/Group.h"
#include "tests/support/discovery/Limits.h"
#include "tests/support/discovery/OwnNetwork.h"
#include "tests/support/discovery/RequestTap.h"
#include "tests/support/discovery/ThrowingSend.h"
#include "tests/support/NoStandardInput.h"
#include "tests/support/WrittenText.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

namespace Orvane {
namespace {

using OrvaneTest::kGroup;
using OrvaneTest::kGroupPort;
using Records = std::vector<AddressResponse>;

template <class Value>
Value option(int socket, int level, int name) {
    Value value{};
    socklen_t length = sizeof value;
    EXPECT_EQ(getsockopt(socket, level, name, &value, &length), 0);
    return value;
}

// The lines that `act` writes to the standard error stream.
template <class Act>
std::string errorLines(Act act) {
    return OrvaneTest::textWritten(act).error;
}

// A network with two interfaces, each with a tap at its far end, the first being the default for the group.
void inNetworkOfTwo(const std::function<void(OrvaneTest::RequestTap&, OrvaneTest::RequestTap&)>& body) {
    OrvaneTest::inOwnNetwork([&body] {
        OrvaneTest::bringLoopbackUp();
        OrvaneTest::addInterface("first", "10.1.0.1");
        OrvaneTest::addInterface("second", "10.2.0.1");
        OrvaneSim::Netlink().addLinkRoute("224.0.0.0", 4, "first");
        OrvaneTest::RequestTap first("firstFar", kGroupPort);
        OrvaneTest::RequestTap second("secondFar", kGroupPort);
        body(first, second);
    });
}

TEST(MulticastBoardResolver, StartsIdleWithBothSocketsAndTheInterfacesButLoopback) {
    const std::string lines = errorLines([] {
        const MulticastBoardResolver resolver(kGroup, kGroupPort);
        EXPECT_EQ(resolver.group, kGroup);
        EXPECT_EQ(resolver.port, kGroupPort);
        EXPECT_EQ(resolver.interfaces, (Records{{"lab0", "10.83.255.254"}}));
        EXPECT_GE(resolver.listenSocket, 0);
        EXPECT_GE(resolver.sendSocket, 0);
        EXPECT_FALSE(resolver.listening);
        EXPECT_FALSE(resolver.listener.joinable());
        EXPECT_EQ(resolver.replies, Records{});
    });
    EXPECT_EQ(lines, "");
}

TEST(MulticastBoardResolver, BindsTheListenSocketToAnyAddressAndThePort) {
    const MulticastBoardResolver resolver(kGroup, kGroupPort);
    sockaddr_in bound{};
    socklen_t length = sizeof bound;
    ASSERT_EQ(getsockname(resolver.listenSocket, reinterpret_cast<sockaddr*>(&bound), &length), 0);
    EXPECT_EQ(ntohs(bound.sin_port), kGroupPort);
    EXPECT_EQ(bound.sin_addr.s_addr, htonl(INADDR_ANY));
    EXPECT_EQ(resolver.localAddress.sin_family, AF_INET);
    EXPECT_EQ(resolver.localAddress.sin_port, htons(12345));
    EXPECT_EQ(resolver.localAddress.sin_addr.s_addr, htonl(INADDR_ANY));
    EXPECT_EQ(option<int>(resolver.listenSocket, SOL_SOCKET, SO_REUSEADDR), 1);
}

TEST(MulticastBoardResolver, SetsLoopOffAndTimeToLive31OnTheSendSocket) {
    const MulticastBoardResolver resolver(kGroup, kGroupPort);
    EXPECT_EQ(option<int>(resolver.sendSocket, IPPROTO_IP, IP_MULTICAST_LOOP), 0);
    EXPECT_EQ(option<int>(resolver.sendSocket, IPPROTO_IP, IP_MULTICAST_TTL), 31);
}

TEST(MulticastBoardResolver, KeepsItsSocketsFromProgramsThatTheProcessStarts) {
    const MulticastBoardResolver resolver(kGroup, kGroupPort);
    EXPECT_EQ(fcntl(resolver.listenSocket, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(fcntl(resolver.sendSocket, F_GETFD), FD_CLOEXEC);
}

TEST(MulticastBoardResolver, ClosesItsSocketsAtTheEnd) {
    int listenSocket = -1;
    int sendSocket = -1;
    {
        const MulticastBoardResolver resolver(kGroup, kGroupPort);
        listenSocket = resolver.listenSocket;
        sendSocket = resolver.sendSocket;
    }
    EXPECT_EQ(fcntl(listenSocket, F_GETFD), -1);
    EXPECT_EQ(fcntl(sendSocket, F_GETFD), -1);
}

TEST(MulticastBoardResolver, OfAHostWithLoopbackOnlyHasNoInterfaceToSendOn) {
    OrvaneTest::inOwnNetwork([] {
        OrvaneTest::bringLoopbackUp();
        OrvaneSim::Netlink().addLinkRoute("224.0.0.0", 4, "lo");
        OrvaneTest::RequestTap tap("lo", kGroupPort);
        MulticastBoardResolver resolver(kGroup, kGroupPort);
        EXPECT_EQ(resolver.interfaces, Records{});
        EXPECT_EQ(resolver.send("ZRDISCOVER?"), 0);
        EXPECT_FALSE(tap.more());
    });
}

TEST(MulticastBoardResolver, OfAHostWithoutIPv4AddressThrowsStandard) {
    OrvaneTest::inOwnNetwork([] {
        const std::string thrown = OrvaneTest::thrownText<Exceptions::Standard>(
            [] { const MulticastBoardResolver resolver(kGroup, kGroupPort); });
        EXPECT_EQ(thrown, "Couldn't get list of local interfaces.");
    });
}

TEST(MulticastBoardResolver, LeavesOutOnlyTheFirstOfTwoLoopbackEntries) {
    OrvaneTest::inOwnNetwork([] {
        OrvaneTest::bringLoopbackUp();
        OrvaneTest::addInterface("first", "10.1.0.1");
        OrvaneSim::Netlink().addAddress("first", "127.0.0.1", 32);
        OrvaneTest::addInterface("second", "10.2.0.1");
        OrvaneSim::Netlink().addLinkRoute("224.0.0.0", 4, "first");
        const MulticastBoardResolver resolver(kGroup, kGroupPort);
        EXPECT_EQ(resolver.interfaces,
                  (Records{{"first", "10.1.0.1"}, {"first", "127.0.0.1"}, {"second", "10.2.0.1"}}));
    });
}

TEST(CreateListenSocket, TellsWhenThereIsNoSocketLeft) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    int result = 0;
    const std::string line = errorLines([&] {
        const OrvaneTest::NoDescriptorsLeft limit;
        result = resolver.CreateListenSocket();
    });
    EXPECT_EQ(line, "MulticastResolver: listen socket create error\n");
    EXPECT_EQ(result, 1);
}

TEST(CreateListenSocket, TellsWhenTheAddressCannotBeReused) {
    OrvaneTest::inOwnNetwork([] {
        OrvaneTest::bringLoopbackUp();
        OrvaneSim::Netlink().addLinkRoute("224.0.0.0", 4, "lo");
        MulticastBoardResolver resolver(kGroup, kGroupPort);
        OrvaneTest::refuseSocketOption(SOL_SOCKET, SO_REUSEADDR);
        int result = 0;
        const std::string line = errorLines([&] { result = resolver.CreateListenSocket(); });
        EXPECT_EQ(line, "MulticastResolver: Reusing ADDR failed\n");
        EXPECT_EQ(result, 1);
    });
}

TEST(CreateListenSocket, TellsWhenThePortIsTaken) {
    const FileDescriptor other(socket(AF_INET, SOCK_DGRAM, 0));
    sockaddr_in taken{};
    taken.sin_family = AF_INET;
    taken.sin_port = htons(12347);
    ASSERT_EQ(bind(other.get(), reinterpret_cast<const sockaddr*>(&taken), sizeof taken), 0);
    int result = 0;
    const std::string lines = errorLines([&] {
        MulticastBoardResolver resolver(kGroup, 12347);
        result = resolver.CreateListenSocket();
    });
    EXPECT_EQ(lines, "MulticastResolver: bind\nMulticastResolver: bind\n");
    EXPECT_EQ(result, 1);
}

TEST(CreateListenSocket, TellsWhenTheGroupCannotBeJoined) {
    int result = 0;
    const std::string lines = errorLines([&] {
        MulticastBoardResolver resolver("10.83.0.1", kGroupPort);
        result = resolver.CreateListenSocket();
    });
    EXPECT_EQ(lines, "MulticastResolver: setsockopt\nMulticastResolver: setsockopt\n");
    EXPECT_EQ(result, 1);
}

TEST(CreateListenSocket, PutsANewSocketInThePlaceOfTheOldOne) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    const int before = resolver.listenSocket;
    EXPECT_EQ(resolver.CreateListenSocket(), 0);
    EXPECT_EQ(resolver.listenSocket, before); // the lowest free descriptor again: the old socket is closed
}

TEST(CreateSendSocket, TakesDescriptor0) {
    const OrvaneTest::NoStandardInput closed;
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    std::swap(resolver.listenSocket, resolver.sendSocket);
    const std::string line = errorLines([&] { EXPECT_EQ(resolver.CreateSendSocket(), 0); });
    EXPECT_EQ(resolver.sendSocket, 0);
    EXPECT_EQ(line, "");
}

TEST(CreateSendSocket, TellsWhenThereIsNoSocketLeft) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    int result = 0;
    const std::string line = errorLines([&] {
        const OrvaneTest::NoDescriptorsLeft limit;
        result = resolver.CreateSendSocket();
    });
    EXPECT_EQ(line, "MulticastBoardResolver: sending socket error\n");
    EXPECT_EQ(result, 1);
}

struct RefusedOption {
    int option;
    std::string line;
};

class RefusedSendOption : public testing::TestWithParam<RefusedOption> {};

TEST_P(RefusedSendOption, FailsCreateSendSocketWithItsLine) {
    OrvaneTest::inOwnNetwork([] {
        OrvaneTest::bringLoopbackUp();
        OrvaneSim::Netlink().addLinkRoute("224.0.0.0", 4, "lo");
        MulticastBoardResolver resolver(kGroup, kGroupPort);
        OrvaneTest::refuseSocketOption(IPPROTO_IP, GetParam().option);
        int result = 0;
        const std::string line = errorLines([&] { result = resolver.CreateSendSocket(); });
        EXPECT_EQ(line, GetParam().line);
        EXPECT_EQ(result, 1);
    });
}

INSTANTIATE_TEST_SUITE_P(
    CreateSendSocket, RefusedSendOption,
    testing::Values(RefusedOption{IP_MULTICAST_LOOP, "MulticastResolver: IP_MULTICAST_LOOP failed\n"},
                    RefusedOption{IP_MULTICAST_TTL, "MulticastResolver: IP_MULTICAST_TTL failed\n"}),
    [](const auto& each) { return each.param.option == IP_MULTICAST_LOOP ? "Loop" : "TimeToLive"; });

TEST(SendToInterface, SendsTheBareTextToGroupAndPortOutOfThatInterface) {
    inNetworkOfTwo([](OrvaneTest::RequestTap& first, OrvaneTest::RequestTap& second) {
        MulticastBoardResolver resolver(kGroup, kGroupPort);
        const int result = resolver.sendToInterface(resolver.interfaces.at(1), "ZRDISCOVER?evb");
        EXPECT_EQ(result, 0);
        const OrvaneTest::Datagram sent = second.next();
        EXPECT_EQ(sent.source, "10.2.0.1");
        EXPECT_EQ(sent.destination, "239.255.255.38");
        EXPECT_EQ(sent.port, 12345);
        EXPECT_EQ(sent.timeToLive, 31);
        EXPECT_EQ(sent.payload, "ZRDISCOVER?evb");
        EXPECT_FALSE(second.more());
        EXPECT_FALSE(first.more());
    });
}

TEST(SendToInterface, SendsAnEmptyTextToo) {
    inNetworkOfTwo([](OrvaneTest::RequestTap& first, OrvaneTest::RequestTap&) {
        MulticastBoardResolver resolver(kGroup, kGroupPort);
        EXPECT_EQ(resolver.sendToInterface(resolver.interfaces.at(0), ""), 0);
        EXPECT_EQ(first.next().payload, "");
    });
}

TEST(SendToInterface, CountsOnlyTheLow16BitsOfThePort) {
    inNetworkOfTwo([](OrvaneTest::RequestTap& first, OrvaneTest::RequestTap&) {
        MulticastBoardResolver resolver(kGroup, 0x50000 + kGroupPort);
        EXPECT_EQ(resolver.sendToInterface(resolver.interfaces.at(0), "?"), 0);
        EXPECT_EQ(first.next().port, 12345);
    });
}

TEST(SendToInterface, TellsWhenTheAddressIsNotTheHosts) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    AddressResponse foreign("none", "10.99.0.1");
    int result = 0;
    const std::string line = errorLines([&] { result = resolver.sendToInterface(foreign, "ZRDISCOVER?"); });
    EXPECT_EQ(line, "MulticastBoardResolver: IP_MULTICAST_IF error\n");
    EXPECT_EQ(result, 1);
}

TEST(SendToInterface, TellsTheAddressWhenTheRequestCannotBeSent) {
    MulticastBoardResolver resolver(kGroup, kGroupPort);
    const std::string tooLong(70'000, '?');
    int result = 0;
    const std::string line =
        errorLines([&] { result = resolver.sendToInterface(resolver.interfaces.at(0), tooLong); });
    EXPECT_EQ(line, "MulticastBoardResolver: failed sending request to interface: 10.83.255.254\n");
    EXPECT_EQ(result, 1);
}

TEST(Send, SendsOnEveryInterface) {
    inNetworkOfTwo([](OrvaneTest::RequestTap& first, OrvaneTest::RequestTap& second) {
        MulticastBoardResolver resolver(kGroup, kGroupPort);
        const int failures = resolver.send("ZRDISCOVER?");
        EXPECT_EQ(failures, 0);
        EXPECT_EQ(first.next().payload, "ZRDISCOVER?");
        EXPECT_EQ(second.next().payload, "ZRDISCOVER?");
        EXPECT_FALSE(first.more());
        EXPECT_FALSE(second.more());
    });
}

TEST(Send, CountsTheInterfacesThatFailAndGoesOnWithTheRest) {
    inNetworkOfTwo([](OrvaneTest::RequestTap& first, OrvaneTest::RequestTap& second) {
        MulticastBoardResolver resolver(kGroup, kGroupPort);
        const Records foreign = {{"a", "10.98.0.1"}, {"b", "10.99.0.1"}};
        resolver.interfaces.insert(resolver.interfaces.begin() + 1, foreign.begin(), foreign.end());
        int failures = 0;
        const std::string lines = errorLines([&] { failures = resolver.send("ZRDISCOVER?"); });
        EXPECT_EQ(failures, 2);
        EXPECT_EQ(lines, "MulticastBoardResolver: IP_MULTICAST_IF error\n"
                         "MulticastBoardResolver: IP_MULTICAST_IF error\n");
        EXPECT_EQ(first.next().payload, "ZRDISCOVER?");
        EXPECT_EQ(second.next().payload, "ZRDISCOVER?");
    });
}

TEST(Send, TellsTheAddressWhenSendingThrowsAndGoesOnWithTheRest) {
    inNetworkOfTwo([](OrvaneTest::RequestTap& first, OrvaneTest::RequestTap& second) {
        MulticastBoardResolver resolver(kGroup, kGroupPort);
        int failures = -1;
        const std::string lines = errorLines([&] {
            OrvaneTest::throwFromNextSend();
            failures = resolver.send("ZRDISCOVER?");
        });
        EXPECT_EQ(lines, "exception sending to 10.1.0.1\n");
        EXPECT_EQ(failures, 0);
        EXPECT_EQ(second.next().payload, "ZRDISCOVER?");
        EXPECT_FALSE(first.more());
    });
}

} // namespace
} // namespace Orvane
