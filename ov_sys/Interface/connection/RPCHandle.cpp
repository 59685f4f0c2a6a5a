#include "ov_sys/Interface/connection/RPCHandle.h"

#include "ov_sys/Interface/connection/PortMapperProbe.h"

#include <cerrno>
#include <sys/socket.h>

namespace Orvane {

std::shared_ptr<RPCHandle> RPCHandle::create(const std::string& host, unsigned long program,
                                             unsigned long version, const std::string& protocol) {
    const SigpipeGuard sigpipe;
    if (!probePortMapper(host, protocol))
        return nullptr;
    CLIENT* client = clnt_create(host.c_str(), static_cast<rpcprog_t>(program),
                                 static_cast<rpcvers_t>(version), protocol.c_str());
    if (client == nullptr)
        return nullptr;
    return std::shared_ptr<RPCHandle>(new RPCHandle(client, protocol == "udp"));
}

RPCHandle::RPCHandle(CLIENT* client, bool datagram) : client_(client), datagram_(datagram) {
    clnt_control(client_, CLGET_FD, reinterpret_cast<char*>(&socket_));
    if (datagram_) { // answers are taken from the board's own address only
        int connected = TRUE;
        clnt_control(client_, CLSET_CONNECT, reinterpret_cast<char*>(&connected));
    }
}

RPCHandle::~RPCHandle() {
    clnt_destroy(client_);
}

void RPCHandle::setTimeout(const timeval& timeout) {
    const std::lock_guard<std::mutex> lock(callMutex_);
    timeval copy = timeout;
    clnt_control(client_, CLSET_TIMEOUT, reinterpret_cast<char*>(&copy));
}

// A late or duplicate answer of an earlier call would make the next one spend its whole wait on it.
void RPCHandle::drain() const noexcept {
    constexpr int kMost = 4096; // a flood must not keep the caller here
    char waste = 0;
    for (int i = 0; i < kMost; ++i)
        if (recv(socket_, &waste, sizeof waste, MSG_DONTWAIT) < 0 && (errno == EAGAIN || errno == EBADF))
            return;
}

RPCHandle::Turn::Turn(RPCHandle& handle) : lock_(handle.callMutex_) {
    if (handle.datagram_)
        handle.drain();
    else
        sigpipe_.emplace();
}

RPCHandle::Turn::~Turn() = default;

} // namespace Orvane
