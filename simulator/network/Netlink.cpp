// Routing-netlink requests, one message each.
#include "simulator/network/Netlink.h"

#include "simulator/engine/Sockets.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>
#include <linux/veth.h>
#include <net/if.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <vector>

namespace OrvaneSim {
namespace {

constexpr int kOperationallyUp = 6; // IF_OPER_UP of linux/if.h, which cannot stand beside net/if.h

[[noreturn]] void fail(int error, const std::string& step) {
    throw std::system_error(error, std::generic_category(), step);
}

std::uint32_t rawAddress(const std::string& address) {
    return endPoint(address, 0).sin_addr.s_addr;
}

rtmsg routeTo(std::uint8_t prefixBits, std::uint8_t table, std::uint8_t scope, std::uint8_t type) {
    rtmsg route{};
    route.rtm_family = AF_INET;
    route.rtm_dst_len = prefixBits;
    route.rtm_table = table;
    route.rtm_protocol = RTPROT_BOOT;
    route.rtm_scope = scope;
    route.rtm_type = type;
    return route;
}

} // namespace

// One request under construction; the kernel wants every part aligned to four bytes.
class Netlink::Message {
public:
    Message(std::uint16_t type, std::uint16_t extraFlags) : bytes_(NLMSG_HDRLEN) {
        header().nlmsg_type = type;
        header().nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | NLM_F_ACK | extraFlags);
        seal();
    }

    template <class Body>
    Message& body(const Body& body) {
        append(&body, sizeof body);
        return *this;
    }

    Message& attribute(std::uint16_t type, const void* value, std::size_t size) {
        const std::size_t start = open(type);
        append(value, size);
        return close(start, RTA_LENGTH(0) + size);
    }
    Message& text(std::uint16_t type, const std::string& value) {
        return attribute(type, value.c_str(), value.size() + 1);
    }
    template <class Value>
    Message& value(std::uint16_t type, Value value) {
        return attribute(type, &value, sizeof value);
    }

    // Begins an attribute that holds others; `close` ends it.
    std::size_t open(std::uint16_t type) {
        const std::size_t start = bytes_.size();
        rtattr attribute{};
        attribute.rta_type = type;
        append(&attribute, sizeof attribute);
        return start;
    }
    Message& close(std::size_t start) { return close(start, bytes_.size() - start); }

    const std::vector<char>& bytes() const { return bytes_; }

private:
    nlmsghdr& header() { return *reinterpret_cast<nlmsghdr*>(bytes_.data()); }
    void seal() { header().nlmsg_len = static_cast<std::uint32_t>(bytes_.size()); }

    void append(const void* data, std::size_t size) {
        const auto* first = static_cast<const char*>(data);
        bytes_.insert(bytes_.end(), first, first + size);
        bytes_.resize(NLMSG_ALIGN(bytes_.size()));
        seal();
    }

    Message& close(std::size_t start, std::size_t length) {
        reinterpret_cast<rtattr*>(bytes_.data() + start)->rta_len = static_cast<std::uint16_t>(length);
        return *this;
    }

    std::vector<char> bytes_;
};

Netlink::Netlink() : socket_(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)) {
    if (!socket_)
        fail(errno, "cannot open a netlink socket");
}

void Netlink::transact(const Message& message, const std::string& step) {
    send(message, step);
    expectAcknowledgement(step);
}

void Netlink::send(const Message& message, const std::string& step) {
    const auto& bytes = message.bytes();
    if (::send(socket_.get(), bytes.data(), bytes.size(), 0) < 0)
        fail(errno, step);
}

const nlmsghdr& Netlink::receive(const std::string& step) {
    const ssize_t count = ::recv(socket_.get(), answer_.data(), answer_.size(), 0);
    const auto* header = reinterpret_cast<const nlmsghdr*>(answer_.data());
    if (count < 0 || !NLMSG_OK(header, static_cast<unsigned>(count)))
        fail(count < 0 ? errno : EPROTO, step);
    if (header->nlmsg_type != NLMSG_ERROR)
        return *header;
    const int error = reinterpret_cast<const nlmsgerr*>(answer_.data() + NLMSG_HDRLEN)->error;
    if (error != 0)
        fail(-error, step);
    return *header;
}

void Netlink::expectAcknowledgement(const std::string& step) {
    if (receive(step).nlmsg_type != NLMSG_ERROR)
        fail(EPROTO, step);
}

