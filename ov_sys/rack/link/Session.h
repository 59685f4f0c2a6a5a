// What a link knows of one session on its board.
#pragma once

#include "ov_sys/rack/values/Access.h"

#include <atomic>
#include <cstdint>
#include <functional>

namespace Orvane::RackLink {

// Guarded by the turn of its link.
struct Session {
    unsigned port = 0;
    unsigned phy = 0;
    Access access{};
    std::uint16_t key = 0;       // as the board gave it; the next open brings it
    std::uint16_t chosenKey = 0; // made up here, so that a lost answer to the opening keeps nobody out
    bool open = false;
    bool everOpened = false;
    unsigned openings = 0; // times that the board granted it
    bool hookDue = false;  // reopened; its calls wait for the hook
    std::uint32_t id = 0;  // the board's number for it, 8 bits
    std::uint16_t sequence = 0;
    std::uint16_t pings = 0;
    std::function<void()> onReopen;
    // What the board added when it refused the session, 0 for nothing. Read by any thread.
    std::atomic<std::uint64_t> refusal{0};

    // The word of the next call.
    std::uint32_t nextIdentity() noexcept { return std::uint32_t{sequence++} << 8U | id; }
    std::uint32_t nextPing() noexcept { return std::uint32_t{pings++} << 8U | id; }
};

} // namespace Orvane::RackLink
