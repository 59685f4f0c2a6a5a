// A thread's turn to call through a handle.
#pragma once

#include "ov_sys/Interface/connection/RPCHandle.h"
#include "ov_sys/Interface/foundation/Export.h"

#include <memory>
#include <mutex>

namespace Orvane {

class RPCClient;

// While one lives, only its thread makes calls through the handle, which stays alive meanwhile. To be used by
// the thread that made it.
class HandleTurn {
public:
    // Waits for the calls of other threads on the client's live handle. When the client is connected anew
    // meanwhile, it is a turn on the new handle; an unconnected client gives a turn on none, at once.
    ORVANE_API explicit HandleTurn(RPCClient& client);
    // Does not wait: held() tells whether it is the thread's turn. `handle` may be null.
    HandleTurn(std::shared_ptr<RPCHandle>&& handle, std::try_to_lock_t now);
    ~HandleTurn() = default;
    HandleTurn(const HandleTurn&) = delete;
    HandleTurn& operator=(const HandleTurn&) = delete;

    // The pinned handle, good as long as this object; null when the client has none.
    RPCHandle* handle() const noexcept { return handle_.get(); }
    // Whether the turn is this thread's.
    bool held() const noexcept { return lock_.owns_lock(); }
    // Whether other threads' calls came first, so that things may have changed since.
    bool waited() const noexcept { return waited_; }
    // Waits for the turn unless it is held; the handle must not be null.
    void wait();

private:
    using Lock = std::unique_lock<std::recursive_mutex>;

    void waitAt(RPCClient& client);

    std::shared_ptr<RPCHandle> handle_;
    Lock lock_;
    bool waited_ = false;
};

} // namespace Orvane
