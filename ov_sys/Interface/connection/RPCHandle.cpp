#include "ov_sys/Interface/connection/RPCHandle.h"

#include "ov_sys/Interface/connection/DatagramTransport.h"
#include "ov_sys/Interface/connection/HandleCreation.h"
#include "ov_sys/Interface/connection/StreamTransport.h"

#include <cerrno>
#include <exception>
#include <netinet/in.h>
#include <sys/random.h>
#include <sys/socket.h>

namespace Orvane {
namespace {

// Replies to an earlier handle of the same local port must not be taken for this one's.
std::uint32_t firstId() {
    std::uint32_t id = 0;
    if (getrandom(&id, sizeof id, 0) != sizeof id) // std::random_device takes a hundred times as long
        id = static_cast<std::uint32_t>(Deadline::Clock::now().time_since_epoch().count());
    return id;
}

std::unique_ptr<CallTransport> transportOver(CLIENT* connection, const std::string& protocol) {
    int socket = -1;
    clnt_control(connection, CLGET_FD, reinterpret_cast<char*>(&socket));
    if (protocol != "udp")
        return std::make_unique<StreamTransport>(socket);
    // Answers are taken from the board's own address only. Where connecting fails, so will the first call.
    sockaddr_storage board{};
    clnt_control(connection, CLGET_SERVER_ADDR, reinterpret_cast<char*>(&board));
    static_cast<void>(connect(socket, reinterpret_cast<const sockaddr*>(&board), sizeof board));
    return std::make_unique<DatagramTransport>(socket);
}

Deadline deadlineOf(const timeval& timeout) noexcept {
    return Deadline::after(std::chrono::seconds(timeout.tv_sec) + std::chrono::microseconds(timeout.tv_usec));
}

} // namespace

std::shared_ptr<RPCHandle> RPCHandle::create(const std::string& host, unsigned long program,
                                             unsigned long version, const std::string& protocol) {
    CLIENT* const connection = createHandle(host, program, version, protocol);
    if (connection == nullptr)
        return nullptr;
    return std::shared_ptr<RPCHandle>(new RPCHandle(connection, program, version, protocol));
}

RPCHandle::RPCHandle(CLIENT* connection, unsigned long program, unsigned long version,
                     const std::string& protocol)
    : client_(*connection),
      connection_(connection),
      transport_(transportOver(connection, protocol)),
      program_(static_cast<std::uint32_t>(program)),
      version_(static_cast<std::uint32_t>(version)),
      lastId_(firstId()) {
    client_.cl_private = this;
    client_.cl_ops = &operations();
}

RPCHandle::~RPCHandle() {
    clnt_destroy(connection_);
}

void RPCHandle::setTimeout(const timeval& timeout) {
    timeval copy = timeout;
    control(CLSET_TIMEOUT, &copy);
}

CLIENT::clnt_ops& RPCHandle::operations() noexcept {
    static CLIENT::clnt_ops table = [] {
        CLIENT::clnt_ops ours{};
        ours.cl_call = [](CLIENT* client, rpcproc_t procedure, xdrproc_t encode, void* argument,
                          xdrproc_t decode, void* result, timeval timeout) {
            return of(client).call(procedure, encode, argument, decode, result, timeout);
        };
        ours.cl_abort = [](CLIENT*) {};
        ours.cl_geterr = [](CLIENT* client, rpc_err* error) { *error = of(client).error_; };
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

clnt_stat RPCHandle::call(rpcproc_t procedure, xdrproc_t encode, void* argument, xdrproc_t decode,
                          void* result, const timeval& fallback) noexcept {
    const std::lock_guard<std::mutex> lock(callMutex_);
    const CallMessage message(++lastId_, {program_, version_, static_cast<std::uint32_t>(procedure)}, encode,
                              argument, decode, result);
    try {
        return transport_->call(message, deadlineOf(timeout_.value_or(fallback)), error_);
    } catch (const std::exception&) { // no memory for the reply
        error_.re_errno = ENOMEM;
        return error_.re_status = RPC_CANTDECODERES;
    }
}

bool_t RPCHandle::control(u_int request, void* value) noexcept {
    const std::lock_guard<std::mutex> lock(callMutex_);
    const bool_t done = clnt_control(connection_, request, static_cast<char*>(value));
    if (done && request == CLSET_TIMEOUT)
        timeout_ = *static_cast<const timeval*>(value);
    return done;
}

} // namespace Orvane
