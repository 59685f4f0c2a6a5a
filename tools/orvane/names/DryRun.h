// What accesses would send.
#pragma once

#include "tools/orvane/names/KnownMaps.h"

#include <string>
#include <vector>

namespace OrvaneTool {

// A line for each access that a board would see, with names: those of routed ones step by step, and those by
// which pages are turned. Nothing is sent. Throws UsageError for a page that no map knows.
std::string planned(const std::vector<Access>& accesses, const KnownMaps& maps, bool routed);

// The same for a register that is read and then written with some of its bits changed, to `value` of the
// field that is asked for, or of the bits of `mask`.
std::string plannedChange(const Asked& asked, std::uint32_t value, std::uint32_t mask, const KnownMaps& maps,
                          bool routed);

// Prints such lines, as records where these are wanted: each a step. Returns the exit status.
int tellPlan(Context& context, const std::string& lines);

} // namespace OrvaneTool
