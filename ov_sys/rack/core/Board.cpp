// The sessions of a board, one for each port, PHY and access.
#include "ov_sys/rack/core/Board.h"

namespace Orvane::RackCore {

std::shared_ptr<OpenSession> Board::session(unsigned port, unsigned phy, Access access) {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::weak_ptr<OpenSession>& place = sessions_[{port, phy, access.mode, access.key}];
    std::shared_ptr<OpenSession> session = place.lock();
    if (!session) {
        session = std::make_shared<OpenSession>(shared_from_this(), port, phy, access);
        place = session;
    }
    return session;
}

std::vector<std::shared_ptr<OpenSession>> Board::sessions() {
    std::vector<std::shared_ptr<OpenSession>> held;
    const std::lock_guard<std::mutex> lock(mutex_);
    for (auto next = sessions_.begin(); next != sessions_.end();) {
        if (std::shared_ptr<OpenSession> session = next->second.lock()) {
            held.push_back(std::move(session));
            ++next;
        } else {
            next = sessions_.erase(next);
        }
    }
    return held;
}

} // namespace Orvane::RackCore
