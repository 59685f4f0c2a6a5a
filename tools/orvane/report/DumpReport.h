// Dumps as a part of a report.
#pragma once

#include "tools/orvane/board/DumpFile.h"
#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/report/ReportPage.h"

#include <string>
#include <vector>

namespace OrvaneTool {

struct NamedDump {
    std::string file; // as the page names it
    Dump dump;
};

// Writes what each dump was taken of and every register with its value in each. All are of one space. A mask
// is that of the first dump, with which the page compares the others.
void addDumpReport(ReportPage& page, const std::vector<NamedDump>& dumps, const KnownMaps& maps);

} // namespace OrvaneTool
