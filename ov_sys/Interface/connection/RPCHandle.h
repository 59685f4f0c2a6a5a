// One live RPC handle, shared by the threads that call through it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <rpc/rpc.h>
#include <string>

namespace Orvane {

class CallTransport;
struct ProgramSocket;

// Owns the socket to one program on one board and calls over it. Users hold it by std::shared_ptr, so a
// handle that is replaced while another thread is inside a call on it is destroyed by whoever leaves last,
// and nobody ever touches a destroyed one.
//
// Of libtirpc it uses XDR, messages and error texts. A call waits for the one reply that carries its own
// transaction id, ends at the time-out whatever arrives meanwhile, and leaves signals alone.
class RPCHandle {
public:
    // Asks the board's port mapper for the program and makes the handle. A port mapper that does not answer
    // within two seconds, or refuses, counts as a failed creation. Null on failure, the reason being in this
    // thread's rpc_createerr. `protocol` is "udp" or "tcp"; `host` is dotted IPv4 text or a name, which takes
    // what the system's resolver takes. Blocks for the look-up; may throw std::bad_alloc.
    static std::shared_ptr<RPCHandle> create(const std::string& host, unsigned long program,
                                             unsigned long version, const std::string& protocol);

    ~RPCHandle();
    RPCHandle(const RPCHandle&) = delete;
    RPCHandle& operator=(const RPCHandle&) = delete;

    // The handle that the stubs take; clnt_destroy() does nothing to it, for it belongs to this object. Any
    // thread. A call on it sends no credentials; it takes its turn first (see HandleTurn) and then blocks up
    // to the time-out. clnt_geterr() takes its turn, too, and tells of the last call. clnt_control() never
    // waits. It knows CLSET_TIMEOUT (for every later call), CLGET_TIMEOUT (FALSE while none is set),
    // CLGET_SERVER_ADDR, CLGET_SVC_ADDR, CLGET_FD, CLGET_XID and CLSET_XID, CLGET_PROG and CLSET_PROG,
    // CLGET_VERS and CLSET_VERS (for every later call), and CLSET_FD_CLOSE, which holds anyway; to anything
    // else it says FALSE.
    CLIENT* get() noexcept { return &client_; }

    // Sets the time-out of every later call; one that is under way keeps its own. False, without effect, for
    // anything but 0 to 100,000,000 s and 0 to 1,000,000 us. Any thread, never waits.
    bool setTimeout(const timeval& timeout) noexcept;

    // A second handle to the same port of the board, with this one's time-out, which it may also take to
    // connect. Null when that fails. Any thread; may throw std::bad_alloc.
    std::shared_ptr<RPCHandle> another() const;

    // Connects a stream again, to the same port and within the time-out, when the board has closed it or it
    // is of no more use; otherwise, and when that fails, all stays as it was. Takes its turn; may throw
    // std::bad_alloc.
    void mend();

private:
    friend class HandleTurn;

    RPCHandle(ProgramSocket&& opened, std::uint32_t program, std::uint32_t version);
    static RPCHandle& of(CLIENT* client) noexcept { return *static_cast<RPCHandle*>(client->cl_private); }
    static std::shared_ptr<RPCHandle> over(ProgramSocket&& opened, std::uint32_t program,
                                           std::uint32_t version);
    static CLIENT::clnt_ops& operations() noexcept;
    bool getTimeout(timeval& timeout) const noexcept;
    std::int64_t timeoutOr(std::int64_t fallback) const noexcept; // microseconds
    static clnt_stat call(CLIENT* client, rpcproc_t procedure, xdrproc_t encode, void* argument,
                          xdrproc_t decode, void* result, timeval fallback) noexcept;
    bool_t control(u_int request, void* value) noexcept;

    CLIENT client_{};                          // calls come in here
    std::unique_ptr<ProgramSocket> opened_;    // the descriptor's number stays the same
    std::unique_ptr<CallTransport> transport_; // used by whoever has the turn
    rpc_err error_{};                          // of the last call; by whoever has the turn
    std::atomic<std::uint32_t> program_;
    std::atomic<std::uint32_t> version_;
    std::atomic<std::uint32_t> lastId_; // transaction id
    std::atomic<std::int64_t> timeout_; // microseconds, negative for none
    std::recursive_mutex turn_;         // one call at a time; innermost of all locks
};

} // namespace Orvane
