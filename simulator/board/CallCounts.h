// How often what happened to the calls of a board.
#pragma once

#include <cstdint>

namespace OrvaneSim {

// Counted from the board's making on; a restart changes nothing.
struct CallCounts {
    std::uint64_t received = 0;     // requests decoded
    std::uint64_t executed = 0;     // procedures run; not those refused for want of a session
    std::uint64_t faults = 0;       // requests that met a fault
    std::uint64_t lostRequests = 0; // neither executed nor answered
    std::uint64_t lostReplies = 0;  // executed, not answered
};

} // namespace OrvaneSim
