// The two sockets of a search and the thread that listens on one of them.
#include "ov_sys/Interface/discovery/MulticastBoardResolver.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"
#include "ov_sys/Interface/discovery/DottedAddress.h"
#include "ov_sys/Interface/discovery/InterfaceLister.h"
#include "ov_sys/Interface/discovery/SearchLimits.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/Sockets.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <new>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

namespace Orvane {

namespace {

constexpr unsigned char kTimeToLive = 31;
constexpr timespec kPollInterval = {0, 100'000};

enum class Wait { readable, nothing, failed };

int failure(const char* message) {
    Diagnostics::error(message);
    return 1;
}

sockaddr_in socketAddress(in_addr_t address, unsigned port) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(static_cast<std::uint16_t>(port));
    result.sin_addr.s_addr = address;
    return result;
}

int openDatagramSocket(int& socket) {
    close_socket(socket);
    socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, IPPROTO_UDP);
    return socket;
}

template <class Value>
bool setOption(int socket, int level, int option, const Value& value) {
    return setsockopt(socket, level, option, &value, sizeof value) == 0;
}

// poll() passes over descriptors below 0 and reports closed ones as ready: both have failed here. A signal
// handled in the meantime counts as time passed.
Wait waitReadable(int socket) {
    pollfd watched = {socket, POLLIN, 0};
    const int ready = ppoll(&watched, 1, &kPollInterval, nullptr);
    if (socket < 0 || (ready < 0 && errno != EINTR) || (watched.revents & POLLNVAL) != 0)
        return Wait::failed;
    return ready > 0 ? Wait::readable : Wait::nothing;
}

bool full(MulticastBoardResolver& resolver) {
    const std::lock_guard<std::mutex> guard(resolver.repliesLock);
    return resolver.replies.size() >= SearchLimits::kWaiting;
}

// Whether there was room for the latest reply.
bool queued(MulticastBoardResolver& resolver, const char* text) {
    if (full(resolver))
        return false;
    try {
        resolver.PushReply(text, dottedAddress(resolver.localAddress.sin_addr));
    } catch (const std::bad_alloc&) { // the board answers the next request, too
        return false;
    }
    return true;
}

} // namespace

MulticastBoardResolver::MulticastBoardResolver(std::string group_, unsigned port_)
    : group(std::move(group_)), port(port_), localAddress(socketAddress(htonl(INADDR_ANY), port_)) {
    if (InterfaceLister::ipList(interfaces) == 0)
        throw Exceptions::Standard("Couldn't get list of local interfaces.");
    const auto loopback = std::find_if(interfaces.begin(), interfaces.end(), [](const AddressResponse& each) {
        return each.address == "127.0.0.1";
    });
    if (loopback != interfaces.end())
        interfaces.erase(loopback);
    CreateListenSocket();
    CreateSendSocket();
}

MulticastBoardResolver::~MulticastBoardResolver() {
    close_socket(sendSocket);
    close_socket(listenSocket);
}

int MulticastBoardResolver::CreateListenSocket() {
    if (openDatagramSocket(listenSocket) < 0)
        return failure("MulticastResolver: listen socket create error");
    if (!setOption(listenSocket, SOL_SOCKET, SO_REUSEADDR, int{1}))
        return failure("MulticastResolver: Reusing ADDR failed");
    if (bind(listenSocket, reinterpret_cast<const sockaddr*>(&localAddress), sizeof localAddress) != 0)
        return failure("MulticastResolver: bind");
    ip_mreq membership{};
    membership.imr_multiaddr.s_addr = inet_addr(group.c_str());
    membership.imr_interface.s_addr = htonl(INADDR_ANY);
    if (!setOption(listenSocket, IPPROTO_IP, IP_ADD_MEMBERSHIP, membership))
        return failure("MulticastResolver: setsockopt");
    return 0;
}

int MulticastBoardResolver::CreateSendSocket() {
    if (openDatagramSocket(sendSocket) < 0)
        return failure("MulticastBoardResolver: sending socket error");
    if (!setOption(sendSocket, IPPROTO_IP, IP_MULTICAST_LOOP, int{0}))
        return failure("MulticastResolver: IP_MULTICAST_LOOP failed");
    if (!setOption(sendSocket, IPPROTO_IP, IP_MULTICAST_TTL, kTimeToLive))
        return failure("MulticastResolver: IP_MULTICAST_TTL failed");
    return 0;
}

int MulticastBoardResolver::sendToInterface(AddressResponse& iface, const std::string& request) {
    const in_addr outgoing = {inet_addr(iface.address.c_str())};
    if (!setOption(sendSocket, IPPROTO_IP, IP_MULTICAST_IF, outgoing))
        return failure("MulticastBoardResolver: IP_MULTICAST_IF error");
    const sockaddr_in target = socketAddress(inet_addr(group.c_str()), port);
    if (sendto(sendSocket, request.data(), request.size(), 0, reinterpret_cast<const sockaddr*>(&target),
               sizeof target) < 0) {
        Diagnostics::error("MulticastBoardResolver: failed sending request to interface: ", iface.address);
        return 1;
    }
    return 0;
}

int MulticastBoardResolver::send(const std::string& request) {
    int failures = 0;
    for (AddressResponse& each : interfaces) {
        try {
            failures += sendToInterface(each, request);
        } catch (...) {
            Diagnostics::error("exception sending to ", each.address);
        }
    }
    return failures;
}

void MulticastBoardResolver::startListener() {
    if (listening.exchange(true)) {
        Diagnostics::error("MulticastBoardResolver: Listen thread is active");
        return;
    }
    try {
        listener = std::thread([this] { listen(listening); });
    } catch (...) {
        listening = false;
        throw;
    }
}

void MulticastBoardResolver::stopListener() {
    listening = false;
    listener.join();
}

void MulticastBoardResolver::listen(const std::atomic<bool>& flag) {
    while (flag) {
        const Wait outcome = waitReadable(listenSocket);
        if (outcome == Wait::failed) {
            Diagnostics::error("MulticastBoardResolver: thread listening returned error");
            return;
        }
        if (outcome == Wait::nothing)
            continue;
        char text[DiscoveryProtocol::kReplyLimit + 1] = {};
        socklen_t length = sizeof localAddress;
        // A datagram with a bad checksum is gone by the time it is read: never block here.
        if (recvfrom(listenSocket, text, DiscoveryProtocol::kReplyLimit, MSG_DONTWAIT,
                     reinterpret_cast<sockaddr*>(&localAddress), &length) < 0) {
            if (errno == EAGAIN)
                continue;
            Diagnostics::error("MulticastBoardResolver: recvfrom error");
            return;
        }
        if (!queued(*this, text))
            ++SearchLimits::excess;
    }
}

void MulticastBoardResolver::PushReply(const std::string& text, const std::string& address) {
    const std::lock_guard<std::mutex> guard(repliesLock);
    replies.emplace_back(text, address);
}

void MulticastBoardResolver::GetReplies(std::vector<AddressResponse>& out) {
    const std::lock_guard<std::mutex> guard(repliesLock);
    out.insert(out.end(), replies.begin(), replies.end());
    replies.clear();
}

} // namespace Orvane
