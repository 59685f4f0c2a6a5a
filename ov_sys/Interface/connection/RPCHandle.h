// One live RPC handle, shared by the threads that call through it.
#pragma once

#include "ov_sys/Interface/connection/SigpipeGuard.h"
#include "ov_sys/Interface/foundation/Export.h"

#include <memory>
#include <mutex>
#include <optional>
#include <rpc/rpc.h>
#include <string>

namespace Orvane {

// Owns a CLIENT. Users hold it by std::shared_ptr, so a handle that is replaced while another thread is
// inside a call is destroyed by whoever leaves last, and nobody ever touches a destroyed one.
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

    CLIENT* get() const noexcept { return client_; }

    // Sets the time-out of every later call. Waits for a call that is under way. Any thread.
    void setTimeout(const timeval& timeout);

    // The exclusive right to make one call: while it lives no other thread uses the handle. On a datagram
    // handle whatever an earlier call left in the socket is thrown away first; on a stream SIGPIPE is held
    // back.
    class Turn {
    public:
        ORVANE_API explicit Turn(RPCHandle& handle);
        ORVANE_API ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        std::unique_lock<std::mutex> lock_;
        std::optional<SigpipeGuard> sigpipe_;
    };

private:
    RPCHandle(CLIENT* client, bool datagram);
    void drain() const noexcept;

    CLIENT* client_;
    bool datagram_;
    int socket_ = -1;
    std::mutex callMutex_; // one call at a time; innermost of all locks
};

} // namespace Orvane
