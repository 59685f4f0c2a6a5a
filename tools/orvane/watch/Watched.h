// Registers over time.
#pragma once

#include "tools/orvane/names/Gaps.h"
#include "tools/orvane/names/KnownMaps.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace OrvaneTool {

// One register, as its samples came.
struct Watched {
    Asked asked;
    std::uint32_t value = 0;
    std::uint32_t changed = 0; // bits that differ from the sample before
    unsigned long changes = 0; // samples that differed from the one before

    void take(std::uint32_t sample, bool first);
    // The bits that changed a moment ago.
    std::uint32_t marked() const;

private:
    std::array<std::chrono::steady_clock::time_point, 32> changedAt_{};
};

// All of one PHY.
struct WatchedPhy {
    std::string device;
    unsigned phy = 0;
    std::vector<Watched> registers;
    bool known = false;     // values have been read
    bool firstNow = false;  // by the last sample, for the first time
    std::optional<Gap> gap; // that the last sample ended
    std::string away;       // why the last sample has no values

    void take(const std::vector<std::uint32_t>& sample, std::optional<Gap> gapBefore);
    void miss(std::string cause);
};

} // namespace OrvaneTool
