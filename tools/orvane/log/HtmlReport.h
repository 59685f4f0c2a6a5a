// A transaction log as a page that needs nothing but a browser.
#pragma once

#include "tools/orvane/log/LogSummary.h"

#include <string>

namespace OrvaneTool {

// The whole page, with its styles, its script and the log's accesses in it. `title` is shown as it is.
std::string htmlReport(const std::string& title, const LogFile& log,
                       const std::vector<RegisterHistory>& histories);

} // namespace OrvaneTool
