// What a session tells about its pings.
#pragma once

#include <vector>

namespace Orvane {

// A copy of the session's record; samples keep their initial value 4294967295.
struct PingRecord {
    unsigned int type;
    std::vector<unsigned long> samples;
};

} // namespace Orvane
