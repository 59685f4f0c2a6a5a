// What is in a transaction log, as records.
#pragma once

#include "tools/orvane/log/LogSummary.h"
#include "tools/orvane/output/Record.h"

#include <string>

namespace OrvaneTool {

// A record of that kind with the port or the adapter, the PHY and the register.
Record recordOf(const char* kind, const PhyRegister& reg);

// A value with its digits; without one a dash in text, and nothing for programs.
Cell valueCell(std::optional<std::uint64_t> value, int digits);

// "read", "queued write".
std::string accessText(const LoggedAccess& access);

// Anything of a log at its place on the time line: `place` counts accesses from 1. In text it has the members
// time, device, phy, what, where, result and outcome.
Record timelineRecord(const LogRecord& entry, std::size_t place);

} // namespace OrvaneTool
