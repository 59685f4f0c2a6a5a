// Files of reports.
#pragma once

#include "tools/orvane/board/Context.h"
#include "tools/orvane/log/LogSummary.h"
#include "tools/orvane/report/ReportPage.h"

#include <functional>
#include <string>

namespace OrvaneTool {

// Writes a page with the parts that `addParts` adds, and puts a record for programs that says where it is.
// Throws Failure when the file exists and may not be overwritten, or cannot be written, and what `addParts`
// throws.
void writeReportFile(Context& context, const std::string& path, bool force, const std::string& title,
                     const std::function<void(ReportPage&)>& addParts);

// Says on standard error what the page leaves out of a log that is too long for it.
void tellWhatIsLeftOut(Context& context, const std::string& path, const LogSummary& summary);

} // namespace OrvaneTool
