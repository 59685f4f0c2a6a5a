// One live RPC handle, shared by the threads that call through it.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <rpc/rpc.h>
#include <string>

namespace Orvane {

class CallTransport;

// Owns a CLIENT and makes its calls. Users hold it by std::shared_ptr, so a handle that is replaced while
// another thread is inside a call is destroyed by whoever leaves last, and nobody ever touches a destroyed
// one.
//
// libtirpc makes the connection and keeps it; the calls themselves go through a transport of ours, which
// waits for the one reply that carries the call's own transaction id, ends at the time-out whatever arrives
// meanwhile, and leaves signals alone.
class RPCHandle {
public:
    // Asks the board's port mapper for the program and makes the handle. A port mapper that does not answer
    // within two seconds, or refuses, counts as a failed creation. Null on failure, the reason being in this
    // thread's rpc_createerr. `protocol` is "udp" or "tcp"; `host` is dotted IPv4 text. Blocks for the
    // look-up.
    static std::shared_ptr<RPCHandle> create(const std::string& host, unsigned long program,
                                             unsigned long version, const std::string& protocol);

    ~RPCHandle();
    RPCHandle(const RPCHandle&) = delete;
    RPCHandle& operator=(const RPCHandle&) = delete;

    // The handle that the stubs take; destroying it is this object's business. Of a call on it: one at a
    // time, further threads wait for their turn first; it blocks up to the time-out, which counts from its
    // turn. Of clnt_control(): CLSET_TIMEOUT holds for every later call, the rest as libtirpc has it.
    CLIENT* get() noexcept { return &client_; }

    // Sets the time-out of every later call. Waits for a call that is under way. Any thread.
    void setTimeout(const timeval& timeout);

private:
    RPCHandle(CLIENT* connection, unsigned long program, unsigned long version, const std::string& protocol);
    static RPCHandle& of(CLIENT* client) noexcept { return *static_cast<RPCHandle*>(client->cl_private); }
    static CLIENT::clnt_ops& operations() noexcept;
    clnt_stat call(rpcproc_t procedure, xdrproc_t encode, void* argument, xdrproc_t decode, void* result,
                   const timeval& fallback) noexcept;
    bool_t control(u_int request, void* value) noexcept;

    CLIENT client_{};    // calls come in here
    CLIENT* connection_; // libtirpc's, the owner of the socket
    std::unique_ptr<CallTransport> transport_;
    std::uint32_t program_;
    std::uint32_t version_;
    std::uint32_t lastId_; // transaction id
    std::optional<timeval> timeout_;
    rpc_err error_{};      // of the last call
    std::mutex callMutex_; // guards all of the above during a call; innermost of all locks
};

} // namespace Orvane
