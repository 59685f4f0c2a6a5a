// A transaction log as a part of a report.
#pragma once

#include "tools/orvane/log/LogSummary.h"
#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/report/ReportPage.h"

#include <string>

namespace OrvaneTool {

// The most accesses that one page holds: more than a browser likes.
constexpr std::size_t kMostAccesses = 1'000'000;

// What a page of this log leaves out.
struct ReportLimits {
    // The accesses that each register has on the page at most: the first half of them, and the last.
    std::size_t accesses = 0;
    bool thinned = false; // whether there is a register that has more
};
ReportLimits limitsFor(const LogSummary& summary);

// Writes the log's accesses, what came of each register, and the services, events and notes. Registers that a
// map has carry their names and fields. What does not fit the limits is counted, and the page says so. Throws
// Failure when the log cannot be read.
void addLogReport(ReportPage& page, const std::string& title, const LogFile& log, const Selection& selection,
                  const LogSummary& summary, const KnownMaps& maps);

} // namespace OrvaneTool
