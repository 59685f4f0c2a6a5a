// What a session tells about its pings.
#pragma once

#include <vector>

namespace Orvane {

// A copy of the session's record; samples keep their initial value 4294967295.
struct PingRecord {
    unsigned int type;                  // 2
    std::vector<unsigned long> samples; // 2000 of them
};

} // namespace Orvane
