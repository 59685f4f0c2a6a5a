// Actions that wait for their time.
#pragma once

#include "simulator/board/Action.h"
#include "simulator/lab/Lab.h"
#include "simulator/script/JsonReader.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace OrvaneSim {

// One action and when it is due: after a number of requests to its board, or after a time.
struct TimelineEntry {
    // Requests that the board has decoded, the port mapper's not counted; 0 when the time decides.
    std::uint64_t requests = 0;
    // Counts only requests of this procedure; empty for all.
    std::string procedure;
    // Since `startTimeline`.
    std::chrono::milliseconds time{0};
    // Serial number, or "all": then each board counts for itself.
    std::string board = "all";
    Action action;
};

// Reads a time line, a list called `path` in error texts. Throws ScriptError.
std::vector<TimelineEntry> readTimeline(const std::vector<const Json*>& list, const std::string& path);

// Has every entry done when it is due: an entry of requests between the request that makes it due and the
// next, so that a run repeats. What cannot be done then is told on standard error. Throws std::out_of_range
// for a board that the lab does not have.
void startTimeline(Lab& lab, const std::vector<TimelineEntry>& entries);

} // namespace OrvaneSim
