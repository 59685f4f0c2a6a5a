// Makes the namespace and its interfaces, and goes back in the end.
#include "tests/support/discovery/OwnNetwork.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "simulator/network/Netlink.h"
#include "tests/support/discovery/RequestTap.h"

#include <arpa/inet.h>
#include <exception>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/socket.h>
#include <thread>

namespace OrvaneTest {

namespace {

constexpr int kAnyIndex = 0; // the kernel chooses
constexpr int kDiscardPort = 9;

// A new cable loses what is sent before the kernel has noticed that both ends are up.
void awaitCarrying(const std::string& name, const std::string& address) {
    RequestTap far(name + "Far", kDiscardPort);
    const Orvane::FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM, 0));
    const in_addr outgoing = {inet_addr(address.c_str())};
    ASSERT_EQ(setsockopt(socket.get(), IPPROTO_IP, IP_MULTICAST_IF, &outgoing, sizeof outgoing), 0);
    sockaddr_in everyHost{};
    everyHost.sin_family = AF_INET;
    everyHost.sin_port = htons(kDiscardPort);
    everyHost.sin_addr.s_addr = htonl(INADDR_ALLHOSTS_GROUP);
    for (int attempt = 0; attempt < 1000; ++attempt) {
        sendto(socket.get(), "?", 1, 0, reinterpret_cast<const sockaddr*>(&everyHost), sizeof everyHost);
        if (far.more(10))
            return;
    }
    FAIL() << name << " does not carry anything";
}

} // namespace

void inOwnNetwork(const std::function<void()>& body) {
    std::thread([&body] {
        ASSERT_EQ(unshare(CLONE_NEWNET), 0);
        try {
            body();
        } catch (const std::exception& problem) {
            ADD_FAILURE() << "thrown: " << problem.what();
        }
    }).join();
}

void bringLoopbackUp() {
    OrvaneSim::Netlink().setUp("lo");
}

void addInterface(const std::string& name, const std::string& address) {
    const Orvane::FileDescriptor here(open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC));
    OrvaneSim::Netlink netlink;
    netlink.addCable(name, kAnyIndex, name + "Far", kAnyIndex, here.get());
    netlink.addAddress(name, address, 24);
    netlink.setUp(name);
    netlink.setUp(name + "Far");
    awaitCarrying(name, address);
}

} // namespace OrvaneTest