void Netlink::addCable(const std::string& name, int index, const std::string& peerName, int peerIndex,
                       int peerNamespace) {
    ifinfomsg near{};
    near.ifi_index = index;
    Message message(RTM_NEWLINK, NLM_F_CREATE | NLM_F_EXCL);
    message.body(near).text(IFLA_IFNAME, name);
    const std::size_t info = message.open(IFLA_LINKINFO);
    message.text(IFLA_INFO_KIND, "veth");
    const std::size_t data = message.open(IFLA_INFO_DATA);
    const std::size_t peer = message.open(VETH_INFO_PEER);
    ifinfomsg far{};
    far.ifi_index = peerIndex;
    message.body(far).text(IFLA_IFNAME, peerName).value(IFLA_NET_NS_FD, peerNamespace);
    message.close(peer).close(data).close(info);
    transact(message, "cannot create the virtual cable " + name);
}

void Netlink::setUp(const std::string& interface) {
    ifinfomsg link{};
    link.ifi_index = indexOf(interface);
    link.ifi_flags = IFF_UP;
    link.ifi_change = IFF_UP;
    transact(Message(RTM_NEWLINK, 0).body(link), "cannot bring up " + interface);
}

void Netlink::addAddress(const std::string& interface, const std::string& address, std::uint8_t prefixBits) {
    ifaddrmsg body{};
    body.ifa_family = AF_INET;
    body.ifa_prefixlen = prefixBits;
    body.ifa_index = static_cast<std::uint32_t>(indexOf(interface));
    Message message(RTM_NEWADDR, NLM_F_CREATE | NLM_F_EXCL);
    message.body(body).value(IFA_LOCAL, rawAddress(address)).value(IFA_ADDRESS, rawAddress(address));
    transact(message, "cannot give " + interface + " the address " + address);
}

void Netlink::addLinkRoute(const std::string& network, std::uint8_t prefixBits,
                           const std::string& interface) {
    const rtmsg route = routeTo(prefixBits, RT_TABLE_MAIN, RT_SCOPE_LINK, RTN_UNICAST);
    Message message(RTM_NEWROUTE, NLM_F_CREATE | NLM_F_EXCL);
    message.body(route).value(RTA_DST, rawAddress(network)).value(RTA_OIF, indexOf(interface));
    transact(message, "cannot route " + network + " to " + interface);
}

void Netlink::addGatewayRoute(const std::string& network, std::uint8_t prefixBits,
                              const std::string& gateway) {
    const rtmsg route = routeTo(prefixBits, RT_TABLE_MAIN, RT_SCOPE_UNIVERSE, RTN_UNICAST);
    Message message(RTM_NEWROUTE, NLM_F_CREATE | NLM_F_EXCL);
    message.body(route).value(RTA_DST, rawAddress(network)).value(RTA_GATEWAY, rawAddress(gateway));
    transact(message, "cannot route " + network + " through " + gateway);
}

void Netlink::addLocalRoute(const std::string& network, std::uint8_t prefixBits) {
    const rtmsg route = routeTo(prefixBits, RT_TABLE_LOCAL, RT_SCOPE_HOST, RTN_LOCAL);
    Message message(RTM_NEWROUTE, NLM_F_CREATE | NLM_F_EXCL);
    message.body(route).value(RTA_DST, rawAddress(network)).value(RTA_OIF, indexOf("lo"));
    transact(message, "cannot make " + network + " local");
}

// The flag IFF_RUNNING would not do: the kernel shows it before it takes away the queue that drops every
// packet. A state of "up" comes in the same step as the real queue.
void Netlink::awaitRunning(const std::string& interface) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (operationalState(interface) != kOperationallyUp) {
        if (std::chrono::steady_clock::now() > limit)
            fail(ETIMEDOUT, "the virtual cable " + interface + " does not come up");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

int Netlink::operationalState(const std::string& interface) {
    const std::string step = "cannot ask for the state of " + interface;
    ifinfomsg link{};
    link.ifi_index = indexOf(interface);
    send(Message(RTM_GETLINK, 0).body(link), step);
    const std::size_t end = receive(step).nlmsg_len;
    int state = 0;
    std::size_t at = NLMSG_HDRLEN + NLMSG_ALIGN(sizeof link);
    while (at + sizeof(rtattr) < end) {
        const auto* attribute = reinterpret_cast<const rtattr*>(answer_.data() + at);
        if (attribute->rta_type == IFLA_OPERSTATE)
            state = static_cast<std::uint8_t>(answer_.at(at + sizeof(rtattr)));
        at += RTA_ALIGN(std::max<std::size_t>(attribute->rta_len, sizeof(rtattr)));
    }
    expectAcknowledgement(step);
    return state;
}

int Netlink::indexOf(const std::string& interface) {
    const unsigned index = ::if_nametoindex(interface.c_str());
    if (index == 0)
        fail(errno, "no interface " + interface);
    return static_cast<int>(index);
}

} // namespace OrvaneSim
