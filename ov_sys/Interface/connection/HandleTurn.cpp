// Waits for a turn, and for the handle that stands when it comes.
#include "ov_sys/Interface/connection/HandleTurn.h"

#include "ov_sys/Interface/connection/RPCClient.h"

#include <utility>

namespace Orvane {

HandleTurn::HandleTurn(RPCClient& client) : HandleTurn(client.pin(), std::try_to_lock) {
    if (handle_ != nullptr && !held())
        waitAt(client);
}

// For the client's live handle, which may be another by the time that the calls on this one have ended.
void HandleTurn::waitAt(RPCClient& client) {
    wait();
    for (auto live = client.pin(); live != nullptr && live != handle_; live = client.pin()) {
        lock_ = Lock();
        handle_ = std::move(live);
        lock_ = Lock(handle_->turn_);
    }
}

HandleTurn::HandleTurn(std::shared_ptr<RPCHandle>&& handle, std::try_to_lock_t now)
    : handle_(std::move(handle)), lock_(handle_ == nullptr ? Lock() : Lock(handle_->turn_, now)) {}

void HandleTurn::wait() {
    if (held())
        return;
    lock_.lock();
    waited_ = true;
}

} // namespace Orvane
