// A board that a rack knows, with the sessions that are open on it.
#pragma once

#include "ov_sys/rack/core/OpenSession.h"
#include "ov_sys/rack/link/BoardLink.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

namespace Orvane::RackCore {

// Any thread.
class Board : public std::enable_shared_from_this<Board> {
    const std::shared_ptr<RackLink::Surroundings> around_; // outlives the link

public:
    Board(std::string name, in_addr_t address, std::shared_ptr<RackLink::Surroundings> around)
        : around_(std::move(around)), link(std::move(name), address, *around_) {}

    RackLink::BoardLink link;

    // The one session of that port, PHY and access; made, not yet opened, when there is none.
    std::shared_ptr<OpenSession> session(unsigned port, unsigned phy, Access access);
    // Those that somebody holds.
    std::vector<std::shared_ptr<OpenSession>> sessions();

private:
    using Key = std::tuple<unsigned, unsigned, Access::Mode, std::uint16_t>;

    std::mutex mutex_; // guards sessions_
    std::map<Key, std::weak_ptr<OpenSession>> sessions_;
};

} // namespace Orvane::RackCore
