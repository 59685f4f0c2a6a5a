// The operations behind a complete CLIENT, which stubs call and clnt_control() asks.
#include "ov_sys/Interface/connection/RPCHandle.h"

#include "ov_sys/Interface/connection/DatagramTransport.h"
#include "ov_sys/Interface/connection/ProgramSocket.h"
#include "ov_sys/Interface/connection/StreamTransport.h"

#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/random.h>
#include <unistd.h>
#include <utility>

namespace Orvane {
namespace {

constexpr std::int64_t kPerSecond = 1'000'000;
constexpr std::int64_t kNoTimeout = -1;
constexpr std::int64_t kDefaultTimeout = 2 * kPerSecond;

// Replies to an earlier handle of the same local port must not be taken for this one's.
std::uint32_t firstId() noexcept {
    std::uint32_t id = 0;
    if (getrandom(&id, sizeof id, 0) != sizeof id) // std::random_device takes a hundred times as long
        id = static_cast<std::uint32_t>(Deadline::Clock::now().time_since_epoch().count());
    return id;
}

std::unique_ptr<CallTransport> transportOver(const ProgramSocket& opened) {
    if (opened.place.overStream)
        return std::make_unique<StreamTransport>(opened.socket.get());
    return std::make_unique<DatagramTransport>(opened.socket.get());
}

std::int64_t microsecondsOf(const timeval& time) noexcept {
    return time.tv_sec * kPerSecond + time.tv_usec;
}

Deadline deadlineAfter(std::int64_t microseconds) noexcept {
    return Deadline::after(std::chrono::microseconds(microseconds));
}

// The names by which /etc/netconfig knows the transports.
char udpName[] = "udp";
char tcpName[] = "tcp";
char noDevice[] = "-";

} // namespace

std::shared_ptr<RPCHandle> RPCHandle::create(const std::string& host, unsigned long program,
                                             unsigned long version, const std::string& protocol) {
    ProgramSocket opened = openProgram(host, program, version, protocol);
    if (!opened.socket)
        return nullptr;
    return over(std::move(opened), static_cast<std::uint32_t>(program), static_cast<std::uint32_t>(version));
}

std::shared_ptr<RPCHandle> RPCHandle::over(ProgramSocket&& opened, std::uint32_t program,
                                           std::uint32_t version) {
    return std::shared_ptr<RPCHandle>(new RPCHandle(std::move(opened), program, version));
}

RPCHandle::RPCHandle(ProgramSocket&& opened, std::uint32_t program, std::uint32_t version)
    : opened_(std::make_unique<ProgramSocket>(std::move(opened))),
      transport_(transportOver(*opened_)),
      program_(program),
      version_(version),
      lastId_(firstId()),
      timeout_(kNoTimeout) {
    client_.cl_auth = authnone_create();
    if (client_.cl_auth == nullptr)
        throw std::bad_alloc();
    client_.cl_ops = &operations();
    client_.cl_private = this;
    client_.cl_netid = opened_->place.overStream ? tcpName : udpName;
    client_.cl_tp = noDevice;
}

RPCHandle::~RPCHandle() = default;

bool RPCHandle::setTimeout(const timeval& timeout) noexcept {
    constexpr time_t kLongest = 100'000'000;
    if (timeout.tv_sec < 0 || timeout.tv_sec > kLongest || timeout.tv_usec < 0 ||
        timeout.tv_usec > kPerSecond)
        return false;
    timeout_ = microsecondsOf(timeout);
    return true;
}

bool RPCHandle::getTimeout(timeval& timeout) const noexcept {
    const std::int64_t set = timeout_;
    if (set != kNoTimeout)
        timeout = {set / kPerSecond, set % kPerSecond};
    return set != kNoTimeout;
}

inline std::int64_t RPCHandle::timeoutOr(std::int64_t fallback) const noexcept {
    const std::int64_t set = timeout_;
    return set == kNoTimeout ? fallback : set;
}

std::shared_ptr<RPCHandle> RPCHandle::another() const {
    const Deadline deadline = deadlineAfter(timeoutOr(kDefaultTimeout));
    ProgramSocket opened{opened_->place, openSocket(opened_->place, deadline)};
    if (!opened.socket)
        return nullptr;
    auto second = over(std::move(opened), program_, version_);
    second->timeout_ = timeout_.load();
    return second;
}

void RPCHandle::mend() {
    const std::lock_guard<std::recursive_mutex> lock(turn_);
    if (transport_->isUsable())
        return;
    auto fresh = transportOver(*opened_);
    const Deadline deadline = deadlineAfter(timeoutOr(kDefaultTimeout));
    const FileDescriptor socket = openSocket(opened_->place, deadline);
    if (socket && dup3(socket.get(), opened_->socket.get(), O_CLOEXEC) >= 0)
        transport_ = std::move(fresh);
}

CLIENT::clnt_ops& RPCHandle::operations() noexcept {
    static CLIENT::clnt_ops table = [] {
        CLIENT::clnt_ops ours{};
        ours.cl_call = call;
        ours.cl_abort = [](CLIENT*) {};
        ours.cl_geterr = [](CLIENT* client, rpc_err* error) {
            const std::lock_guard<std::recursive_mutex> lock(of(client).turn_);
            *error = of(client).error_;
        };
        ours.cl_freeres = [](CLIENT*, xdrproc_t codec, void* result) -> bool_t {
            xdr_free(codec, result);
            return TRUE;
        };
        ours.cl_destroy = [](CLIENT*) {}; // its owner ends it
        ours.cl_control = [](CLIENT* client, u_int request, void* value) {
            return of(client).control(request, value);
        };
        return ours;
    }();
    return table;
}

clnt_stat RPCHandle::call(CLIENT* client, rpcproc_t procedure, xdrproc_t encode, void* argument,
                          xdrproc_t decode, void* result, timeval fallback) noexcept {
    RPCHandle& self = of(client);
    const std::lock_guard<std::recursive_mutex> lock(self.turn_);
    const CallMessage message(++self.lastId_,
                              {self.program_, self.version_, static_cast<std::uint32_t>(procedure)}, encode,
                              argument, decode, result);
    const Deadline deadline = deadlineAfter(self.timeoutOr(microsecondsOf(fallback)));
    return self.transport_->call(message, deadline, self.error_);
}

bool_t RPCHandle::control(u_int request, void* value) noexcept {
    if (request == CLSET_FD_CLOSE) // takes no value
        return TRUE;
    if (value == nullptr)
        return FALSE;
    auto* const number = static_cast<std::uint32_t*>(value);
    sockaddr_in& address = opened_->place.address;
    switch (request) {
    case CLSET_TIMEOUT:
        return setTimeout(*static_cast<const timeval*>(value)) ? TRUE : FALSE;
    case CLGET_TIMEOUT:
        return getTimeout(*static_cast<timeval*>(value)) ? TRUE : FALSE;
    case CLGET_SERVER_ADDR:
        std::memcpy(value, &address, sizeof address);
        return TRUE;
    case CLGET_SVC_ADDR:
        *static_cast<netbuf*>(value) = {sizeof address, sizeof address, &address};
        return TRUE;
    case CLGET_FD:
        *static_cast<int*>(value) = opened_->socket.get();
        return TRUE;
    case CLGET_XID:
        *number = lastId_;
        return TRUE;
    case CLSET_XID: // of the next call
        lastId_ = *number - 1;
        return TRUE;
    case CLGET_PROG:
        *number = program_;
        return TRUE;
    case CLSET_PROG:
        program_ = *number;
        return TRUE;
    case CLGET_VERS:
        *number = version_;
        return TRUE;
    case CLSET_VERS:
        version_ = *number;
        return TRUE;
    default:
        return FALSE;
    }
}

} // namespace Orvane
