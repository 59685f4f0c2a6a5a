// Configures the interfaces and routes of the calling thread's network namespace.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <array>
#include <cstdint>
#include <string>

struct nlmsghdr;

namespace OrvaneSim {

// A routing-netlink socket of the namespace that the calling thread is in at construction. Every request
// waits for the kernel's answer; a refusal throws std::system_error naming the step.
class Netlink {
public:
    Netlink();

    // Creates a virtual cable: `name` with number `index` here, `peerName` with number `peerIndex` in the
    // namespace of descriptor `peerNamespace`. The numbers must differ: the kernel takes a second to bring
    // up a cable whose two ends have the same one.
    void addCable(const std::string& name, int index, const std::string& peerName, int peerIndex,
                  int peerNamespace);
    void setUp(const std::string& interface);
    // Gives an interface an IPv4 address with its network's route.
    void addAddress(const std::string& interface, const std::string& address, std::uint8_t prefixBits);
    // Sends what goes to a network out of an interface, neighbours resolved on its wire.
    void addLinkRoute(const std::string& network, std::uint8_t prefixBits, const std::string& interface);
    // Sends what goes to a network through a neighbour.
    void addGatewayRoute(const std::string& network, std::uint8_t prefixBits, const std::string& gateway);
    // Makes every address of a network one of this machine's own.
    void addLocalRoute(const std::string& network, std::uint8_t prefixBits);

    // Waits until the interface carries packets, at most ten seconds.
    void awaitRunning(const std::string& interface);
    // The kernel's number of an interface of the calling thread's namespace.
    static int indexOf(const std::string& interface);

private:
    class Message;
    void transact(const Message& message, const std::string& step);
    void send(const Message& message, const std::string& step);
    // The next message of the kernel, valid until the next call.
    const nlmsghdr& receive(const std::string& step);
    void expectAcknowledgement(const std::string& step);
    // As RFC 2863 numbers it.
    int operationalState(const std::string& interface);

    Orvane::FileDescriptor socket_;
    alignas(4) std::array<char, 32768> answer_{};
};

} // namespace OrvaneSim
