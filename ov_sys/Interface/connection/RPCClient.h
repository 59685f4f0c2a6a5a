// An RPC client of one program on one board, and its three kinds.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <rpc/rpc.h>
#include <string>
#include <sys/time.h>

namespace Orvane {

class RPCHandle;

// Knows how to make, drop and make again the handle for one program on one board, and carries the time-out of
// its calls. All member functions may be called by any thread at any time; a handle that is dropped while
// another thread is inside a call on it lives until that call has returned.
class ORVANE_API RPCClient {
public:
    std::atomic<CLIENT*> client; // the live handle, null while not connected; to call through it use pin()
    std::string protocol;        // "tcp" or "udp"; constant
    unsigned long version;       // program version; constant
    unsigned long program;       // program number; constant
    std::mutex handleMutex; // guards the handle, `timeout` and `host`; taken last, but for the handle's own
    std::string name;       // service name that messages show; constant
    timeval timeout;        // time-out of calls on the live handle
    std::string host;       // the board's address, dotted IPv4 text, or its name; may be empty

    // Stores the arguments and does not connect. The time-out is 2 s.
    RPCClient(unsigned long program, unsigned long version, std::string protocol, std::string name,
              std::string host);
    virtual ~RPCClient();
    RPCClient(const RPCClient&) = delete;
    RPCClient& operator=(const RPCClient&) = delete;

    // Makes the handle, with a 2-second call time-out. A failure is reported on the standard error stream and
    // leaves the client unconnected, whatever it was; it is no exception. Blocks for the board's port mapper,
    // 2 s at most, after what the system's resolver takes for a name. May throw std::bad_alloc.
    void connect();
    // reset(), then connect(). A standard exception is reported, the handle dropped again, and rethrown.
    void update();
    // reset(), then connect() to `newHost`, dotted IPv4 text. Exceptions as update().
    void update(std::string newHost);
    // Drops the handle; harmless when there is none.
    virtual void reset();

    // Sets the time-out of every later call on the live handle; without a handle nothing is changed or kept.
    // Never waits for a call: one that is under way keeps its own time-out.
    void setTimeout(long seconds, long microseconds);
    void resetTimeout(); // setTimeout(2, 0)

    // The call frames bracket each call with setBusy(true) and setBusy(false); only ThreadSafeRPCClient
    // cares.
    virtual void setBusy(bool busy);
    virtual bool isBusy();
    // Called after a failed connect(): reports it and returns false.
    virtual bool connectionError();

    // The live handle, kept alive for as long as the result is held; null while not connected. Does not block
    // on calls.
    std::shared_ptr<RPCHandle> pin();

private:
    void reconnect(const std::string* newHost);
    std::string currentHost();

    std::shared_ptr<RPCHandle> handle_;
};

// Connects in its constructor when the host is known.
class ORVANE_API NormalRPCClient : public RPCClient {
public:
    // As RPCClient(), then connect() unless the host is empty.
    NormalRPCClient(unsigned long program, unsigned long version, std::string protocol, std::string name,
                    std::string host);
};

// A NormalRPCClient whose reset() gives a call that is under way a short while to end: the keep-alive thread
// and the callers' threads share it.
class ORVANE_API ThreadSafeRPCClient : public NormalRPCClient {
public:
    std::atomic<bool> busy; // a call is under way
    std::mutex busyMutex;   // guards writes of `busy`

    // As NormalRPCClient().
    ThreadSafeRPCClient(unsigned long program, unsigned long version, std::string protocol, std::string name,
                        std::string host);

    // Waits with waitClientBusy(5000), about 200 ms at most, says so when the client is still busy, and drops
    // the handle in either case.
    void reset() override;
    void setBusy(bool busy) override;
    bool isBusy() override;

    // Waits until the client is not busy and returns whether that came about. The limit is met when the
    // elapsed milliseconds times 100000 (32-bit, wrapping) reach `timeoutMs`: after the first 200-ms pause
    // for every value below 20,000,000; 0 does not wait.
    bool waitClientBusy(unsigned timeoutMs);
};

// Stays unconnected until update(), and keeps silent when connecting fails.
class ORVANE_API ExtendedRPCClient : public RPCClient {
public:
    // As RPCClient().
    ExtendedRPCClient(unsigned long program, unsigned long version, std::string protocol, std::string name,
                      std::string host);
    bool connectionError() override; // returns true
};

} // namespace Orvane
